#include "tests/unit/files/CalRefFixture.h"
#include "tests/unit/files/UnopenableFile.h"

/** Calibration files that are short, long, odd, broken or no files at all. */
class TestCalRefCsvFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rightWhateverElseItHolds_data();
    void rightWhateverElseItHolds();
    void fewerLines_data();
    void fewerLines();
    void readsToTheEnd_data();
    void readsToTheEnd();
    void carriageReturnsAlone_data();
    void carriageReturnsAlone();
    void utf16_data();
    void utf16();
    void valuesLineCutAtOneMebibyte_data();
    void valuesLineCutAtOneMebibyte();
    void serialLineCutAtOneMebibyte();
    void cannotBeOpened_data();
    void cannotBeOpened();
    void nullArguments_data();
    void nullArguments();
};

namespace {

const QByteArray serialNo("\x12\x34\x56\x78");

QByteArray completeRecord(const CalRefReader& reader) {
    return expectedRecord(reader, serialNo, bytesOfFloats(sampleValues(reader.valueCount)));
}

QByteArray completeFile(const CalRefReader& reader) {
    return "heading\nheading\n12345678\n" + sampleLine(reader.valueCount) + '\n';
}

} // namespace

void TestCalRefCsvFiles::rightWhateverElseItHolds_data() {
    QTest::addColumn<bool>("adapter");
    QTest::addColumn<QByteArray>("content");
    for (const bool adapter : {false, true}) {
        const char* kind = adapter ? "adapter" : "white plate";
        const QByteArray file = completeFile(calRefReader(adapter));
        const auto row = [&](const char* name, const QByteArray& content) {
            QTest::addRow("%s, %s", kind, name) << adapter << content;
        };
        const QByteArray fromLine3 = file.mid(file.indexOf("12345678"));
        row("plain", file);
        row("CR LF", QByteArray(file).replace("\n", "\r\n"));
        row("no final line feed", file.chopped(1));
        row("no final line feed, carriage return", file.chopped(1) + "\r");
        row("empty headings", "\n\n" + fromLine3);
        row("byte order mark", "\xEF\xBB\xBF" + file);
        row("headings like the data", "123456789\n1,2,3\n" + fromLine3);
        row("NUL bytes in the headings", QByteArray("\0\0\0\n\0\n", 6) + fromLine3);
        row("high bytes in the headings", "\x93\xFA\x96{\n\xFF\n" + fromLine3);
        row("headings of 3 MiB", QByteArray(3 << 20, 'h') + "\n\n" + fromLine3);
        row("lines behind", file + "123456789\n1,2,3\nanything\n");
        row("a file behind", file + file);
        row("an endless line behind", file + QByteArray(3 << 20, ','));
    }
}

void TestCalRefCsvFiles::rightWhateverElseItHolds() {
    QFETCH(bool, adapter);
    QFETCH(QByteArray, content);
    const CalRefReader reader = calRefReader(adapter);
    const TestFolder folder;
    const CalRefRead read(reader, folder.write("values.csv", content).constData());
    QVERIFY(read.result);
    QCOMPARE(read.printed, QByteArray());
    QCOMPARE(read.logged, QStringList());
    QCOMPARE(read.bytes.toHex(), completeRecord(reader).toHex());
}

void TestCalRefCsvFiles::fewerLines_data() {
    QTest::addColumn<bool>("adapter");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("stored");
    for (const bool adapter : {false, true}) {
        const char* kind = adapter ? "adapter" : "white plate";
        const auto row = [&](const char* name, const char* content, const QByteArray& stored) {
            QTest::addRow("%s, %s", kind, name) << adapter << QByteArray(content) << stored;
        };
        row("empty", "", {});
        row("a line feed", "\n", {});
        row("part of a line", "heading", {});
        row("one line", "heading\n", {});
        row("two lines", "heading\nheading\n", {});
        row("two lines, the last without end", "heading\nheading", {});
        row("three lines", "heading\nheading\n12345678\n", serialNo);
        row("three lines, the last without end", "heading\nheading\n12345678", serialNo);
    }
}

/** Not an error: the record keeps the fields of the lines that are missing. */
void TestCalRefCsvFiles::fewerLines() {
    QFETCH(bool, adapter);
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, stored);
    const CalRefReader reader = calRefReader(adapter);
    const TestFolder folder;
    const CalRefRead read(reader, folder.write("values.csv", content).constData());
    QVERIFY(read.result);
    QCOMPARE(read.printed, QByteArray());
    QCOMPARE(read.logged, QStringList());
    QCOMPARE(read.bytes.toHex(), expectedRecord(reader, stored, {}).toHex());
}

void TestCalRefCsvFiles::readsToTheEnd_data() {
    addReaderRows();
}

/** A wrong values line decides; right lines behind it change nothing. */
void TestCalRefCsvFiles::readsToTheEnd() {
    QFETCH(bool, adapter);
    const CalRefReader reader = calRefReader(adapter);
    const TestFolder folder;
    const CalRefRead read(
        reader,
        folder.write("values.csv", "\n\n12345678\n1,2,3\n" + sampleLine(reader.valueCount) + '\n')
            .constData());
    QVERIFY(!read.result);
    QCOMPARE(read.bytes.toHex(), expectedRecord(reader, serialNo, {}).toHex());
}

