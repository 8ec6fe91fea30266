#ifndef TESTS_DIALOGS_SETTINGS_SETTINGSFIXTURE_H
#define TESTS_DIALOGS_SETTINGS_SETTINGSFIXTURE_H

#include "dialogs/ConnectSelectDialog.h"
#include "dialogs/InitSettingDialog.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "tests/support/DebugLog.h"
#include "tests/support/GiveUp.h"
#include "tests/support/ModalAnswerer.h"
#include "tests/support/TestBench.h"
#include "tests/support/TestMain.h"
#include "tests/support/Widgets.h"

/** The words of a text with one blank between them. */
inline QStringList words(const char* text) {
    return QString(text).split(' ');
}

/** The open instrument selection dialog, as a user sees and uses it. */
class Choice {
public:
    explicit Choice(const ConnectSelectDialog& dialog)
        : list(*dialog.findChild<QListWidget*>("connectlistWidget")),
          ok(*dialog.findChild<QPushButton*>("pushButton")) {}

    QStringList rows() const;
    void select(int row) const;
    void accept() const;
    /** The debug line of a row that is selected. */
    static QString selectedLine(int row) {
        return QString("select portNum[ConnectSelectDialog]:%1").arg(row);
    }

    QListWidget& list;
    QPushButton& ok;
};

/** The dialog's disconnect watch, which is not a child of the dialog. */
QTimer& watchOf(InitSettingDialog& dialog);

/**
 * A settings dialog with its controller and its selection dialog on a bench of simulated
 * instruments. It records boxes, file dialogs, debug lines and calls. One at a time. The thread of
 * the test only.
 */
class SettingsFixture {
public:
    /** Pages of the tab widget. */
    enum Page { Network, PowerOff, WhitePlate, AmbientAdapter };

    /** @param instruments  the instruments on the bench, in the order of its list */
    explicit SettingsFixture(const QJsonArray& instruments = {TestBench::instrument()});
    ~SettingsFixture();
    SettingsFixture(const SettingsFixture&) = delete;
    SettingsFixture& operator=(const SettingsFixture&) = delete;

    /** Connects to the first instrument, shows the dialog with @p page on top and forgets the
        records. The watch runs, but so slowly (unless `keepsWatching`) that none of its ticks comes
        in between on a busy machine. False when the instrument is not connected then. */
    bool connectFirst(Page page = Network);
    void openPage(Page page);
    /** Forgets boxes, file dialogs, debug lines and calls. */
    void clearRecords();

    // ---- The dialog

    template <typename Widget = QWidget>
    Widget& child(const QString& name) {
        auto* found = dialog.findChild<Widget*>(name);
        if (!found)
            giveUp("no widget " + name);
        return *found;
    }

    /** Clicks a button with the mouse. It has to be one that a user could click. */
    void click(const QString& name);
    /** The same; the file dialog that comes up is answered with @p path. */
    void choose(const QString& button, const QString& path);
    /** Runs a slot whether or not a user could get at it. */
    void invoke(const char* slot);
    /** Unchecks a radio button as its exclusive group would not. */
    void uncheck(const QString& name);
    QVector<QLineEdit*> addressEdits();
    /** Fills the sixteen address edits. */
    void setOctets(const QStringList& octets);
    void setNameAndKey(const QString& ssid, const QString& key);

    /** Those of the tabs, the pages and all push buttons that are disabled themselves, whatever
        their parents are: in the order of their lists in the .cpp. */
    QStringList disabled();
    /** The radio buttons that are checked. */
    QStringList checked();
    /** Serial number, firmware version, MAC address. */
    QStringList identity();
    /** SSID, key and the four addresses with dots. */
    QStringList networkTexts();
    /** White plate, then adapter: serial number of the instrument, file name, serial number of the
        file. */
    QStringList calibrationTexts();
    /** Those of the two file name labels. */
    QStringList fileToolTips();
    /** The four lists before. */
    QStringList texts();
    /** `texts` of a dialog that shows no instrument. */
    static inline const QStringList noTexts = QString(",,,,,...,...,...,...,,,,,,,,").split(',');
    /** 16 or 0 unless something is wrong. */
    int enabledAddressEdits();
    /** Everything above, whether the radio buttons are checkable, and whether the watch runs. */
    QStringList everything();

    // ---- Records

    /** "information: text" or "error: text" for each box; another word in front for one that is not
        as all boxes are to be. */
    QStringList boxes() const;
    /** The debug lines, those of the instrument's thread included. */
    QStringList lines() const;
    static QStringList calls() { return TestBench::calls(); }
    /** `boxes`, then `calls`, then `lines`. */
    QStringList records() const { return boxes() + calls() + lines(); }

    /** Pulls the plug while @p below is open, waits for the watch's report on top of it and presses
        its Ok. @return as `boxes`; empty when none came */
    QString loseBehind(QWidget& below);

    static inline const QStringList disabledWhenConnected =
        words("ConnectPushBtn ClosePushBtn setWCPValPushBtn setAmbAdpBodyPushBtn");
    static inline const QStringList disabledWhenNotConnected =
        words("networkSetTab autoPowerOfftab wCalibPlateTab ambLightAdpTab disConnectPushBtn "
              "setWCPValPushBtn setAmbAdpBodyPushBtn");
    /** `everything` of a dialog that shows no instrument, with so many address edits enabled. */
    static QStringList nothing(int addressEdits = 16) {
        return disabledWhenNotConnected + noTexts + words("1 1 1 1 1 1 1 1 idle")
               << QString::number(addressEdits);
    }
    /** The debug lines of a connection where all goes well, from the listing on. */
    static QStringList connectLines(int instrumentCount = 1);
    /** The calls of a connection where all goes well, without the listing. */
    static inline const QStringList connectCalls =
        words("KVA_Connect KVA_GetDeviceInfo KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA "
              "KVA_GetNetworkInfo KVA_JIG_GetFactoryCalib_CALREFDATA KVA_GetShutdownTime");
    /** The debug lines of checking these texts for digits, all of which pass. */
    static QStringList digitLines(const QStringList& texts);
    /** The box of a lost connection, as in `boxes`. */
    static inline const QString lostBox =
        "error: The connection with the measuring instrument was disconnected.";

    /** Whether `connectFirst` leaves the watch its second. */
    bool keepsWatching = false;

    DebugLog log;
    std::shared_ptr<CKvaSdk_Ctrl> controller;
    ConnectSelectDialog selection;
    InitSettingDialog dialog;
    ModalAnswerer answers;
};

#endif
