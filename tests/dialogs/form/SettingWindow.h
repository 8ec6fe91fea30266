#ifndef TESTS_DIALOGS_FORM_SETTINGWINDOW_H
#define TESTS_DIALOGS_FORM_SETTINGWINDOW_H

#include "dialogs/InitSettingDialog.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "tests/support/TestBench.h"

#include <memory>

/** The settings dialog with a controller of its own, on a bench of one simulated instrument. */
class SettingWindow {
public:
    SettingWindow() {
        TestBench::load();
        ctrl = std::make_shared<CKvaSdk_Ctrl>();
        dialog->setSdkCtrl(ctrl);
    }

    /** Connects to the instrument, as the start-up sequence does, and shows the window. False when
        it could not connect. */
    bool connectAndShow() {
        if (!ctrl->GetDevicePortList())
            return false;
        dialog->connectDevice(0, true);
        dialog->show();
        return ctrl->m_connected;
    }

    std::shared_ptr<CKvaSdk_Ctrl> ctrl;
    std::unique_ptr<InitSettingDialog> dialog = std::make_unique<InitSettingDialog>();
};

#endif
