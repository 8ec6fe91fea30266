#include "tests/support/DebugLog.h"
#include "tests/support/StandardOutput.h"
#include "tests/unit/instrument/InstrumentBench.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

QStringList valueFileLines(int serialNo, int valueCount, bool hasValues = true) {
    QStringList lines{QStringLiteral("SerialNo: %1 \n").arg(serialNo)};
    for (int k = 0; k < valueCount; ++k)
        lines.append(QStringLiteral("rfWhite.spcData[%1]: %2 \n")
                         .arg(QString::number(k), hasValues ? QStringLiteral("%1.250000").arg(k)
                                                            : QStringLiteral("0.000000")));
    return lines;
}

} // namespace

class TestControllerCalibrationFile : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void startsEmpty();
    void readsTheInstrumentsSerialNumbers_data();
    void readsTheInstrumentsSerialNumbers();
    void failedReadEmptiesTheInstrumentsSerialNumbers();
    void checksWhitePlateFile_data();
    void checksWhitePlateFile();
    void checksAdapterFile_data();
    void checksAdapterFile();
    void logsEveryValue();
    void keepsTextOfUnreadableFile_data();
    void keepsTextOfUnreadableFile();
    void clearsTextOfInvalidSerialNumber();
    void readsShortFileAsZero();
    void acceptsFileWithoutValues_data();
    void acceptsFileWithoutValues();

private:
    QByteArray writeFile(const QByteArray& content) const {
        return InstrumentBench::writeFile(m_folder->filePath(QStringLiteral("values.csv")),
                                          content);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestControllerCalibrationFile::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void TestControllerCalibrationFile::cleanup() {
    m_folder.reset();
}

void TestControllerCalibrationFile::startsEmpty() {
    const CKvaSdk_Ctrl controller;
    QCOMPARE(controller.m_curWCPSerialNo, QString());
    QCOMPARE(controller.m_curAmbAdpSerialNo, QString());
    QCOMPARE(controller.m_fileWCPSerialNo, QString());
    QCOMPARE(controller.m_fileAmbAdpSerialNo, QString());
}

void TestControllerCalibrationFile::readsTheInstrumentsSerialNumbers_data() {
    QTest::addColumn<QByteArray>("white");
    QTest::addColumn<QByteArray>("adapter");
    QTest::addColumn<QString>("whiteText");
    QTest::addColumn<QString>("adapterText");
    const auto row = [](const char* white, const char* adapter, const char* whiteText,
                        const char* adapterText) {
        QTest::addRow("%s, %s", white, adapter)
            << QByteArray(white) << QByteArray(adapter) << QString::fromLatin1(whiteText)
            << QString::fromLatin1(adapterText);
    };
    row("12345678", "00012345", "12345678", "00012345");
    row("00000000", "00000000", "00000000", "00000000");
    row("00000007", "99999999", "00000007", "99999999");
    row("10203040", "01020304", "10203040", "01020304");
    // Not checked, and not decimal either.
    row("ffffffff", "0000000a", "166666665", "00000010");
    row("000000a0", "0a000000", "00000100", "10000000");
}

void TestControllerCalibrationFile::readsTheInstrumentsSerialNumbers() {
    QFETCH(QByteArray, white);
    QFETCH(QByteArray, adapter);
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY2(InstrumentBench::set(
                 R"({"calibration": {"committed": {"white": {"serialNumber": {"hex": ")" + white +
                 R"("}}, "ambientAdapter": {"serialNumber": {"hex": ")" + adapter + R"("}}}}})"),
             KvaSim_LastError());
    const DebugLog log;
    QVERIFY(controller.GetCalRefSerialNo());
    QTEST(controller.m_curWCPSerialNo, "whiteText");
    QTEST(controller.m_curAmbAdpSerialNo, "adapterText");
    QCOMPARE(controller.m_fileWCPSerialNo, QString());
    QCOMPARE(controller.m_fileAmbAdpSerialNo, QString());
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::detailedCalls(),
             QStringList(QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA {} 0")));
}

void TestControllerCalibrationFile::failedReadEmptiesTheInstrumentsSerialNumbers() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(controller.GetCalRefSerialNo());
    QCOMPARE(controller.m_curWCPSerialNo, QStringLiteral("12345678"));
    QVERIFY(InstrumentBench::answer("KVA_JIG_GetFactoryCalib_CALREFDATA", -9985));
    const DebugLog log;
    QVERIFY(!controller.GetCalRefSerialNo());
    QCOMPARE(controller.m_curWCPSerialNo, QString());
    QCOMPARE(controller.m_curAmbAdpSerialNo, QString());
    QCOMPARE(controller.m_lastResult, -9985);
    QCOMPARE(log.lines(), QStringList());
}

