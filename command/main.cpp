#include "command/CommandLine.h"
#include "command/Verdict.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

#include <cstdio>
#include <cstring>
#include <exception>

namespace {

/** The language of the messages. Found before the command line is parsed, since help and parsing
    errors are messages too. */
bool isJapanese(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--lang") == 0 && i + 1 < argc)
            return std::strcmp(argv[i + 1], "ja") == 0;
        if (std::strncmp(argv[i], "--lang=", std::strlen("--lang=")) == 0)
            return std::strcmp(argv[i] + std::strlen("--lang="), "ja") == 0;
    }
    return QLocale::system().language() == QLocale::Japanese;
}

} // namespace

int main(int argc, char** argv) {
    try {
        const QCoreApplication application(argc, argv);
        QTranslator translator;
        if (isJapanese(argc, argv) && translator.load(QStringLiteral(":/vq-tl4ctl/ja.qm")))
            QCoreApplication::installTranslator(&translator);
        return runCommandLine(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vq-tl4ctl: %s\n", error.what());
        return UnknownStatus;
    }
}
