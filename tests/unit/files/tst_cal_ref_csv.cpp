#include "tests/unit/files/CalRefFixture.h"

#include <limits>

/** What the two readers of calibration files take from the serial line and the values line. */
class TestCalRefCsv : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whiteSerialNo_data();
    void whiteSerialNo();
    void adapterSerialNo_data();
    void adapterSerialNo();
    void valueCount_data();
    void valueCount();
    void cells_data();
    void cells();
    void bothLinesWrong_data();
    void bothLinesWrong();
    void readersAgree_data();
    void readersAgree();
    void registersOneAfterTheOther();

private:
    void checkSerialNo(bool adapter);
};

namespace {

void serialNoColumns() {
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("serialNo"); // empty: the field keeps its bytes
    QTest::addColumn<bool>("result");
    QTest::addColumn<QByteArray>("printed");
}

void storedRow(const char* name, const QByteArray& line, const char* hex) {
    QTest::newRow(name) << line << QByteArray::fromHex(hex) << true << QByteArray();
}

/** @param printed  what stands for the line in the message, where it is not the line itself */
void refusedRow(const char* name, const QByteArray& line, bool result, QByteArray printed = {}) {
    if (printed.isNull())
        printed = line;
    QTest::newRow(name) << line << QByteArray() << result << "incorrect data. " + printed + '\n';
}

} // namespace

void TestCalRefCsv::whiteSerialNo_data() {
    serialNoColumns();
    storedRow("8 digits", "12345678", "12345678");
    storedRow("7 digits", "1234567", "01234567");
    storedRow("6 digits", "123456", "00123456");
    storedRow("5 digits", "12345", "00012345");
    storedRow("4 digits", "1234", "00001234");
    storedRow("3 digits", "123", "00000123");
    storedRow("2 digits", "12", "00000012");
    storedRow("1 digit", "5", "00000005");
    storedRow("zeros", "00000000", "00000000");
    storedRow("hexadecimal", "abCDef09", "abcdef09");
    storedRow("last pair no digits", "ABCDEFGH", "abcdefff");
    storedRow("no digits at all", "????????", "ffffffff");
    storedRow("one character, no digit", "G", "000000ff");
    storedRow("digit and no digit", "123G", "000012ff");
    storedRow("leading blank", " 1234567", "ff234567");
    storedRow("is not split at commas", "12,345", "0012ff45");
    storedRow("NUL byte",
              QByteArray("12\0"
                         "4",
                         4),
              "000012ff");
    storedRow("carriage return inside", "12\r4", "000012ff");
    storedRow("carriage return at the end", "12345678\r", "12345678");
    storedRow("7 digits and a carriage return", "1234567\r", "01234567");
    QTest::newRow("empty") << QByteArray() << QByteArray() << true << QByteArray();
    QTest::newRow("carriage return") << QByteArray("\r") << QByteArray() << true << QByteArray();
    refusedRow("9 digits", "123456789", false);
    refusedRow("trailing blank", "12345678 ", false);
    refusedRow("percent signs", "%s%n%d%x%s", false);
    refusedRow("two carriage returns", "12345678\r\r", false);
    refusedRow("without its carriage return", "123456789\r", false, "123456789");
    refusedRow("ends at a NUL byte",
               QByteArray("12\0"
                          "45678ab",
                          10),
               false, "12");
    refusedRow("very long", QByteArray(5000, '7'), false);
}

void TestCalRefCsv::whiteSerialNo() {
    checkSerialNo(false);
}

void TestCalRefCsv::adapterSerialNo_data() {
    serialNoColumns();
    storedRow("8 digits", "00012345", "00012345");
    storedRow("hexadecimal", "abCDef09", "abcdef09");
    storedRow("last pair no digits", "ABCDEFGH", "abcdefff");
    storedRow("no digits at all", "????????", "ffffffff");
    storedRow("carriage return at the end", "12345678\r", "12345678");
    refusedRow("4 digits", "1234", true);
    refusedRow("7 digits", "1234567", true);
    refusedRow("1 digit", "5", true);
    refusedRow("empty", "", true, "");
    refusedRow("carriage return", "\r", true, "");
    refusedRow("9 digits", "123456789", true);
    refusedRow("7 digits and a carriage return", "1234567\r", true, "1234567");
    refusedRow("two carriage returns", "12345678\r\r", true);
    refusedRow("percent signs", "%s%n%d%x%s", true);
    refusedRow("very long", QByteArray(5000, '7'), true);
}