void TestControllerCalibrationFile::checksWhitePlateFile_data() {
    QTest::addColumn<QByteArray>("serialLine");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* serialLine, int value, const char* text) {
        QTest::addRow("\"%s\"", serialLine)
            << QByteArray(serialLine) << value << QString::fromLatin1(text);
    };
    row("12345678", 12345678, "12345678");
    row("10000001", 10000001, "10000001");
    row("99999999", 99999999, "99999999");
    row("10000000", 10000000, "");
    row("09999999", 9999999, "");
    row("00000000", 0, "");
    row("", 0, "");
    row("5", 5, "");
    row("123", 123, "");
    row("1234567", 1234567, "");
    // Digits that are not decimal count as their value, pairs that are no byte as 0xFF.
    row("ABCDEFGH", 112345665, "112345665");
}

void TestControllerCalibrationFile::checksWhitePlateFile() {
    QFETCH(QByteArray, serialLine);
    QFETCH(int, value);
    QFETCH(QString, text);
    const QByteArray file = writeFile(InstrumentBench::valueFile(serialLine, 38));
    CKvaSdk_Ctrl controller;
    controller.m_lastResult = 4;
    controller.m_fileWCPSerialNo = QStringLiteral("77777777");
    controller.m_fileAmbAdpSerialNo = QStringLiteral("00077777");
    KvaSim_ClearCallLog();
    const DebugLog log;
    QCOMPARE(controller.ReadWCPFile(file.constData()), !text.isEmpty());
    QCOMPARE(controller.m_fileWCPSerialNo, text);
    QCOMPARE(controller.m_fileAmbAdpSerialNo, QStringLiteral("00077777"));
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(log.lines(), valueFileLines(value, 38));
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::calls(), QStringList());
}

void TestControllerCalibrationFile::checksAdapterFile_data() {
    QTest::addColumn<QByteArray>("serialLine");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("standardOutput");
    const auto row = [](const char* serialLine, int value, const char* text,
                        const char* standardOutput = "") {
        QTest::addRow("\"%s\"", serialLine)
            << QByteArray(serialLine) << value << QString::fromLatin1(text)
            << QByteArray(standardOutput);
    };
    row("00010000", 10000, "");
    row("00010001", 10001, "00010001");
    row("00012345", 12345, "00012345");
    row("00099999", 99999, "00099999");
    row("00100000", 100000, "");
    row("00000000", 0, "");
    row("12345678", 12345678, "");
    // Another length than eight is said, leaves the number zero, and is then refused as invalid.
    row("10001", 0, "", "incorrect data. 10001\n");
    row("000010001", 0, "", "incorrect data. 000010001\n");
    row("", 0, "", "incorrect data. \n");
}

void TestControllerCalibrationFile::checksAdapterFile() {
    QFETCH(QByteArray, serialLine);
    QFETCH(int, value);
    QFETCH(QString, text);
    const QByteArray file = writeFile(InstrumentBench::valueFile(serialLine, 75));
    CKvaSdk_Ctrl controller;
    controller.m_lastResult = 4;
    controller.m_fileWCPSerialNo = QStringLiteral("77777777");
    controller.m_fileAmbAdpSerialNo = QStringLiteral("00077777");
    KvaSim_ClearCallLog();
    const DebugLog log;
    StandardOutput output;
    const bool valid = controller.ReadAmbAdpFile(file.constData());
    QTEST(output.take(), "standardOutput");
    QCOMPARE(valid, !text.isEmpty());
    QCOMPARE(controller.m_fileAmbAdpSerialNo, text);
    QCOMPARE(controller.m_fileWCPSerialNo, QStringLiteral("77777777"));
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(log.lines(), valueFileLines(value, 75));
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::calls(), QStringList());
}

void TestControllerCalibrationFile::logsEveryValue() {
    QByteArray values = "-1.5, 2.5,1e3,abc,0.0000004,85.1234567";
    values += QByteArray(",0").repeated(32);
    const QByteArray file = writeFile("a\nb\n12345678\n" + values + '\n');
    CKvaSdk_Ctrl controller;
    const DebugLog log;
    QVERIFY(controller.ReadWCPFile(file.constData()));
    const QStringList lines = log.lines();
    QCOMPARE(lines.size(), 39);
    QCOMPARE(lines.mid(0, 8), QStringList({QStringLiteral("SerialNo: 12345678 \n"),
                                           QStringLiteral("rfWhite.spcData[0]: -1.500000 \n"),
                                           QStringLiteral("rfWhite.spcData[1]: 2.500000 \n"),
                                           QStringLiteral("rfWhite.spcData[2]: 1000.000000 \n"),
                                           QStringLiteral("rfWhite.spcData[3]: 0.000000 \n"),
                                           QStringLiteral("rfWhite.spcData[4]: 0.000000 \n"),
                                           // The nearest value of single precision.
                                           QStringLiteral("rfWhite.spcData[5]: 85.123459 \n"),
                                           QStringLiteral("rfWhite.spcData[6]: 0.000000 \n")}));
}

