/**
 * Constructs the settings dialog and connects to an instrument, which fills it: once after a start
 * like the tool's, and then again and again with new dialogs. Prints in nanoseconds, as JSON, what
 * the construction took and what the rest took outside of libKVASDK. KVASIM_BENCH names a bench of
 * one instrument.
 *
 * "first..." are of the first dialog, where much code runs and many glyphs are drawn for the first
 * time in the process; "again" is the same dialog, shown, after Disconnect. The others are medians
 * of the repetitions.
 */
#include "benchmarks/SdkClock.h"
#include "dialogs/ConnectSelectDialog.h"
#include "dialogs/DialogSupport.h"
#include "dialogs/InitSettingDialog.h"
#include "dialogs/LangSelectDialog.h"
#include "instrument/CKvaSdk_Ctrl.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QLabel>
#include <QTranslator>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

namespace {

using Controller = std::shared_ptr<CKvaSdk_Ctrl>;

constexpr int repetitions = 100;
constexpr int callsOfConnecting = 6;

void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "failed: %s\n", what);
        std::exit(1);
    }
}

void processEvents(int passes) {
    for (int i = 0; i < passes; ++i)
        DialogSupport::waitUntil([asked = false]() mutable { return std::exchange(asked, true); });
}

/** How long it took outside of libKVASDK. */
template <class Action>
long long timed(Action action) {
    const long long sdkBefore = SdkClock::total().count();
    QElapsedTimer timer;
    timer.start();
    action();
    return timer.nsecsElapsed() - (SdkClock::total().count() - sdkBefore);
}

long long median(std::vector<long long> durations) {
    const auto middle = durations.begin() + static_cast<std::ptrdiff_t>(durations.size() / 2);
    std::nth_element(durations.begin(), middle, durations.end());
    return *middle;
}

void showLanguageDialog() {
    LangSelectDialog dialog;
    dialog.setLanguage(Language::english);
    dialog.show();
    processEvents(10);
    dialog.close();
}

bool isFilled(const InitSettingDialog& dialog) {
    const auto* serialNo = dialog.findChild<QLabel*>(QStringLiteral("serialNolabel"));
    return serialNo && !serialNo->text().isEmpty();
}

void disconnectFrom(InitSettingDialog& dialog) {
    dialog.findChild<QAbstractButton*>(QStringLiteral("disConnectPushBtn"))->click();
    require(!isFilled(dialog), "disconnecting");
}

/** A dialog, and what it took to make it. */
struct Constructed {
    std::optional<InitSettingDialog> dialog;
    long long duration = 0;

    Constructed(const Controller& ctrl, ConnectSelectDialog& connectSelectDialog) {
        duration = timed([&] { dialog.emplace(); });
        dialog->setSdkCtrl(ctrl);
        dialog->setConnectSelectDialog(&connectSelectDialog);
    }
};

long long connectAndFill(InitSettingDialog& dialog, bool firstTime) {
    const int callsBefore = SdkClock::calls();
    const long long duration = timed([&] { dialog.connectDevice(0, firstTime); });
    require(isFilled(dialog), "connecting");
    require(SdkClock::calls() == callsBefore + callsOfConnecting, "counting the calls");
    return duration;
}

void measureOnce(const Controller& ctrl, ConnectSelectDialog& connectSelectDialog) {
    Constructed first(ctrl, connectSelectDialog);
    const long long filling = connectAndFill(*first.dialog, true);
    first.dialog->show();
    processEvents(10);
    disconnectFrom(*first.dialog);
    processEvents(10);
    const long long fillingAgain = connectAndFill(*first.dialog, false);
    disconnectFrom(*first.dialog);
    std::printf("{\"firstConstruction\": %lld, \"firstFilling\": %lld, \"again\": %lld, ",
                first.duration, filling, fillingAgain);
}

void measureRepeatedly(const Controller& ctrl, ConnectSelectDialog& connectSelectDialog) {
    std::vector<long long> constructions;
    std::vector<long long> fillings;
    for (int i = 0; i < repetitions; ++i) {
        Constructed next(ctrl, connectSelectDialog);
        constructions.push_back(next.duration);
        fillings.push_back(connectAndFill(*next.dialog, true));
        disconnectFrom(*next.dialog);
    }
    std::printf("\"construction\": %lld, \"filling\": %lld}\n", median(constructions),
                median(fillings));
}

} // namespace

int main(int argc, char* argv[]) {
    const QApplication application(argc, argv);
    const Controller ctrl(new CKvaSdk_Ctrl);
    QApplication::setFont(QFont(QStringLiteral("San Francisco"), 13, QFont::Normal, false));
    QApplication::setWindowIcon(QIcon(DialogSupport::resourcePath(QStringLiteral("VQ_TL4.ico"))));
    QTranslator translator;
    require(translator.load(DialogSupport::resourcePath(QStringLiteral("en.qm"))), "translation");
    QCoreApplication::installTranslator(&translator);
    showLanguageDialog();

    ConnectSelectDialog connectSelectDialog;
    require(ctrl->GetDevicePortList() && ctrl->m_deviceCount == 1, "a bench of one instrument");
    measureOnce(ctrl, connectSelectDialog);
    measureRepeatedly(ctrl, connectSelectDialog);
    return 0;
}
