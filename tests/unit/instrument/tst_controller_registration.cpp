#include "tests/support/DebugLog.h"
#include "tests/support/StandardOutput.h"
#include "tests/unit/instrument/Accessory.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString getCall = QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA");
const QString setCall = QStringLiteral("KVA_JIG_SetFactoryCalib_CALREFDATA");
const QString commitCall = QStringLiteral("KVA_JIG_SetFactoryCalib_WriteSector");
const QStringList allCalls{getCall, setCall, commitCall, getCall};

const QString getFailed = QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA() failed.\n");
const QString fileFailed = QStringLiteral("file.GetCalRefDataFromFile() failed.");
const QString setFailed = QStringLiteral("file.KVA_JIG_SetFactoryCalib_CALREFDATA() failed.\n");
const QString commitFailed = QStringLiteral("KVA_JIG_SetFactoryCalib_WriteSector() failed.\n");

QByteArray recordBytes() {
    return InstrumentBench::bytesOf(InstrumentBench::calibrationRecord());
}

} // namespace

class TestControllerRegistration : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void registers_data();
    void registers();
    void registersOneAfterTheOther();
    void readsTheFileAgain_data();
    void readsTheFileAgain();
    void keepsTheInstrumentsSerialNumber();
    void keepsTheInstrumentsValues_data();
    void keepsTheInstrumentsValues();
    void carriesValuesThatAreNoNumbers();
    void failsAtCall_data();
    void failsAtCall();
    void commitsWhatAFailedCommitLeft_data();
    void commitsWhatAFailedCommitLeft();
    void failsAtFile_data();
    void failsAtFile();
    void refusesInvalidSerialNumber_data();
    void refusesInvalidSerialNumber();
    void refusesTheInstrumentsInvalidSerialNumber();
    void failsWithoutConnection_data();
    void failsWithoutConnection();

private:
    QByteArray writeFile(const QByteArray& content) const {
        return InstrumentBench::writeFile(m_folder->filePath(QStringLiteral("values.csv")),
                                          content);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestControllerRegistration::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void TestControllerRegistration::cleanup() {
    m_folder.reset();
}

void TestControllerRegistration::registers_data() {
    accessoryRows();
}

void TestControllerRegistration::registers() {
    QFETCH(int, index);
    const Accessory& accessory = accessories[index];
    const QByteArray file = writeFile(accessory.file());
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const QByteArray before = recordBytes();
    QCOMPARE(before.size(), 2508);
    KvaSim_ClearCallLog();
    const DebugLog log;
    QVERIFY((controller.*accessory.write)(file.constData()));
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::calls(), allCalls);
    // The texts are those of other operations.
    QCOMPARE(controller.m_curWCPSerialNo + controller.m_curAmbAdpSerialNo, QString());
    QCOMPARE(controller.m_fileWCPSerialNo + controller.m_fileAmbAdpSerialNo, QString());
    // Byte for byte, and in the memory that a power cycle leaves.
    QCOMPARE(recordBytes(), accessory.registeredIn(before));
    QVERIFY(InstrumentBench::powerCycle(controller));
    QCOMPARE(recordBytes(), accessory.registeredIn(before));
}

void TestControllerRegistration::registersOneAfterTheOther() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const QByteArray before = recordBytes();
    QVERIFY(controller.WriteWCPData(writeFile(accessories[0].file())));
    QVERIFY(controller.WriteAmbAdpData(writeFile(accessories[1].file())));
    QCOMPARE(recordBytes(), accessories[1].registeredIn(accessories[0].registeredIn(before)));
    QVERIFY(controller.GetCalRefSerialNo());
    QCOMPARE(controller.m_curWCPSerialNo, QStringLiteral("23456789"));
    QCOMPARE(controller.m_curAmbAdpSerialNo, QStringLiteral("00054321"));
}

void TestControllerRegistration::readsTheFileAgain_data() {
    accessoryRows();
}

void TestControllerRegistration::readsTheFileAgain() {
    QFETCH(int, index);
    const Accessory& accessory = accessories[index];
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const QByteArray before = recordBytes();
    const QByteArray other = index == 0 ? "87654321" : "00098765";
    QByteArray file = writeFile(InstrumentBench::valueFile(other, accessory.valueCount));
    QVERIFY(index == 0 ? controller.ReadWCPFile(file) : controller.ReadAmbAdpFile(file));
    file = writeFile(accessory.file());
    QVERIFY((controller.*accessory.write)(file.constData()));
    QCOMPARE(recordBytes(), accessory.registeredIn(before));
    QCOMPARE(index == 0 ? controller.m_fileWCPSerialNo : controller.m_fileAmbAdpSerialNo,
             QString::fromLatin1(other));
}

