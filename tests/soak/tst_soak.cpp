#include "simulator/KvaSim.h"
#include "tests/dialogs/settings/CalibrationTabs.h"
#include "tests/soak/ProcessUse.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cstdio>
#include <cstring>

/**
 * The same work over and over: what the process holds after the first rounds, it holds at the end,
 * and no more. VQTL4_SOAK_ROUNDS and VQTL4_SOAK_REGISTRATIONS (of each accessory) say how often.
 */
class TestSoak : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void connectReadWriteDisconnect();
    void registerFromTheDialog();
};

namespace {

constexpr int usualRounds = 5000;
constexpr int usualRegistrations = 110;

/** How often the environment wants it done. */
int wanted(const char* variable, int usual) {
    bool isNumber = true;
    const QByteArray text = qgetenv(variable);
    const int count = text.isEmpty() ? usual : text.toInt(&isNumber);
    if (!isNumber || count < 100)
        SettingsFixture::giveUp(QLatin1String(variable) +
                                QStringLiteral(" must be a number from 100 on"));
    return count;
}

/** After how many of them everything that is made once has been made. */
int warmUpOf(int count) {
    return std::min(100, count / 5);
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

/** Compares the two and prints them. @return what has grown; empty when nothing has */
QString growth(const ProcessUse& start, const ProcessUse& end, const Allowance& allowance) {
    std::printf("  start: %s\n  end:   %s\n", qUtf8Printable(start.text()),
                qUtf8Printable(end.text()));
    std::fflush(stdout);
    QStringList grown;
    if (end.heapBlocks - start.heapBlocks > allowance.heapBlocks)
        grown.append(QStringLiteral("heap blocks"));
    if (end.heapBytes - start.heapBytes > allowance.heapBytes)
        grown.append(QStringLiteral("heap bytes"));
    if (ProcessUse::isExact && end.residentBytes - start.residentBytes > allowance.residentBytes)
        grown.append(QStringLiteral("resident memory"));
    if (end.openFiles != start.openFiles)
        grown.append(QStringLiteral("open files"));
    if (end.threads != start.threads)
        grown.append(QStringLiteral("threads"));
    return grown.join(QStringLiteral(", "));
}

// ---- The controller's rounds

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
           controller.m_serialNo.toInt() == SettingsFixture::serialNumber &&
           controller.m_macAddress == QLatin1String("02:0A:BC:0D:EF:09") &&
           controller.m_curWCPSerialNo == QLatin1String("12345678") &&
           controller.m_curAmbAdpSerialNo == QLatin1String("00012345");
}

bool write(CKvaSdk_Ctrl& controller, int round) {
    controller.m_networkInfo = settingsOfRound(round);
    return controller.SetNetworkInfo() && controller.SetShutdownTime(powerOffModeOfRound(round));
}

// ---- The dialog's registrations

/** The serial number that the instrument holds, as the tab shows it. */
QString shownSerialNo(SettingsFixture& f, const CalibrationTab& tab) {
    return f.calibrationTexts().at(tab.firstText);
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
    return boxes == QStringList{QStringLiteral("information: Successful read file data."),
                                QStringLiteral("information: Successful device writing.")} &&
           shownSerialNo(f, tab) == QString::fromLatin1(serialNo);
}

} // namespace

void TestSoak::connectReadWriteDisconnect() {
    const int rounds = wanted("VQTL4_SOAK_ROUNDS", usualRounds);
    const int warmUp = warmUpOf(rounds);
    SettingsFixture f;
    CKvaSdk_Ctrl& controller = *f.controller;
    QVERIFY(controller.GetDevicePortList() && controller.Connect(0, 10));
    QVERIFY(write(controller, 0) && controller.Disconnect());
    ProcessUse start = {};
    QElapsedTimer time;
    time.start();
    int before = 0;
    for (int round = 1; round <= rounds; ++round) {
        // Where it is measured, the same settings: their texts are on the heap.
        const int settings = round == warmUp || round == rounds ? 0 : round;
        QVERIFY2(readsWhatWasWritten(controller, before), qPrintable(QString::number(round)));
        QVERIFY2(write(controller, settings), qPrintable(QString::number(round)));
        QVERIFY2(controller.Disconnect(), qPrintable(QString::number(round)));
        before = settings;
        f.clearRecords();
        if (round == warmUp)
            start = useAtRest(f);
    }
    std::printf("%d rounds in %lld ms, measured after %d and at the end\n", rounds,
                static_cast<long long>(time.elapsed()), warmUp);
    QCOMPARE(growth(start, useAtRest(f), {0, 16 * 1024}), QString());
}

void TestSoak::registerFromTheDialog() {
    const int registrations = wanted("VQTL4_SOAK_REGISTRATIONS", usualRegistrations);
    const int warmUp = warmUpOf(registrations);
    const QTemporaryDir folder;
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    ProcessUse start = {};
    QElapsedTimer time;
    time.start();
    for (int round = 1; round <= registrations; ++round) {
        for (const bool adapter : {false, true}) {
            const CalibrationTab& tab = calibrationTab(adapter);
            const QByteArray serialNo = round % 2 == 0 ? tab.serialLine : tab.lowestSerialLine;
            const QString path = folder.filePath(QLatin1String(serialNo) + QStringLiteral(".csv"));
            QCOMPARE(writeFile(path, valueFile(serialNo, tab.valueCount)), path);
            QVERIFY2(registerFile(f, tab, path, serialNo), qPrintable(QString::number(round)));
        }
        if (round == warmUp)
            start = useAtRest(f);
    }
    std::printf("%d registrations of each accessory in %lld ms, measured after %d and at the end\n",
                registrations, static_cast<long long>(time.elapsed()), warmUp);
    // With windows being shown, the heap goes up and down by a few blocks from look to look.
    QCOMPARE(growth(start, useAtRest(f), {32, 128 * 1024}), QString());
}

QTEST_MAIN(TestSoak)
#include "tst_soak.moc"
