#include "dialogs/ConnectSelectDialog.h"
#include "dialogs/DialogSupport.h"
#include "dialogs/InitSettingDialog.h"
#include "dialogs/LangSelectDialog.h"
#include "dialogs/Language.h"
#include "instrument/CKvaSdk_Ctrl.h"

#include <QApplication>
#include <QFont>
#include <QLocale>
#include <QTranslator>
#include <QtDebug>

#include <cstdlib>
#include <memory>

namespace {

/** What one step of the start leaves for the next ones. */
struct StartUp {
    QString iconPath;
    bool defaultLoaded = false; ///< the default translation is installed
};

/** Loads exactly the file of @p language. */
bool load(QTranslator& translator, const Language& language) {
    const QString path = DialogSupport::resourcePath(QLatin1String(language.fileName));
    // Empty, not null: null means Qt's default suffix and delimiters, which lead to other files.
    const QString none = QStringLiteral("");
    return translator.load(path, none, none, none);
}

/** Qt calls exit() within an event when macOS' Quit is chosen while no event loop runs, and when
   the X server is gone. No window is closed then. After a usual end there is no controller any
   more. */
void disconnectAtExit(const std::shared_ptr<CKvaSdk_Ctrl>& ctrl) {
    static std::weak_ptr<CKvaSdk_Ctrl> controller;
    controller = ctrl;
    std::atexit([] {
        const std::shared_ptr<CKvaSdk_Ctrl> left = controller.lock();
        if (left && left->m_connected)
            left->Disconnect();
    });
}

void showStartUpMessage(const StartUp& startUp, const QString& text) {
    DialogSupport::showMessageBox(QObject::tr("Spectrophotometer Configuration Tool VQ-TL4"), text,
                                  QMessageBox::Information, startUp.iconPath);
}

void installDefaultLanguage(QTranslator& translator, const Language& language, StartUp& startUp) {
    startUp.defaultLoaded = load(translator, language);
    if (startUp.defaultLoaded)
        QCoreApplication::installTranslator(&translator);
    else
        showStartUpMessage(startUp, QObject::tr("Failed to set default language."));
}

/** Replaces the default language by the chosen one. */
void installChosenLanguage(QTranslator& defaultTranslator, const Language& language,
                           const StartUp& startUp) {
    // Never deleted: the application keeps its translation until the process ends.
    static QTranslator* const translator = new QTranslator;
    qDebug(language.chosenLine, language.code);
    if (!load(*translator, language)) {
        showStartUpMessage(startUp, QObject::tr(language.failure));
        return;
    }
    if (startUp.defaultLoaded)
        QCoreApplication::removeTranslator(&defaultTranslator);
    QCoreApplication::installTranslator(translator);
}

/** The instrument to connect to at start: an index into the controller's list, or -1. */
int chooseInstrument(const std::shared_ptr<CKvaSdk_Ctrl>& ctrl, ConnectSelectDialog& dialog,
                     const StartUp& startUp) {
    if (!ctrl->GetDevicePortList()) {
        showStartUpMessage(startUp, QObject::tr("The measuring instruments is not connected."));
        return -1;
    }
    if (ctrl->m_deviceCount == 1)
        return 0;
    dialog.setSdkCtrl(ctrl);
    dialog.choose(ctrl->m_deviceNameList, [] { return false; });
    return dialog.portNum;
}

/** From the choice of the instrument until the settings dialog is left. */
void configureInstrument(const std::shared_ptr<CKvaSdk_Ctrl>& ctrl, const StartUp& startUp) {
    // Created only now, in the chosen language. The settings dialog is destroyed first.
    ConnectSelectDialog connectSelectDialog;
    InitSettingDialog settingDialog;
    const int portNum = chooseInstrument(ctrl, connectSelectDialog, startUp);
    settingDialog.setSdkCtrl(ctrl);
    settingDialog.setConnectSelectDialog(&connectSelectDialog);
    settingDialog.connectDevice(portNum, true);
    settingDialog.show();
    DialogSupport::waitUntilLeft(settingDialog, settingDialog.isFinished);
}

} // namespace

/** The whole run: shows each window in turn and waits for it. Only message boxes and file dialogs
    run an event loop. The objects are destroyed in reverse order of their declarations. */
int main(int argc, char* argv[]) {
    const QApplication application(argc, argv);
    const std::shared_ptr<CKvaSdk_Ctrl> ctrl(new CKvaSdk_Ctrl);
    disconnectAtExit(ctrl);
    const QFont font(QStringLiteral("San Francisco"), 13, QFont::Normal, false);
    QApplication::setFont(font);
    QTranslator defaultTranslator;

    const Language& defaultLanguage = Language::ofLocale(QLocale::system().name());

    StartUp startUp;
    startUp.iconPath = DialogSupport::iconPath();
    QApplication::setWindowIcon(DialogSupport::iconAt(startUp.iconPath));
    installDefaultLanguage(defaultTranslator, defaultLanguage, startUp);

    LangSelectDialog languageDialog;
    languageDialog.setLanguage(defaultLanguage.code);
    languageDialog.show();
    DialogSupport::waitUntilLeft(languageDialog, languageDialog.isFinished);

    if (!languageDialog.isCancelled) {
        if (const Language* chosen = Language::ofCode(languageDialog.languageCode))
            installChosenLanguage(defaultTranslator, *chosen, startUp);
        configureInstrument(ctrl, startUp);
    }
    // No event loop runs, so this ends none. It stays because programs that intercept the call
    // learn from it that the run is over.
    QCoreApplication::exit(0);
    return 0;
}
