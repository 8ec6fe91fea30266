// Instruments come and go at random, at the hands of another process, while a user works with the
// dialog. VQTL4_STORM_SECONDS sets how long, VQTL4_STORM_SEED repeats the choices of a run.

#include "simulator/KvaSim.h"
#include "tests/dialogs/settings/ConnectedFixture.h"

#include <random>
#include <thread>

namespace {

constexpr int defaultSeconds = 5;
constexpr int stormWatchInterval = 3; // ms: many ticks, so that they meet the events at all moments
const QString lostBox = SettingsFixture::lostBox;

/** Every box that the dialog has for these buttons. */
const QStringList possibleBoxes = {
    "error: Failed to connect device.",
    "error: Failed to read device data.",
    "information: Wireless LAN is invalid.",
    "error: Failed to device WhiteCalibPlateSerialNo.",
    "error: Failed to device AmbientLightAdapterSerialNo.",
    "error: Failed to read automatic shutdown time.",
    "information: The measuring instruments is not connected.",
    "error: Failed to device disconnect.",
    "error: Failed to disconnect device.",
    lostBox,
    "information: Successful read body data.",
    "error: Failed to read Network Infomation data.",
    "error: The input value is invalid.",
    networkWrittenBox,
    "error: Failed to write Network Infomation data.",
    "information: Successful read file data.",
    "error: Failed to write WhiteCalibPlate file.",
    "error: Failed to write AmbientLightAdapter file.",
    "error: Failed to write WhiteCalibPlate data.",
    "error: Failed to write AmbientLightAdapter data.",
    "information: Successful device writing.",
    "error: Failed to write automatic shutdown time.",
};

struct Button {
    SettingsFixture::Page page;
    QString name;
    QString file; ///< chosen in its file dialog
};

/** Whether the buttons show one of the dialog's two states, the one that its watch is in. */
bool isConsistent(SettingsFixture& f) {
    const bool isConnected = watchOf(f.dialog).isActive();
    return f.child("ConnectPushBtn").isEnabled() == !isConnected &&
           f.child("ClosePushBtn").isEnabled() == !isConnected &&
           f.child("disConnectPushBtn").isEnabled() == isConnected &&
           f.child("autoPowerOfftab").isEnabled() == isConnected;
}

/** Whether the library has a connection to an instrument that is there. */
bool isReached() {
    std::uint8_t mode = 0;
    return KVA_GetShutdownTime(&mode) == KVA_SUCCESS;
}

} // namespace

/** The settings dialog while instruments come and go. */
class TestPlugStorm : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        const QJsonObject bench = {{"version", 1},
                                   {"instruments", QJsonArray{TestBench::instrument()}}};
        m_bench = m_folder.write("bench.json", QJsonDocument(bench).toJson());
        using F = SettingsFixture;
        m_buttons = {
            {F::Network, "ConnectPushBtn", {}},
            {F::Network, "readBodyPushBtn", {}},
            {F::Network, "writeBodyPushBtn", {}},
            {F::PowerOff, "getAutoPWOffPushBtn", {}},
            {F::PowerOff, "setAutoPWOffPushBtn", {}},
            {F::WhitePlate, "selWCPFilePushBtn",
             m_folder.write("plate.csv", calibrationTab(false).file())},
            {F::WhitePlate, "setWCPValPushBtn", {}},
            {F::AmbientAdapter, "selAmbLightAdpFilePushBtn",
             m_folder.write("adapter.csv", calibrationTab(true).file())},
            {F::AmbientAdapter, "setAmbAdpBodyPushBtn", {}},
            {F::Network, "disConnectPushBtn", {}},
        };
    }

    void survivesAndStillWatches() {
        const auto seed = static_cast<unsigned int>(
            numberFrom("VQTL4_STORM_SEED", static_cast<int>(std::random_device()() & 0x7FFFFFFFU)));
        const int seconds = numberFrom("VQTL4_STORM_SECONDS", defaultSeconds);
        qInfo("seed %u, %d seconds", seed, seconds);
        std::mt19937 random(seed);
        open();
        if (QTest::currentTestFailed())
            return;
        QProcess plugger; // another process, which plugs until its input ends
        plugger.start("env", {"KVASIM_BENCH=" + m_bench, BENCH_USER,
                              QString::number(TestBench::serialNumber), QString::number(seed + 1)});
        weather(QDeadlineTimer(1000 * seconds), random);
        plugger.closeWriteChannel();
        QVERIFY(plugger.waitForFinished());
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(plugger.exitCode(), 0);
        const int plugs = plugger.readAllStandardOutput().trimmed().toInt();
        QVERIFY(plugs > 0);
        connectAgain();
        if (QTest::currentTestFailed())
            return;
        // Once more, with the watch as the dialog itself sets it.
        watchOf(m_fixture->dialog).setInterval(m_ownInterval);
        act(m_buttons.last());
        connectAgain();
        if (QTest::currentTestFailed())
            return;
        std::thread hand([] { KvaSim_Unplug(TestBench::serialNumber); });
        hand.join();
        QTRY_COMPARE_WITH_TIMEOUT(m_fixture->boxes(), QStringList(lostBox), 2000);
        QVERIFY(!watchOf(m_fixture->dialog).isActive());
        QVERIFY(isConsistent(*m_fixture));
        m_fixture.reset();
        QVERIFY(m_presses > 0);
        qInfo("%d presses, %d plugs, %d losses, %d dialogs", m_presses, plugs, m_losses, m_dialogs);
    }

