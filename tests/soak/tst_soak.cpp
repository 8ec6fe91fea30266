#include "tests/dialogs/settings/ConnectedFixture.h"
#include "tests/soak/ProcessUse.h"
#include "tests/support/QtInUse.h"
#include "tests/support/TestBench.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestMain.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>

namespace {

/** How often the environment wants it done. */
int wanted(const char* variable, int usual) {
    bool isNumber = true;
    const QByteArray text = qgetenv(variable);
    const int count = text.isEmpty() ? usual : text.toInt(&isNumber);
    if (!isNumber || count < 100)
        giveUp(QString(variable) + " must be a number from 100 on");
    return count;
}

/** What the process holds when nothing is under way and nothing is recorded. */
ProcessUse useAtRest(SettingsFixture& f) {
    QTest::qWait(50);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    f.clearRecords();
    return ProcessUse::now();
}

/** What the process may hold more at the end than at the start. */
struct Allowance {
    qint64 heapBlocks;
    qint64 heapBytes;
    qint64 residentBytes = 2 * 1024 * 1024;
};

/** What has grown between the two; empty when nothing has. */
QString growth(const ProcessUse& start, const ProcessUse& end, const Allowance& allowance) {
    QStringList grown;
    const auto look = [&grown](const char* what, bool hasGrown) {
        if (hasGrown)
            grown.append(what);
    };
    look("heap blocks", end.heapBlocks - start.heapBlocks > allowance.heapBlocks);
    look("heap bytes", end.heapBytes - start.heapBytes > allowance.heapBytes);
    look("resident memory",
         ProcessUse::isExact && end.residentBytes - start.residentBytes > allowance.residentBytes);
    look("open files", end.openFiles != start.openFiles);
    look("threads", end.threads != start.threads);
    return grown.join(", ");
}

/** One round of the work. @param isMeasured  whether the process is looked at after it
    @return whether it went well */
using Round = std::function<bool(int round, bool isMeasured)>;

/** Works so many rounds. Looks at the process when everything that is made once has been made, and
    at the end. @return what has grown, or which round went wrong; empty: all is well */
QString growthOver(SettingsFixture& f, int rounds, const Allowance& allowance, const Round& work) {
    const int warmUp = std::min(100, rounds / 5);
    ProcessUse start = {};
    QElapsedTimer time;
    time.start();
    for (int round = 1; round <= rounds; ++round) {
        if (!work(round, round == warmUp || round == rounds))
            return QString("round %1 goes wrong").arg(round);
        f.clearRecords();
        if (round == warmUp)
            start = useAtRest(f);
    }
    const ProcessUse end = useAtRest(f);
    std::printf("%d rounds in %lld ms, measured after %d and at the end\n  %s\n  %s\n", rounds,
                static_cast<long long>(time.elapsed()), warmUp, qUtf8Printable(start.text()),
                qUtf8Printable(end.text()));
    std::fflush(stdout);
    return growth(start, end, allowance);
}

/** Settings that are not those of the rounds before, in length neither. */
KVA_NETWORKINFO settingsOfRound(int round) {
    KVA_NETWORKINFO info = {};
    info.APConnectUse = round % 2 == 0 ? eAPConnect_ON : eAPConnect_OFF;
    info.DHCPUse = round % 3 == 0 ? eDHCP_ON : eDHCP_OFF;
    info.IPAddress[0] = info.DefaultGateway[3] = static_cast<uint8_t>(round % 256);
    info.SubnetMask[1] = info.DNS[2] = static_cast<uint8_t>(round / 256 % 256);
    std::memset(info.SSID, 's', static_cast<std::size_t>(1 + round % 32));
    std::memset(info.EncryptKey, 'k', static_cast<std::size_t>(1 + round % 64));
    return info;
}

uint8_t powerOffModeOfRound(int round) {
    return static_cast<uint8_t>(round % 4);
}

/** Connects, reads everything, and finds what the round before has written. */
bool readsWhatWasWritten(CKvaSdk_Ctrl& controller, int before) {
    uint8_t powerOffMode = 0xFF;
    const bool read = controller.GetDevicePortList() && controller.Connect(0, 10) &&
                      controller.GetDeviceInfo() && controller.IsWifiModuleEnabled() &&
                      controller.GetNetworkInfo() && controller.GetCalRefSerialNo() &&
                      controller.GetShutdownTime(powerOffMode);
    const KVA_NETWORKINFO written = settingsOfRound(before);
    return read && powerOffMode == powerOffModeOfRound(before) &&
           std::memcmp(&controller.m_networkInfo, &written, sizeof written) == 0 &&
           controller.m_serialNo.toInt() == TestBench::serialNumber &&
           controller.m_macAddress == "02:0A:BC:0D:EF:09" &&
           controller.m_curWCPSerialNo == "12345678" &&
           controller.m_curAmbAdpSerialNo == "00012345";
}

bool write(CKvaSdk_Ctrl& controller, int round) {
    controller.m_networkInfo = settingsOfRound(round);
    return controller.SetNetworkInfo() && controller.SetShutdownTime(powerOffModeOfRound(round));
}

/** Chooses the file, writes it to the instrument, answers what comes up. False unless all of it
    went well. */
bool registerFile(SettingsFixture& f, const CalibrationTab& tab, const QString& path,
                  const QByteArray& serialNo) {
    f.openPage(tab.page);
    f.answers.willChoose(path);
    f.click(tab.chooseButton);
    f.click(tab.writeButton);
    const QStringList boxes = f.boxes();
    f.clearRecords();
    return boxes == QStringList{"information: Successful read file data.",
                                "information: Successful device writing."} &&
           f.calibrationTexts().at(tab.firstText) == serialNo;
}

} // namespace

