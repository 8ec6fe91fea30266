#ifndef TESTS_SUPPORT_MADELOCALE_H
#define TESTS_SUPPORT_MADELOCALE_H

#include <QByteArray>
#include <QProcess>
#include <QString>

/** Makes a locale from the system's sources into a folder, so that it is there on every machine.
    Who has the folder in LOCPATH can use it.
    @param name  language and encoding: "de_DE.UTF-8"
    @return what went wrong; empty when nothing did */
inline QByteArray makeLocale(const QString& folder, const QString& name) {
    QProcess localedef;
    localedef.start("localedef", {"-i", name.section('.', 0, 0), "-f", name.section('.', 1),
                                  folder + '/' + name});
    if (!localedef.waitForFinished(-1))
        return "the command localedef cannot be run";
    if (localedef.exitStatus() == QProcess::NormalExit && localedef.exitCode() == 0)
        return {};
    return "localedef failed: " + localedef.readAllStandardError();
}

#endif
