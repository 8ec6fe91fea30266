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
    localedef.start(QStringLiteral("localedef"),
                    {QStringLiteral("-i"), name.section(QLatin1Char('.'), 0, 0),
                     QStringLiteral("-f"), name.section(QLatin1Char('.'), 1),
                     folder + QLatin1Char('/') + name});
    if (!localedef.waitForFinished(-1))
        return "the command localedef cannot be run";
    if (localedef.exitStatus() == QProcess::NormalExit && localedef.exitCode() == 0)
        return {};
    return "localedef failed: " + localedef.readAllStandardError();
}

#endif