void TestControllerCalibrationFile::keepsTextOfUnreadableFile_data() {
    QTest::addColumn<bool>("isWhite");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("standardOutput");
    const auto file = InstrumentBench::valueFile;
    QTest::newRow("white, 37 values") << true << file("12345678", 37) << QByteArray();
    QTest::newRow("white, 39 values") << true << file("12345678", 39) << QByteArray();
    QTest::newRow("white, adapter's file") << true << file("00012345", 75) << QByteArray();
    QTest::newRow("white, nine digits")
        << true << file("123456789", 38) << QByteArray("incorrect data. 123456789\n");
    QTest::newRow("adapter, 74 values") << false << file("00012345", 74) << QByteArray();
    QTest::newRow("adapter, 76 values") << false << file("00012345", 76) << QByteArray();
    QTest::newRow("adapter, plate's file") << false << file("12345678", 38) << QByteArray();
    QTest::newRow("white, no file") << true << QByteArray() << QByteArray();
    QTest::newRow("adapter, no file") << false << QByteArray() << QByteArray();
}

void TestControllerCalibrationFile::keepsTextOfUnreadableFile() {
    QFETCH(bool, isWhite);
    QFETCH(QByteArray, content);
    const QByteArray file = content.isEmpty()
                                ? m_folder->filePath(QStringLiteral("none.csv")).toLocal8Bit()
                                : writeFile(content);
    CKvaSdk_Ctrl controller;
    controller.m_lastResult = 4;
    controller.m_fileWCPSerialNo = QStringLiteral("77777777");
    controller.m_fileAmbAdpSerialNo = QStringLiteral("00077777");
    const DebugLog log;
    StandardOutput output;
    const bool valid = isWhite ? controller.ReadWCPFile(file.constData())
                               : controller.ReadAmbAdpFile(file.constData());
    QTEST(output.take(), "standardOutput");
    QVERIFY(!valid);
    QCOMPARE(controller.m_fileWCPSerialNo, QStringLiteral("77777777"));
    QCOMPARE(controller.m_fileAmbAdpSerialNo, QStringLiteral("00077777"));
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
}

void TestControllerCalibrationFile::clearsTextOfInvalidSerialNumber() {
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.ReadWCPFile(writeFile(InstrumentBench::valueFile("12345678", 38))));
    QCOMPARE(controller.m_fileWCPSerialNo, QStringLiteral("12345678"));
    QVERIFY(!controller.ReadWCPFile(writeFile(InstrumentBench::valueFile("10000000", 38))));
    QCOMPARE(controller.m_fileWCPSerialNo, QString());
}

void TestControllerCalibrationFile::readsShortFileAsZero() {
    for (const char* const content : {"", "heading\n", "heading\nheading\n"}) {
        const QByteArray file = writeFile(content);
        CKvaSdk_Ctrl controller;
        const DebugLog log;
        QVERIFY(!controller.ReadWCPFile(file.constData()));
        QVERIFY(!controller.ReadAmbAdpFile(file.constData()));
        QCOMPARE(log.lines(), valueFileLines(0, 38, false) + valueFileLines(0, 75, false));
    }
}

void TestControllerCalibrationFile::acceptsFileWithoutValues_data() {
    QTest::addColumn<bool>("isWhite");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("white") << true << QByteArray("heading\nheading\n12345678\n");
    QTest::newRow("white, no line end") << true << QByteArray("heading\nheading\n12345678");
    QTest::newRow("adapter") << false << QByteArray("heading\nheading\n00012345\n");
    QTest::newRow("adapter, no line end") << false << QByteArray("heading\nheading\n00012345");
}

/** Three lines are no error; the serial number alone is checked, and the values are zero. */
void TestControllerCalibrationFile::acceptsFileWithoutValues() {
    QFETCH(bool, isWhite);
    QFETCH(QByteArray, content);
    const QByteArray file = writeFile(content);
    CKvaSdk_Ctrl controller;
    const DebugLog log;
    QVERIFY(isWhite ? controller.ReadWCPFile(file) : controller.ReadAmbAdpFile(file));
    QCOMPARE(controller.m_fileWCPSerialNo, isWhite ? QStringLiteral("12345678") : QString());
    QCOMPARE(controller.m_fileAmbAdpSerialNo, isWhite ? QString() : QStringLiteral("00012345"));
    QCOMPARE(log.lines(),
             isWhite ? valueFileLines(12345678, 38, false) : valueFileLines(12345, 75, false));
}

QTEST_GUILESS_MAIN(TestControllerCalibrationFile)
#include "tst_controller_calibration_file.moc"
