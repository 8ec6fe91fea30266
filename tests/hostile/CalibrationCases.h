#ifndef TESTS_HOSTILE_CALIBRATIONCASES_H
#define TESTS_HOSTILE_CALIBRATIONCASES_H

#include "tests/hostile/HostileFile.h"
#include "tests/unit/files/CalRefFixture.h"

#include <QMetaType>
#include <QVector>

/** A hostile file of calibration values and what comes of it. */
struct CalibrationCase {
    QByteArray row;
    bool adapter = false;
    QByteArray content;
    bool isRead = true;     ///< what the reader returns
    QByteArray printed;     ///< by it, on the standard output
    QByteArray serialNo;    ///< the four bytes that it stores; empty: left as they were
    QVector<float> values;  ///< that it stores; empty: left as they were
    int serialNumber = 0;   ///< that of the file, 0 when there is none
    bool isAccepted = true; ///< as a choice; its number is then shown
    HostileFile::Trick trick = HostileFile::None;
    Place place = {};

    /** Whether writing it to the instrument succeeds, when it has taken the place of a good file
        after that was chosen. Without a number in the file the instrument's own counts. */
    bool isRegistered() const { return isRead && (serialNo.isEmpty() || isAccepted); }
};
Q_DECLARE_METATYPE(CalibrationCase)

/** Of both accessories. The names of their rows begin with the kind and end with the accessory. */
const QVector<CalibrationCase>& calibrationCases();

#endif
