#ifndef TESTS_DIALOGS_SETTINGS_CALIBRATIONTABS_H
#define TESTS_DIALOGS_SETTINGS_CALIBRATIONTABS_H

#include "tests/dialogs/settings/SettingsFixture.h"

/** What differs between the two calibration tabs, for tests that run on both. */
struct CalibrationTab {
    SettingsFixture::Page page;
    int firstText; ///< of the tab's own in `SettingsFixture::calibrationTexts`
    QString chooseButton;
    QString writeButton;
    const char* writeSlot;
    int valueCount;
    QByteArray serialLine; ///< of a file that is accepted
    QString otherPart;     ///< of the bench's calibration record: what a registration leaves alone
    QString ownPart;
    QString noFileBox;
    QString failureBox;
    QByteArray lowestSerialLine;  ///< the lowest number that is accepted
    QByteArray tooLowSerialLine;  ///< one less
    QByteArray highestSerialLine; ///< the highest number of eight digits that is accepted

    /** A file that is accepted. */
    QByteArray file() const { return TestBench::valueFile(serialLine, valueCount); }
    /** A file whose number is too low. */
    QByteArray tooLowFile() const { return TestBench::valueFile(tooLowSerialLine, valueCount); }
};

const CalibrationTab& calibrationTab(bool adapter);

/** The calls of a registration where all goes well. */
inline const QStringList registrationCalls =
    words("KVA_JIG_GetFactoryCalib_CALREFDATA KVA_JIG_SetFactoryCalib_CALREFDATA "
          "KVA_JIG_SetFactoryCalib_WriteSector KVA_JIG_GetFactoryCalib_CALREFDATA "
          "KVA_JIG_GetFactoryCalib_CALREFDATA");

using TestBench::fileValue;
using TestBench::valueFile;

/** The debug lines of checking a file of `valueFile`. */
QStringList checkLines(const QByteArray& serialLine, int count);

#endif
