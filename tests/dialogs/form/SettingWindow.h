#ifndef TESTS_DIALOGS_FORM_SETTINGWINDOW_H
#define TESTS_DIALOGS_FORM_SETTINGWINDOW_H

#include "dialogs/InitSettingDialog.h"

#include <memory>

class CKvaSdk_Ctrl;

/** The settings dialog with a controller of its own, on a bench of one simulated instrument. */
class SettingWindow {
public:
    SettingWindow();
    ~SettingWindow();
    SettingWindow(const SettingWindow&) = delete;
    SettingWindow& operator=(const SettingWindow&) = delete;

    /** Connects to the instrument, as the start-up sequence does, and shows the window. False when
        it could not connect. */
    bool connectAndShow();

    /** How often the simulated library was asked for this function. */
    static int callsOf(const char* function);

    std::shared_ptr<CKvaSdk_Ctrl> ctrl;
    std::unique_ptr<InitSettingDialog> dialog;
};

#endif
