#ifndef TESTS_STARTUP_PROGRAMRUN_H
#define TESTS_STARTUP_PROGRAMRUN_H

#include "tests/support/TestFolder.h"
#include "tests/support/TestMain.h"

#include <QTranslator>

inline const QString unitedStates = "en_US.UTF-8";
inline const QString japan = "ja_JP.UTF-8";
inline const QString registration = "KVA_RegisterDeviceEventHandler";
inline const QString enumeration = "KVA_GetDevicePortList";
inline const QString notConnected = "The measuring instruments is not connected.";

/** Of a window without a close button. Qt itself adds `Qt::Window` and the system menu to those of
    a window without parent. */
inline constexpr int titledFlags = Qt::Window | Qt::WindowSystemMenuHint | Qt::CustomizeWindowHint |
                                   Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint |
                                   Qt::WindowMaximizeButtonHint;

/** A bench of the first so many of: 1000001 by USB, 1000002 at 192.168.0.20, 1000003 by USB. */
QJsonObject benchOf(int instruments, const QJsonArray& faults = {});

/** A rule: the nth call of a function has this result. 0: every call. */
QJsonObject fault(const QString& function, int call, const QString& result = "KVA_ERROR");

/** The text of a widget in the state of a window. */
inline QString textIn(const QJsonObject& state, const QString& objectName) {
    return state["texts"][objectName].toString();
}

/** A list in the state of a window: "checked", "disabled", "rows". */
inline QStringList namesIn(const QJsonObject& state, const QString& list) {
    return state[list].toVariant().toStringList();
}

/** A message box as the story names it. */
inline QString boxNamed(const QString& text) {
    return "QMessageBox \"" + text + '"';
}

/**
 * One run of the program as a child process, on simulated instruments of its own, in a temporary
 * folder of its own, with a user inside who takes the prepared steps.
 */
class ProgramRun {
public:
    /** In English, unless `locale` is changed. */
    explicit ProgramRun(const QJsonArray& userSteps, const QJsonObject& instruments = benchOf(2));

    /** Runs the program until it ends by itself. False: see `problem`. A run is good when it ended
        with the exit status 0, every step was taken, and standard error carries the log. */
    bool run();
    /** Why the last run was not good, with what the program wrote. */
    QByteArray problem() const;

    /** What happened, in order: windows that came, went and were destroyed ("shown
        LangSelectDialog", "shown QMessageBox "text""), the calls of libKVASDK by name, debug lines
        ("log text"), "application ends". Without the ticks of the disconnect watch. */
    QStringList story() const;
    /** The windows of the story that were shown, in order. */
    QStringList shownWindows() const { return told("shown"); }
    QStringList debugLines() const { return told("log"); }
    /** The calls of libKVASDK to the very end, as its trace has them. */
    QStringList calledFunctions() const;
    /** An argument of each call of a function, in order. */
    QJsonArray argumentsOf(const QString& function, const QString& argument) const;

    /** What the windows of a class showed before each step that was taken in them. */
    QVector<QJsonObject> states(const QString& className) const;
    /** The first of them; empty when there was none. */
    QJsonObject state(const QString& className) const { return states(className).value(0); }
    QStringList boxTexts() const;

    QJsonArray steps;
    QJsonObject bench;
    QString program;                 ///< path; the built one unless changed
    QString locale;                  ///< for LC_ALL; none when empty
    QProcessEnvironment environment; ///< what else is set for the program

private:
    QProcessEnvironment childEnvironment() const;
    QByteArray findProblem(const QProcess& process) const;
    /** The lines of the story that begin with this word, without it. */
    QStringList told(const QString& word) const;

    TestFolder m_folder;
    QVector<QJsonObject> m_events;
    QByteArray m_standardError;
    QByteArray m_problem;
};

inline const QString english = "en.qm";
inline const QString japanese = "jp.qm";

/** A copy of the program with its library and its resources, to be changed before a run. Gives up
    when a file cannot be copied, written or removed. */
class ProgramTree {
public:
    ProgramTree() {
        copy(VQTL4_PROGRAM, program());
        replaceLibrary(VQTL4_LIBRARY);
        for (const QString& name : {english, japanese, QString("VQ_TL4.ico")})
            copy(VQTL4_RESOURCES "/" + name, resource(name));
    }

    QString program() const { return m_folder.path("bin/" + QFileInfo(VQTL4_PROGRAM).fileName()); }
    QString resource(const QString& name) const { return m_folder.path("Resources/" + name); }

    void removeResource(const QString& name) const {
        if (!QFile::remove(resource(name)))
            giveUp(resource(name) + " cannot be removed");
    }
    void writeResource(const QString& name, const QByteArray& content) const {
        m_folder.write("Resources/" + name, content);
    }
    void replaceLibrary(const QString& source) const {
        copy(source, m_folder.path("lib/" + QFileInfo(VQTL4_LIBRARY).fileName()));
    }

private:
    static void copy(const QString& source, const QString& path) {
        QFile::remove(path);
        if (!QDir().mkpath(QFileInfo(path).path()) || !QFile::copy(source, path))
            giveUp(source + " cannot be copied to " + path);
    }

    TestFolder m_folder;
};

/** A text as a file of translations has it; the text itself where it has none.
    @param fileName  "en.qm" or "jp.qm", of the built program */
inline QString translated(const QString& fileName, const char* context, const char* text) {
    QTranslator translator;
    if (!translator.load(VQTL4_RESOURCES "/" + fileName))
        giveUp(fileName + " cannot be read");
    const QString found = translator.translate(context, text);
    return found.isNull() ? text : found;
}

/** The steps of a user, as probe/Driver.h takes them. */
namespace Steps {

inline const QString languageDialog = "LangSelectDialog";
inline const QString instrumentDialog = "ConnectSelectDialog";
inline const QString settingsDialog = "InitSettingDialog";
inline const QString messageBox = "QMessageBox";

inline QJsonObject step(const QString& window, const QString& action,
                        const QJsonValue& value = true) {
    return {{"window", window}, {"action", action}, {"value", value}};
}

inline QJsonObject click(const QString& window, const QString& button) {
    return step(window, "click", button);
}

inline QJsonObject closeWindow(const QString& window) {
    return step(window, "close");
}

inline QJsonObject selectRow(int row) {
    return step(instrumentDialog, "select", row);
}

inline const QJsonObject chooseEnglish = click(languageDialog, "engRadioBtn");
inline const QJsonObject chooseJapanese = click(languageDialog, "jpnRadioBtn");
inline const QJsonObject confirmLanguage = click(languageDialog, "pushButton");
inline const QJsonObject confirmInstrument = click(instrumentDialog, "pushButton");
inline const QJsonObject disconnectInstrument = click(settingsDialog, "disConnectPushBtn");
inline const QJsonObject pressClose = click(settingsDialog, "ClosePushBtn");
inline const QJsonObject dismissBox = step(messageBox, "press");

} // namespace Steps

#endif
