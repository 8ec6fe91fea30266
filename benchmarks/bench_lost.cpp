/**
 * bench_lost [PHASES]: unplugs the connected instrument in many phases of the disconnect watch's
 * interval, and prints for each, as a JSON array, the milliseconds from there until the message
 * began to be painted. A quarter of the phases is the worst one, directly after connecting; a
 * quarter lies in the first interval, half in the second.
 */
#include "dialogs/DialogSupport.h"
#include "dialogs/InitSettingDialog.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "simulator/KvaSim.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int serialNumber = 1000001;
constexpr int interval = 1000; // ms

/** Notes when a message box was painted, and presses its button. */
class BoxWatch : public QObject {
public:
    BoxWatch() { qApp->installEventFilter(this); }

    void start() {
        m_seen = false;
        m_timer.start();
    }
    bool hasSeen() const { return m_seen; }
    double milliseconds() const { return static_cast<double>(m_nanoseconds) / 1e6; }

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* box = qobject_cast<QMessageBox*>(watched);
        if (box && event->type() == QEvent::Paint && !m_seen) {
            m_nanoseconds = m_timer.nsecsElapsed();
            m_seen = true;
            QMetaObject::invokeMethod(box, "accept", Qt::QueuedConnection);
        }
        return false;
    }

private:
    QElapsedTimer m_timer;
    qint64 m_nanoseconds = 0;
    bool m_seen = false;
};

void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "failed: %s\n", what);
        std::exit(1);
    }
}

void wait(int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    DialogSupport::waitUntil([&] { return timer.elapsed() >= milliseconds; });
}

/** How long after connecting the instrument is unplugged the @p number th time, in ms. */
int phase(int number, int phases) {
    const int spread = number * interval / phases;
    if (number % 2 != 0)
        return interval + spread;
    return number % 4 == 0 ? 0 : spread;
}

/** From here to the message. The library has delivered its event when unplugging returns. */
double loseInstrument(BoxWatch& watch) {
    watch.start();
    require(KvaSim_Unplug(serialNumber), "unplugging");
    KvaSim_WaitForEvents();
    QElapsedTimer patience;
    patience.start();
    DialogSupport::waitUntil([&] { return watch.hasSeen() || patience.elapsed() > 10 * interval; });
    require(watch.hasSeen(), "no message");
    require(KvaSim_Plug(serialNumber), "plugging");
    KvaSim_WaitForEvents();
    return watch.milliseconds();
}

} // namespace

int main(int argc, char* argv[]) {
    const QApplication application(argc, argv);
    const int phases = argc > 1 ? std::atoi(argv[1]) : 40;
    require(phases > 0, "phases");
    require(KvaSim_LoadJson("{\"version\": 1, \"instruments\": [{\"serialNumber\": 1000001}]}"),
            KvaSim_LastError());
    const std::shared_ptr<CKvaSdk_Ctrl> ctrl(new CKvaSdk_Ctrl);
    InitSettingDialog dialog;
    dialog.setSdkCtrl(ctrl);
    BoxWatch watch;

    std::vector<double> delays;
    for (int i = 0; i < phases; ++i) {
        require(ctrl->GetDevicePortList() && ctrl->m_deviceCount == 1, "enumeration");
        dialog.connectDevice(0, i == 0);
        dialog.show();
        wait(phase(i, phases));
        delays.push_back(loseInstrument(watch));
    }
    for (std::size_t i = 0; i < delays.size(); ++i)
        std::printf("%s%.3f", i > 0 ? ", " : "[", delays[i]);
    std::printf("]\n");
    return 0;
}
