#include "tests/dialogs/form/SettingWindow.h"

#include "instrument/CKvaSdk_Ctrl.h"
#include "simulator/KvaSim.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

SettingWindow::SettingWindow() {
    KvaSim_LoadJson(R"({"version": 1, "instruments": [{"serialNumber": 1000001}]})");
    KvaSim_ClearCallLog();
    g_deviceDisconnected.store(false);
    ctrl = std::make_shared<CKvaSdk_Ctrl>();
    dialog = std::make_unique<InitSettingDialog>();
    dialog->setSdkCtrl(ctrl);
}

SettingWindow::~SettingWindow() {
    // Before the bench goes: the controller takes its handler away.
    dialog.reset();
    ctrl.reset();
    KvaSim_Reset();
}

bool SettingWindow::connectAndShow() {
    if (!ctrl->GetDevicePortList())
        return false;
    dialog->connectDevice(0, true);
    dialog->show();
    return ctrl->m_connected;
}

int SettingWindow::callsOf(const char* function) {
    char* log = KvaSim_CallLog();
    const QJsonArray calls = QJsonDocument::fromJson(QByteArray(log)).array();
    KvaSim_Free(log);
    int count = 0;
    for (const QJsonValue& call : calls)
        count += call.toObject().value(QLatin1String("function")) == QLatin1String(function);
    return count;
}
