#ifndef TESTS_HOSTILE_HOSTILECASES_H
#define TESTS_HOSTILE_HOSTILECASES_H

#include "tests/hostile/HostileFile.h"
#include "tests/unit/files/CalRefFixture.h"
#include "tests/unit/files/NetworkFixture.h"

/** A hostile settings file and what comes of it. */
struct SettingsCase : HostileCase {
    bool isLoaded = false; ///< else refused by the reader, which the debug log tells
    NetworkBytes record;   ///< the zeroed record that was given in, afterwards
};

QVector<SettingsCase> settingsCases();

/** A hostile file of calibration values and what comes of it. */
struct CalibrationCase : HostileCase {
    bool adapter = false;
    bool isRead = true;     ///< what the reader returns
    bool isAccepted = true; ///< as a choice; its number is then shown
    QByteArray printed;     ///< by the reader, on the standard output
    QByteArray serialNo;    ///< the four bytes that it stores; empty: left as they were
    QVector<float> values;  ///< that it stores; empty: left as they were
    int serialNumber = 0;   ///< that of the file, 0 when there is none

    /** Whether writing it to the instrument succeeds, when it has taken the place of a good file
        after that was chosen. Without a number in the file the instrument's own counts. */
    bool isRegistered() const { return isRead && (serialNo.isEmpty() || isAccepted); }
};

/** Of both accessories. The names of their rows end with the accessory. */
QVector<CalibrationCase> calibrationCases();

#endif
