#ifndef TESTS_HOSTILE_SETTINGSCASES_H
#define TESTS_HOSTILE_SETTINGSCASES_H

#include "tests/hostile/HostileFile.h"
#include "tests/unit/files/NetworkFixture.h"

#include <QMetaType>
#include <QVector>

/** A hostile settings file and what comes of it. */
struct SettingsCase {
    enum Outcome {
        Loaded,
        Refused ///< by the reader, which the debug log tells
    };

    QByteArray row;
    QByteArray content;
    Outcome outcome = Refused;
    NetworkBytes record; ///< the zeroed record that was given in, afterwards
    HostileFile::Trick trick = HostileFile::None;
    Place place = {QStringLiteral("files"), QStringLiteral("hostile.ini")};
};
Q_DECLARE_METATYPE(SettingsCase)

const QVector<SettingsCase>& settingsCases();

#endif