/**
 * The same work over and over: what the process holds after the first rounds, it holds at the end,
 * and no more. VQTL4_SOAK_ROUNDS and VQTL4_SOAK_REGISTRATIONS (of each accessory) say how often.
 */
class TestSoak : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void connectReadWriteDisconnect() {
        SettingsFixture f;
        CKvaSdk_Ctrl& controller = *f.controller;
        QVERIFY(controller.GetDevicePortList() && controller.Connect(0, 10));
        QVERIFY(write(controller, 0) && controller.Disconnect());
        int before = 0;
        const auto work = [&](int round, bool isMeasured) {
            // Where it is measured, the same settings: their texts are on the heap.
            const int settings = isMeasured ? 0 : round;
            const bool isDone = readsWhatWasWritten(controller, before) &&
                                write(controller, settings) && controller.Disconnect();
            before = settings;
            return isDone;
        };
        const int rounds = wanted("VQTL4_SOAK_ROUNDS", 5000);
        QCOMPARE(growthOver(f, rounds, {QtInUse::movingBlocks, 16 * 1024}, work), "");
    }

    void registerFromTheDialog() {
        const TestFolder folder;
        SettingsFixture f;
        QVERIFY(f.connectFirst());
        const auto work = [&](int round, bool) {
            bool isDone = true;
            for (const bool adapter : {false, true}) {
                const CalibrationTab& tab = calibrationTab(adapter);
                const QByteArray serialNo = round % 2 == 0 ? tab.serialLine : tab.lowestSerialLine;
                const QString path =
                    folder.write(serialNo + ".csv", TestBench::valueFile(serialNo, tab.valueCount));
                isDone = isDone && registerFile(f, tab, path, serialNo);
            }
            return isDone;
        };
        const int registrations = wanted("VQTL4_SOAK_REGISTRATIONS", 110);
        // With windows being shown, the heap goes up and down by a few blocks from look to look.
        QCOMPARE(growthOver(f, registrations, {32, 128 * 1024}, work), "");
    }
};

TEST_CLASS(TestSoak)
#include "tst_soak.moc"
