#include "tests/support/TestMain.h"

#include <QFileInfo>

#ifdef VQTL4_TEST_WITH_WINDOWS
#include <QApplication>
using Application = QApplication;
#else
using Application = QCoreApplication;
#endif

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

struct Entry {
    QString name;
    TestMain::Make make;
};

std::vector<Entry>& entries() {
    static std::vector<Entry> all;
    return all;
}

} // namespace

int TestMain::enter(const char* source, Make make) {
    entries().push_back({QFileInfo(source).baseName(), std::move(make)});
    return 0;
}

int main(int argc, char* argv[]) {
    Application application(argc, argv);
    Application::setAttribute(Qt::AA_Use96Dpi, true);
    QStringList arguments = Application::arguments();
    const QString wanted = arguments.value(1);
    const bool isNamed = wanted.startsWith("tst_");
    if (isNamed)
        arguments.removeAt(1);
    int failures = 0;
    int run = 0;
    for (const Entry& entry : entries()) {
        if (isNamed && entry.name != wanted)
            continue;
        const std::unique_ptr<QObject> test = entry.make();
        failures += QTest::qExec(test.get(), arguments);
        ++run;
    }
    if (run == 0)
        std::fprintf(stderr, "no test %s here\n", qUtf8Printable(wanted));
    return run == 0 ? 1 : std::min(failures, 127);
}
