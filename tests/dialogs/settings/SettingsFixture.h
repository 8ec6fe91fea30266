#ifndef TESTS_DIALOGS_SETTINGS_SETTINGSFIXTURE_H
#define TESTS_DIALOGS_SETTINGS_SETTINGSFIXTURE_H

#include "dialogs/ConnectSelectDialog.h"
#include "dialogs/InitSettingDialog.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "tests/support/DebugLog.h"
#include "tests/support/ModalAnswerer.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLineEdit>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <functional>
#include <memory>

/** The dialog's disconnect watch, which is not a child of the dialog. */
QTimer& watchOf(InitSettingDialog& dialog);

/**
 * A settings dialog with its controller and its selection dialog on a bench of simulated
 * instruments, and everything that it does recorded: boxes, file dialogs, debug lines, calls. One
 * at a time. The thread of the test only.
 */
class SettingsFixture {
public:
    static constexpr int serialNumber = 1234567;

    /** Pages of the tab widget. */
    enum Page { Network, PowerOff, WhitePlate, AmbientAdapter };

    /** A USB instrument, every setting of it as the .cpp says. */
    static QJsonObject instrument(int serial = serialNumber);

    /** @param instruments  the instruments on the bench, in the order of its list */
    explicit SettingsFixture(const QJsonArray& instruments = {instrument()});
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

    // ---- The bench

    /** Changes the first instrument by a JSON merge patch. */
    static bool set(const char* patch);
    /** Lets a function answer @p result. @param call the nth call from now; 0: every call */
    static bool answer(const QString& function, int result = KVA_ERROR, int call = 0);
    /** What the first instrument holds. */
    static QJsonObject state();
    /** The functions called, in order. */
    static QStringList calls();
    /** The arguments of the last call of that function; empty when it was not called. */
    static QJsonObject argumentsOf(const QString& function);
    /** Delivers a device event, and returns when it has been handled. */
    static void emitEvent(quint32 code);

    // ---- The dialog

    template <typename Widget = QWidget>
    Widget& child(const QString& name) {
        auto* found = dialog.findChild<Widget*>(name);
        if (!found)
            giveUp(QStringLiteral("no widget ") + name);
        return *found;
    }

    /** Clicks a button with the mouse. It has to be one that a user could click. */
    void click(const QString& name);
    /** Runs a slot whether or not a user could get at it. */
    void invoke(const char* slot);
    /** Unchecks a radio button as its exclusive group would not. */
    void uncheck(const QString& name);
    QVector<QLineEdit*> addressEdits();
    /** Fills the sixteen address edits. */
    void setOctets(const QStringList& octets);

    /** Those of the tabs, the pages and all push buttons that are disabled themselves, be their
        parents as they may: in the order of their lists in the .cpp. */
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
    /** 16 or 0 unless something is wrong. */
    int enabledAddressEdits();
    /** Everything above, and whether the radio buttons are checkable. */
    QStringList everything();

    // ---- Records

    /** "information: text" or "error: text" for each box; another word in front for one that is not
        as all boxes are to be. */
    QStringList boxes() const;
    /** The debug lines, those of the instrument's thread included. */
    QStringList lines() const;

    /** Calls @p action, once, when the window is shown. */
    void whenShown(QWidget& window, std::function<void()> action);
    /** Waits, while @p below is open, for a box on top of it and presses its Ok.
        @return as `boxes`; empty when none came */
    static QString dismissBoxAbove(QWidget& below);

    static const QStringList& disabledWhenConnected();
    static const QStringList& disabledWhenNotConnected();
    /** The debug lines of a connection where all goes well, from the listing on. */
    static QStringList connectLines(int instrumentCount = 1);
    /** The calls of a connection where all goes well, without the listing. */
    static QStringList connectCalls();

    /** The debug lines of checking these texts for digits, all of which pass. */
    static QStringList digitLines(const QStringList& texts);

    /** Ends the program: the test itself is wrong. Not by qFatal, whose text the log would keep. */
    [[noreturn]] static void giveUp(const QString& reason);

    /** Whether `connectFirst` leaves the watch its second. */
    bool keepsWatching = false;

    DebugLog log;
    std::shared_ptr<CKvaSdk_Ctrl> controller;
    ConnectSelectDialog selection;
    InitSettingDialog dialog;
    ModalAnswerer answers;
};

#endif
