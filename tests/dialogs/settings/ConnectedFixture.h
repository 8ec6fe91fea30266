#ifndef TESTS_DIALOGS_SETTINGS_CONNECTEDFIXTURE_H
#define TESTS_DIALOGS_SETTINGS_CONNECTEDFIXTURE_H

#include "tests/dialogs/settings/SettingsFixture.h"
#include "tests/support/TestFolder.h"

/** A fixture that `connectFirst` has connected, in a working folder of its own. The test fails when
    it is not connected. */
class ConnectedFixture : public SettingsFixture {
public:
    /** @param patch  changes the instrument before, see `TestBench::set` */
    explicit ConnectedFixture(Page page = Network, const QByteArray& patch = "{}");

    TestFolder folder;
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files); }

    /** What there was while the last box was open, unless a test sets `answers.onBox`. */
    struct {
        QStringList everything;
        QStringList disabled;
        QStringList texts;
        QStringList calls;
    } atBox;

    /** What was disabled while the last box was open and is not any more. */
    QStringList busyAtBox();
};

// ---- Network settings

/** Network settings, of names and values as the bench has them. All but the switches differ from
    what the bench's instrument holds. */
QJsonObject networkValues(double wireless = 1, double dhcp = 0);

/** The octets of the addresses, in the order of the edits. */
QStringList octetsOf(const QJsonObject& values);
/** What the page shows, as in `SettingsFixture::networkTexts`. */
QStringList networkTexts(const QJsonObject& values);
/** The settings file. */
QByteArray settingsFile(const QJsonObject& values = networkValues());
/** The patch that makes them the instrument's. */
QByteArray networkPatch(const QJsonObject& values);
/** Makes the page show them. */
void typeNetwork(SettingsFixture& f, const QJsonObject& values = networkValues());

/** The page's push buttons, all of which are disabled while it writes to the instrument. */
inline const QStringList networkButtons =
    words("readToFilePushBtn writeFilePushBtn readBodyPushBtn writeBodyPushBtn");
/** The box when it has written, as in `SettingsFixture::boxes`. */
inline const QString networkWrittenBox =
    "information: Write successful. To reflect, after [Disconnect], turn the power supply of the "
    "measuring instrument OFF -> ON.";

/** The buttons that are checked with these switches. */
QStringList switchButtons(double wireless, double dhcp);

// ---- Calibration

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