void TestCalRefCsvFiles::carriageReturnsAlone_data() {
    addReaderRows();
}

/** They end no line, so the whole file is its first line. */
void TestCalRefCsvFiles::carriageReturnsAlone() {
    QFETCH(bool, adapter);
    const CalRefReader reader = calRefReader(adapter);
    const TestFolder folder;
    const QByteArray content = completeFile(reader).replace('\n', '\r');
    const CalRefRead read(reader, folder.write("values.csv", content).constData());
    QVERIFY(read.result);
    QCOMPARE(read.printed, QByteArray());
    QCOMPARE(read.bytes.toHex(), expectedRecord(reader, {}, {}).toHex());
}

void TestCalRefCsvFiles::utf16_data() {
    addReaderRows();
}

/** Its third line has more than eight bytes, the first of them NUL, so that no serial number comes
    out of it. */
void TestCalRefCsvFiles::utf16() {
    QFETCH(bool, adapter);
    const CalRefReader reader = calRefReader(adapter);
    QByteArray content("\xFF\xFE");
    for (const char c : completeFile(reader))
        content.append(c).append('\0');
    const TestFolder folder;
    const CalRefRead read(reader, folder.write("values.csv", content).constData());
    QCOMPARE(read.result, adapter);
    QCOMPARE(read.printed, QByteArray("incorrect data. \n"));
    const QByteArray before = expectedRecord(reader, {}, {});
    QCOMPARE(read.bytes.mid(reader.serialNoOffset, 4).toHex(),
             before.mid(reader.serialNoOffset, 4).toHex());
}

void TestCalRefCsvFiles::valuesLineCutAtOneMebibyte_data() {
    QTest::addColumn<bool>("adapter");
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("accepted");
    for (const bool adapter : {false, true}) {
        const char* kind = adapter ? "adapter" : "white plate";
        QTest::addRow("%s, a byte less", kind) << adapter << 1048575 << true;
        QTest::addRow("%s, just as long", kind) << adapter << 1048576 << true;
        QTest::addRow("%s, a byte more", kind) << adapter << 1048577 << false;
    }
}

/** The last value, 48, is moved to the end of a line of that length by the blanks before it. */
void TestCalRefCsvFiles::valuesLineCutAtOneMebibyte() {
    QFETCH(bool, adapter);
    QFETCH(int, length);
    QFETCH(bool, accepted);
    const CalRefReader reader = calRefReader(adapter);
    const QByteArray values = sampleLine(reader.valueCount - 1) + ',';
    const QByteArray line = values + QByteArray(length - values.size() - 2, ' ') + "48";
    const TestFolder folder;
    const CalRefRead read(
        reader, folder.write("values.csv", "\n\n12345678\n" + line + "\nbehind\n").constData());
    QCOMPARE(read.result, accepted);
    QVector<float> expected = sampleValues(reader.valueCount - 1);
    expected.append(48.0F);
    const QByteArray taken = accepted ? bytesOfFloats(expected) : QByteArray();
    QCOMPARE(read.bytes.toHex(), expectedRecord(reader, serialNo, taken).toHex());
}

/** What is cut off is skipped, not read as the next line. */
void TestCalRefCsvFiles::serialLineCutAtOneMebibyte() {
    const CalRefReader reader = calRefReader(false);
    const TestFolder folder;
    const QByteArray longLine(3 << 20, '1');
    const CalRefRead read(
        reader,
        folder.write("values.csv", "\n\n" + longLine + '\n' + sampleLine(38) + '\n').constData());
    QVERIFY(!read.result);
    QVERIFY(read.printed == "incorrect data. " + QByteArray(1 << 20, '1') + '\n');
    QCOMPARE(read.bytes.toHex(),
             expectedRecord(reader, {}, bytesOfFloats(sampleValues(38))).toHex());
}

void TestCalRefCsvFiles::cannotBeOpened_data() {
    UnopenableFile::addRows();
}

void TestCalRefCsvFiles::cannotBeOpened() {
    QFETCH(QByteArray, kind);
    for (const bool adapter : {false, true}) {
        const CalRefReader reader = calRefReader(adapter);
        const UnopenableFile file(kind, completeFile(reader));
        QVERIFY(file.isMade());
        const CalRefRead read(reader, file.path());
        QVERIFY(!read.result);
        QCOMPARE(read.printed, QByteArray());
        QCOMPARE(read.logged, QStringList());
        QCOMPARE(read.bytes.toHex(), expectedRecord(reader, {}, {}).toHex());
    }
}

void TestCalRefCsvFiles::nullArguments_data() {
    addReaderRows();
}

void TestCalRefCsvFiles::nullArguments() {
    QFETCH(bool, adapter);
    const CalRefReader reader = calRefReader(adapter);
    const TestFolder folder;
    const QByteArray path = folder.write("values.csv", completeFile(reader));
    QVERIFY(!(CFileIO().*reader.read)(path.constData(), nullptr));
    const CalRefRead read(reader, nullptr);
    QVERIFY(!read.result);
    QCOMPARE(read.bytes.toHex(), expectedRecord(reader, {}, {}).toHex());
}

QTEST_GUILESS_MAIN(TestCalRefCsvFiles)

#include "tst_cal_ref_csv_files.moc"