void TestCalRefCsv::adapterSerialNo() {
    checkSerialNo(true);
}

/** The values line is right: it is stored whatever the serial line is. */
void TestCalRefCsv::checkSerialNo(bool adapter) {
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, serialNo);
    QFETCH(bool, result);
    QFETCH(QByteArray, printed);
    const CalRefReader reader = calRefReader(adapter);
    const TestFolder folder;
    const QByteArray path = folder.write("values.csv", "heading\nheading\n" + line + '\n' +
                                                           sampleLine(reader.valueCount) + '\n');
    const CalRefRead read(reader, path.constData());
    QCOMPARE(read.result, result);
    QCOMPARE(read.printed, printed);
    QCOMPARE(read.logged, QStringList());
    const QByteArray values = bytesOfFloats(sampleValues(reader.valueCount));
    QCOMPARE(read.bytes.toHex(), expectedRecord(reader, serialNo, values).toHex());
}

void TestCalRefCsv::valueCount_data() {
    QTest::addColumn<bool>("adapter");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("result");
    for (const bool adapter : {false, true}) {
        const char* kind = adapter ? "adapter" : "white plate";
        const int count = calRefReader(adapter).valueCount;
        const QByteArray right = sampleLine(count);
        const auto row = [&](const char* name, const QByteArray& line, bool result) {
            QTest::addRow("%s, %s", kind, name) << adapter << line << result;
        };
        row("as many as it must be", right, true);
        row("one too few", sampleLine(count - 1), false);
        row("one too many", sampleLine(count + 1), false);
        row("as many as the other kind", sampleLine(113 - count), false);
        row("empty line", "", false);
        row("one value", "1", false);
        row("empty cell more", "," + right, true);
        row("trailing comma", right + ",", true);
        row("two commas in a row", QByteArray(right).replace("3.25,", "3.25,,"), true);
        row("a cell is empty", QByteArray(right).replace(",3.25,", ",,"), false);
        row("semicolons", QByteArray(right).replace(',', ';'), false);
        row("carriage return at the end", right + "\r", true);
        row("trailing comma and carriage return", right + ",\r", true);
        row("carriage return is a cell", right + ",\r\r", false);
        row("blank is a cell", right + ", ", false);
    }
}

void TestCalRefCsv::valueCount() {
    QFETCH(bool, adapter);
    QFETCH(QByteArray, line);
    QFETCH(bool, result);
    const CalRefReader reader = calRefReader(adapter);
    const TestFolder folder;
    const QByteArray path = folder.write("values.csv", "\n\n12345678\n" + line + '\n');
    const CalRefRead read(reader, path.constData());
    QCOMPARE(read.result, result);
    QCOMPARE(read.printed, QByteArray());
    QCOMPARE(read.logged, QStringList());
    const QByteArray values =
        result ? bytesOfFloats(sampleValues(reader.valueCount)) : QByteArray();
    QCOMPARE(read.bytes.toHex(),
             expectedRecord(reader, QByteArray::fromHex("12345678"), values).toHex());
}

void TestCalRefCsv::cells_data() {
    QTest::addColumn<QByteArray>("cell");
    QTest::addColumn<float>("value");
    QTest::newRow("decimal") << QByteArray("0.5") << 0.5F;
    QTest::newRow("nearest single") << QByteArray("98.7654321") << 98.7654321F;
    QTest::newRow("minus") << QByteArray("-1.5") << -1.5F;
    QTest::newRow("exponent") << QByteArray("1.5e-3") << 1.5e-3F;
    QTest::newRow("blanks around") << QByteArray(" \t0.5 ") << 0.5F;
    QTest::newRow("carriage return before") << QByteArray("\r0.5") << 0.5F;
    QTest::newRow("text behind") << QByteArray("0.5 %") << 0.5F;
    QTest::newRow("quoted") << QByteArray("\"0.5\"") << 0.0F;
    QTest::newRow("no number") << QByteArray("abc") << 0.0F;
    QTest::newRow("blank") << QByteArray(" ") << 0.0F;
    QTest::newRow("NUL byte behind") << QByteArray("0.5\0007", 5) << 0.5F;
    QTest::newRow("out of range") << QByteArray("1e39") << std::numeric_limits<float>::infinity();
    QTest::newRow("too small") << QByteArray("1e-60") << 0.0F;
    QTest::newRow("many digits") << "0." + QByteArray(1000, '3') << 0.333333333F;
}

