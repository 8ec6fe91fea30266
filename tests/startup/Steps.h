#ifndef TESTS_STARTUP_STEPS_H
#define TESTS_STARTUP_STEPS_H

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

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
