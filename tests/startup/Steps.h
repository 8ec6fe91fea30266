#ifndef TESTS_STARTUP_STEPS_H
#define TESTS_STARTUP_STEPS_H

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

/** The steps of a user, as probe/Driver.h takes them. */
namespace Steps {

inline const QString languageDialog = QStringLiteral("LangSelectDialog");
inline const QString instrumentDialog = QStringLiteral("ConnectSelectDialog");
inline const QString settingsDialog = QStringLiteral("InitSettingDialog");
inline const QString messageBox = QStringLiteral("QMessageBox");

inline QJsonObject step(const QString& window, const QString& what, const QJsonValue& value) {
    return {{QStringLiteral("window"), window}, {what, value}};
}

inline QJsonObject click(const QString& window, const QString& button) {
    return step(window, QStringLiteral("click"), button);
}

inline QJsonObject closeWindow(const QString& window) {
    return step(window, QStringLiteral("close"), true);
}

/** As a key for Cancel would, were it not swallowed. */
inline QJsonObject rejectWindow(const QString& window) {
    return step(window, QStringLiteral("reject"), true);
}

inline QJsonObject hideWindow(const QString& window) {
    return step(window, QStringLiteral("hide"), true);
}

inline QJsonObject strike(const QString& window, Qt::Key key) {
    return step(window, QStringLiteral("key"), key);
}

inline QJsonObject selectRow(int row) {
    return step(instrumentDialog, QStringLiteral("select"), row);
}

inline QJsonObject dismissBox() {
    return step(messageBox, QStringLiteral("press"), QStringLiteral("Ok"));
}

inline QJsonObject turnTo(int page) {
    return step(settingsDialog, QStringLiteral("page"), page);
}

/** Each edit, by its object name, with its text. */
inline QJsonObject fill(const QJsonObject& texts) {
    return step(settingsDialog, QStringLiteral("fill"), texts);
}

inline QJsonObject chooseFile(const QString& path) {
    return step(QStringLiteral("QFileDialog"), QStringLiteral("choose"), path);
}

/** While the language dialog is open. */
inline QJsonObject removeFile(const QString& path) {
    return step(languageDialog, QStringLiteral("removeFile"), path);
}

inline QJsonObject chooseEnglish() {
    return click(languageDialog, QStringLiteral("engRadioBtn"));
}

inline QJsonObject chooseJapanese() {
    return click(languageDialog, QStringLiteral("jpnRadioBtn"));
}

inline QJsonObject confirmLanguage() {
    return click(languageDialog, QStringLiteral("pushButton"));
}

inline QJsonObject confirmInstrument() {
    return click(instrumentDialog, QStringLiteral("pushButton"));
}

inline QJsonObject disconnectInstrument() {
    return click(settingsDialog, QStringLiteral("disConnectPushBtn"));
}

inline QJsonObject pressClose() {
    return click(settingsDialog, QStringLiteral("ClosePushBtn"));
}

} // namespace Steps

#endif