void TestCalRefCsv::cells() {
    QFETCH(QByteArray, cell);
    QFETCH(float, value);
    for (const bool adapter : {false, true}) {
        const CalRefReader reader = calRefReader(adapter);
        const TestFolder folder;
        QVector<float> values = sampleValues(reader.valueCount);
        for (int i = 7; i < values.size(); i += 10)
            values[i] = value;
        QByteArrayList cells = sampleLine(reader.valueCount).split(',');
        for (int i = 7; i < cells.size(); i += 10)
            cells[i] = cell;
        const QByteArray path =
            folder.write("values.csv", "\n\n12345678\n" + cells.join(',') + '\n');
        const CalRefRead read(reader, path.constData());
        QVERIFY(read.result);
        QCOMPARE(
            read.bytes.toHex(),
            expectedRecord(reader, QByteArray::fromHex("12345678"), bytesOfFloats(values)).toHex());
    }
}

void TestCalRefCsv::bothLinesWrong_data() {
    addReaderRows();
}

/** The read fails as a whole, and leaves the record as it was. */
void TestCalRefCsv::bothLinesWrong() {
    QFETCH(bool, adapter);
    const CalRefReader reader = calRefReader(adapter);
    const TestFolder folder;
    const QByteArray path = folder.write("values.csv", "\n\n1234567890\n1,2,3\n");
    const CalRefRead read(reader, path.constData());
    QVERIFY(!read.result);
    QCOMPARE(read.printed, QByteArray("incorrect data. 1234567890\n"));
    QCOMPARE(read.bytes.toHex(), expectedRecord(reader, {}, {}).toHex());
}

void TestCalRefCsv::readersAgree_data() {
    QTest::addColumn<QByteArray>("serialLine");
    QTest::addColumn<QByteArray>("cell");
    QTest::newRow("decimal") << QByteArray("12345678") << QByteArray("0.1");
    QTest::newRow("letters") << QByteArray("abcdefgh") << QByteArray("no number");
    QTest::newRow("CR LF") << QByteArray("87654321\r") << QByteArray("7\r");
    QTest::newRow("extremes") << QByteArray("00000000") << QByteArray("-1e99");
}

void TestCalRefCsv::readersAgree() {
    QFETCH(QByteArray, serialLine);
    QFETCH(QByteArray, cell);
    const TestFolder folder;
    QByteArray fields[2];
    for (const bool adapter : {false, true}) {
        const CalRefReader reader = calRefReader(adapter);
        QByteArrayList cells;
        for (int i = 0; i < reader.valueCount; ++i)
            cells.append(cell);
        const QByteArray path =
            folder.write("values.csv", "\n\n" + serialLine + '\n' + cells.join(',') + '\n');
        const CalRefRead read(reader, path.constData());
        QVERIFY(read.result);
        fields[adapter ? 1 : 0] =
            read.bytes.mid(reader.serialNoOffset, 4) + read.bytes.mid(reader.valuesOffset, 38 * 4);
    }
    QCOMPARE(fields[0].toHex(), fields[1].toHex());
}

void TestCalRefCsv::registersOneAfterTheOther() {
    const TestFolder folder;
    const QByteArray white = folder.write("white.csv", "\n\n12345678\n" + sampleLine(38) + '\n');
    const QByteArray adapter =
        folder.write("adapter.csv", "\n\n00054321\n" + sampleLine(75) + '\n');
    auto record = patternedRecord<KVA_JIG_CALREFDATA>();
    QByteArray expected = bytesOf(record);
    QVERIFY(CFileIO().GetCalRefDataFromFile(white.constData(), &record));
    QVERIFY(CFileIO().GetAmbAdpCalRefDataFromFile(adapter.constData(), &record));
    expected = overlaid(expected, 0, QByteArray::fromHex("12345678"));
    expected = overlaid(expected, 4, bytesOfFloats(sampleValues(38)));
    expected = overlaid(expected, 156, QByteArray::fromHex("00054321"));
    expected = overlaid(expected, 160, bytesOfFloats(sampleValues(75)));
    QCOMPARE(bytesOf(record).toHex(), expected.toHex());
    QCOMPARE(CFileIO::BcdToDec(record.whiteSerialNo[0]), 12U);
    QCOMPARE(CFileIO::BcdToDec(record.ambAdpSerialNo[3]), 21U);
}

QTEST_GUILESS_MAIN(TestCalRefCsv)

#include "tst_cal_ref_csv.moc"