void TestControllerRegistration::keepsTheInstrumentsSerialNumber() {
    // A serial line that the reader leaves alone registers the values under the number held.
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    StandardOutput output;
    QVERIFY(controller.WriteWCPData(writeFile(InstrumentBench::valueFile("", 38))));
    QVERIFY(controller.WriteAmbAdpData(writeFile(InstrumentBench::valueFile("1234", 75))));
    QCOMPARE(output.take(), QByteArray("incorrect data. 1234\n"));
    const KVA_JIG_CALREFDATA record = InstrumentBench::calibrationRecord();
    QCOMPARE(InstrumentBench::bytesOf(record.whiteSerialNo), QByteArray::fromHex("12345678"));
    QCOMPARE(InstrumentBench::bytesOf(record.ambAdpSerialNo), QByteArray::fromHex("00012345"));
    QCOMPARE(record.rfWhite.spcData[37], InstrumentBench::fileValue(37));
    QCOMPARE(record.ambAdp.spcData[74], InstrumentBench::fileValue(74));
}

void TestControllerRegistration::keepsTheInstrumentsValues_data() {
    accessoryRows();
}

/** A file of three lines puts another serial number to the values held. */
void TestControllerRegistration::keepsTheInstrumentsValues() {
    QFETCH(int, index);
    const Accessory& accessory = accessories[index];
    const QByteArray file = writeFile("heading\nheading\n" + QByteArray(accessory.serialNo) + '\n');
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const QByteArray before = recordBytes();
    KvaSim_ClearCallLog();
    const DebugLog log;
    QVERIFY((controller.*accessory.write)(file.constData()));
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(InstrumentBench::calls(), allCalls);
    QVERIFY(InstrumentBench::powerCycle(controller));
    QCOMPARE(recordBytes(), QByteArray(before).replace(accessory.serialNoOffset, 4,
                                                       QByteArray::fromHex(accessory.serialNo)));
}

void TestControllerRegistration::carriesValuesThatAreNoNumbers() {
    const QByteArray odd = R"("0x7fc00001", "0xffa00002", "0x80000000", "0x00000001")";
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY2(
        InstrumentBench::set(R"({"calibration": {"committed": {"ambientAdapter": {"values": [)" +
                             odd + QByteArray(", 1").repeated(71) + "]}}}}"),
        KvaSim_LastError());
    const QByteArray before = recordBytes();
    QCOMPARE(before.mid(160, 16), QByteArray::fromHex("0100c07f0200a0ff0000008001000000"));
    QVERIFY(controller.WriteWCPData(writeFile(accessories[0].file())));
    QCOMPARE(recordBytes(), accessories[0].registeredIn(before));
}

void TestControllerRegistration::failsAtCall_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("function");
    QTest::addColumn<int>("call");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("callCount");
    QTest::addColumn<bool>("isCommitted");
    for (int i = 0; i < 2; ++i) {
        const auto row = [i](const char* step, const QString& function, int call,
                             const QString& line, int callCount, bool isCommitted) {
            QTest::addRow("%s, %s", accessories[i].name, step)
                << i << function.toLatin1() << call << line << callCount << isCommitted;
        };
        row("get", getCall, 1, getFailed, 1, false);
        row("set", setCall, 1, setFailed, 2, false);
        row("commit", commitCall, 1, commitFailed, 3, false);
        row("read-back get", getCall, 2, getFailed, 4, true);
    }
}

void TestControllerRegistration::failsAtCall() {
    QFETCH(int, index);
    QFETCH(QByteArray, function);
    QFETCH(int, call);
    QFETCH(QString, line);
    QFETCH(int, callCount);
    QFETCH(bool, isCommitted);
    const Accessory& accessory = accessories[index];
    const QByteArray file = writeFile(accessory.file());
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const QByteArray before = recordBytes();
    KvaSim_ClearCallLog();
    QVERIFY2(InstrumentBench::answer(function.constData(), -9989, call), KvaSim_LastError());
    const DebugLog log;
    QVERIFY(!(controller.*accessory.write)(file.constData()));
    QCOMPARE(controller.m_lastResult, -9989);
    QCOMPARE(log.lines(), QStringList(line));
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::calls(), allCalls.mid(0, callCount));
    KvaSim_ClearFaults();
    // Nothing is taken back: what was handed over without a commit goes with the power.
    QVERIFY(InstrumentBench::powerCycle(controller));
    QCOMPARE(recordBytes(), isCommitted ? accessory.registeredIn(before) : before);
}

void TestControllerRegistration::commitsWhatAFailedCommitLeft_data() {
    accessoryRows();
}

/** The record of the failed registration stays in the instrument's working copy, which the next
    one fetches, completes and commits. A power cycle between them drops it: see failsAtCall. */