private:
    void open() {
        m_fixture.reset();
        m_fixture = std::make_unique<SettingsFixture>();
        // On a bench in a file the other process can reach it.
        QVERIFY2(KvaSim_LoadFile(qPrintable(m_bench)), KvaSim_LastError());
        m_ownInterval = watchOf(m_fixture->dialog).interval();
        watchOf(m_fixture->dialog).setInterval(stormWatchInterval);
        m_fixture->dialog.connectDevice(-1, false);
        m_fixture->dialog.show();
        ++m_dialogs;
    }

    void weather(const QDeadlineTimer& deadline, std::mt19937& random) {
        while (!deadline.hasExpired()) {
            const auto choice =
                static_cast<int>(random() % static_cast<unsigned>(m_buttons.size()));
            act(m_buttons[choice]);
            const bool refusedToDisconnect =
                m_fixture->boxes().contains("error: Failed to device disconnect.");
            checkBoxes();
            if (QTest::currentTestFailed())
                return;
            // A standby event takes the loss back before the watch has seen it; the dialog then
            // stays connected to nothing, and the user starts it anew.
            if (refusedToDisconnect && watchOf(m_fixture->dialog).isActive()) {
                m_fixture->dialog.close();
                checkBoxes();
                open();
            }
        }
    }

    void act(const Button& button) {
        SettingsFixture& f = *m_fixture;
        f.openPage(button.page);
        const QWidget& widget = f.child(button.name);
        if (widget.isVisible() && widget.isEnabled()) {
            if (!button.file.isEmpty())
                f.answers.willChoose(button.file);
            f.click(button.name);
            ++m_presses;
        }
        QCoreApplication::processEvents();
        QVERIFY(QApplication::activeModalWidget() == nullptr);
        QVERIFY2(isConsistent(f), qPrintable(button.name));
    }

    void checkBoxes() {
        const QStringList boxes = m_fixture->boxes();
        for (const QString& box : boxes) {
            QVERIFY2(possibleBoxes.contains(box), qPrintable(box));
            m_losses += box == lostBox ? 1 : 0;
        }
        m_fixture->answers.boxes.clear();
        m_fixture->log.clear();
    }

    /** Brings the dialog to a connection that holds. */
    void connectAgain() {
        KvaSim_Plug(TestBench::serialNumber);
        KvaSim_WaitForEvents();
        if (watchOf(m_fixture->dialog).isActive() && !isReached()) {
            m_fixture->dialog.close();
            open();
        }
        if (!watchOf(m_fixture->dialog).isActive())
            act(m_buttons.first());
        checkBoxes();
        QVERIFY(watchOf(m_fixture->dialog).isActive());
        QVERIFY(isReached());
    }

    TestFolder m_folder;
    QVector<Button> m_buttons;
    std::unique_ptr<SettingsFixture> m_fixture;
    QString m_bench;
    int m_presses = 0;
    int m_losses = 0;
    int m_ownInterval = 0; ///< of the dialog's watch, in ms
    int m_dialogs = 0;
};

TEST_CLASS(TestPlugStorm)
#include "tst_plug_storm.moc"