void TestControllerRegistration::commitsWhatAFailedCommitLeft() {
    QFETCH(int, index);
    const Accessory& failed = accessories[index];
    const Accessory& next = accessories[1 - index];
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const QByteArray before = recordBytes();
    QVERIFY(InstrumentBench::answer("KVA_JIG_SetFactoryCalib_WriteSector", -9989, 1));
    QVERIFY(!(controller.*failed.write)(writeFile(failed.file()).constData()));
    KvaSim_ClearCallLog();
    const DebugLog log;
    QVERIFY((controller.*next.write)(writeFile(next.file()).constData()));
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(InstrumentBench::calls(), allCalls);
    QVERIFY(InstrumentBench::powerCycle(controller));
    QCOMPARE(recordBytes(), next.registeredIn(failed.registeredIn(before)));
}

void TestControllerRegistration::failsAtFile_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("content");
    for (int i = 0; i < 2; ++i) {
        const Accessory& accessory = accessories[i];
        QTest::addRow("%s, no file", accessory.name) << i << QByteArray();
        QTest::addRow("%s, one value short", accessory.name)
            << i << InstrumentBench::valueFile(accessory.serialNo, accessory.valueCount - 1);
        QTest::addRow("%s, one value too many", accessory.name)
            << i << InstrumentBench::valueFile(accessory.serialNo, accessory.valueCount + 1);
    }
}

void TestControllerRegistration::failsAtFile() {
    QFETCH(int, index);
    QFETCH(QByteArray, content);
    const QByteArray file = content.isEmpty()
                                ? m_folder->filePath(QStringLiteral("none.csv")).toLocal8Bit()
                                : writeFile(content);
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(InstrumentBench::answer("KVA_JIG_GetFactoryCalib_CALREFDATA", 2));
    const QByteArray before = recordBytes();
    KvaSim_ClearCallLog();
    const DebugLog log;
    QVERIFY(!(controller.*accessories[index].write)(file.constData()));
    QCOMPARE(controller.m_lastResult, 2);
    QCOMPARE(log.lines(), QStringList(fileFailed));
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::calls(), QStringList(getCall));
    QCOMPARE(recordBytes(), before);
}

void TestControllerRegistration::refusesInvalidSerialNumber_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("serialNo");
    QTest::addColumn<bool>("isValid");
    const auto row = [](int index, const char* serialNo, bool isValid) {
        QTest::addRow("%s, %s", accessories[index].name, serialNo)
            << index << QByteArray(serialNo) << isValid;
    };
    row(0, "00000000", false);
    row(0, "1", false);
    row(0, "10000000", false);
    row(0, "10000001", true);
    row(0, "99999999", true);
    row(1, "00000000", false);
    row(1, "00010000", false);
    row(1, "00010001", true);
    row(1, "00099999", true);
    row(1, "00100000", false);
    row(1, "99999999", false);
}

void TestControllerRegistration::refusesInvalidSerialNumber() {
    QFETCH(int, index);
    QFETCH(QByteArray, serialNo);
    QFETCH(bool, isValid);
    const Accessory& accessory = accessories[index];
    const QByteArray file = writeFile(InstrumentBench::valueFile(serialNo, accessory.valueCount));
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const QByteArray before = recordBytes();
    KvaSim_ClearCallLog();
    const DebugLog log;
    QCOMPARE((controller.*accessory.write)(file.constData()), isValid);
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::calls(), isValid ? allCalls : QStringList(getCall));
    QCOMPARE(recordBytes() == before, !isValid);
}

void TestControllerRegistration::refusesTheInstrumentsInvalidSerialNumber() {
    // The file leaves the number as it is, so it is the instrument's that is checked.
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(InstrumentBench::set(R"({"calibration": {"committed": {
        "white": {"serialNumber": "10000000"}, "ambientAdapter": {"serialNumber": "00100000"}}}})"));
    const DebugLog log;
    StandardOutput output;
    QVERIFY(!controller.WriteWCPData(writeFile(InstrumentBench::valueFile("", 38))));
    QVERIFY(!controller.WriteAmbAdpData(writeFile(InstrumentBench::valueFile("1234", 75))));
    QCOMPARE(output.take(), QByteArray("incorrect data. 1234\n"));
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(InstrumentBench::calls(), QStringList({getCall, getCall}));
}

void TestControllerRegistration::failsWithoutConnection_data() {
    accessoryRows();
}

void TestControllerRegistration::failsWithoutConnection() {
    QFETCH(int, index);
    const QByteArray file = writeFile(accessories[index].file());
    CKvaSdk_Ctrl controller;
    const DebugLog log;
    QVERIFY(!(controller.*accessories[index].write)(file.constData()));
    QCOMPARE(controller.m_lastResult, -9998);
    QCOMPARE(log.lines(), QStringList(getFailed));
}

QTEST_GUILESS_MAIN(TestControllerRegistration)
#include "tst_controller_registration.moc"
