#include "files/BoundedLineReader.h"
#include "tests/unit/files/UnopenableFile.h"

#include <QTest>

#include <sys/resource.h>

namespace {

QList<QByteArray> linesOf(const QByteArray& path, std::size_t maxLine) {
    QList<QByteArray> lines;
    BoundedLineReader reader(path.constData(), maxLine);
    std::string line = "left over";
    while (reader.next(line))
        lines.append(QByteArray::fromStdString(line));
    return lines;
}

/** The most memory that the process has taken so far, in KiB. */
long peakMemory() {
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
#ifdef __APPLE__
    return usage.ru_maxrss / 1024;
#else
    return usage.ru_maxrss;
#endif
}

} // namespace

class TestBoundedLineReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lines_data();
    void lines();
    void acrossTheBuffer_data();
    void acrossTheBuffer();
    void tellsWhichLineWasCut();
    void emptiesTheLineAtTheEnd();
    void endlessLineTakesNoMemory();
    void followsALink();
    void cannotBeOpened_data();
    void cannotBeOpened();
#ifdef Q_OS_LINUX
    void readError();
#endif
};

void TestBoundedLineReader::lines_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QList<QByteArray>>("lines");
    const auto row = [](const char* name, const QByteArray& content,
                        const QList<QByteArray>& lines) {
        QTest::newRow(name) << content << lines;
    };
    row("empty file", "", {});
    row("one byte", "a", {"a"});
    row("one line feed", "\n", {""});
    row("one byte behind the buffer", QByteArray(65535, 'y') + "\nx", {"yyyyyyyy", "x"});
    row("one line", "abc\n", {"abc"});
    row("no final line feed", "abc\nde", {"abc", "de"});
    row("empty lines", "\n\nabc\n\n", {"", "", "abc", ""});
    row("carriage returns stay", "abc\r\nde\r\n", {"abc\r", "de\r"});
    row("carriage returns end no line", "ab\rcd\r", {"ab\rcd\r"});
    row("NUL bytes stay", QByteArray("a\0b\n\0\n", 6),
        {QByteArray("a\0b", 3), QByteArray("\0", 1)});
    row("as long as the limit", "12345678\nx\n", {"12345678", "x"});
    row("longer than the limit", "123456789\nx\n", {"12345678", "x"});
    row("much longer", "12345678" + QByteArray(500000, 'y') + "\nx\n", {"12345678", "x"});
    row("longer, no line feed", "x\n123456789", {"x", "12345678"});
    row("high bytes", "\xFF\xFE\n\x80\n", {"\xFF\xFE", "\x80"});
}

void TestBoundedLineReader::lines() {
    QFETCH(QByteArray, content);
    QFETCH(QList<QByteArray>, lines);
    const TestFolder folder;
    const QByteArray path = folder.write("lines", content);
    QVERIFY(BoundedLineReader(path.constData(), 8).isOpen());
    QCOMPARE(linesOf(path, 8), lines);
}

void TestBoundedLineReader::acrossTheBuffer_data() {
    QTest::addColumn<int>("length");
    // The file is read in pieces of 64 KiB; a line may end before, at and behind their border.
    for (const int length : {65534, 65535, 65536, 65537, 131071, 131072, 131073, 200000})
        QTest::addRow("%d bytes", length) << length;
}

void TestBoundedLineReader::acrossTheBuffer() {
    QFETCH(int, length);
    QByteArray first;
    for (int i = 0; i < length; ++i)
        first.append(static_cast<char>('a' + i % 26));
    const TestFolder folder;
    const QByteArray path = folder.write("lines", first + "\nsecond\n\nlast");
    const QList<QByteArray> lines = linesOf(path, 1024 * 1024);
    QCOMPARE(lines.size(), 4);
    QVERIFY(lines[0] == first);
    QCOMPARE(lines.mid(1), (QList<QByteArray>{"second", "", "last"}));
}

void TestBoundedLineReader::tellsWhichLineWasCut() {
    const TestFolder folder;
    // The second one cut fills the buffer, so that its line feed is all that is read next.
    const QByteArray content =
        "123456789\n12345678\n\n" + QByteArray(65516, 'y') + "\n1\n" + QByteArray(9, 'z');
    BoundedLineReader reader(folder.write("lines", content).constData(), 8);
    QVERIFY(!reader.wasCut());
    std::string line;
    QList<bool> cut;
    while (reader.next(line))
        cut.append(reader.wasCut());
    QCOMPARE(cut, (QList<bool>{true, false, false, true, false, true}));
    QVERIFY(!reader.wasCut());
    QVERIFY(!reader.failed());
}

void TestBoundedLineReader::emptiesTheLineAtTheEnd() {
    const TestFolder folder;
    BoundedLineReader reader(folder.write("lines", "abc\n").constData(), 8);
    std::string line;
    QVERIFY(reader.next(line));
    QVERIFY(!reader.next(line));
    QVERIFY(line.empty());
    QVERIFY(!reader.next(line));
}

void TestBoundedLineReader::endlessLineTakesNoMemory() {
    const TestFolder folder;
    const QByteArray path = folder.write("endless", "start");
    QVERIFY(::truncate(path.constData(), 256L * 1024 * 1024) == 0);
    const long before = peakMemory();
    BoundedLineReader reader(path.constData(), 1024 * 1024);
    std::string line;
    QVERIFY(reader.next(line));
    QCOMPARE(line.size(), std::size_t{1024 * 1024});
    QVERIFY(line.capacity() <= std::size_t{4 * 1024 * 1024});
    QVERIFY(!reader.next(line));
    QVERIFY2(peakMemory() - before < 64L * 1024, "more than 64 MiB for a line of 1 MiB");
}

void TestBoundedLineReader::followsALink() {
    const TestFolder folder;
    QVERIFY(!folder.write("lines", "abc\n").isEmpty());
    const QByteArray link = folder.path("link");
    QVERIFY(::symlink("lines", link.constData()) == 0);
    QCOMPARE(linesOf(link, 8), QList<QByteArray>{"abc"});
}

void TestBoundedLineReader::cannotBeOpened_data() {
    UnopenableFile::addRows();
}

void TestBoundedLineReader::cannotBeOpened() {
    QFETCH(QByteArray, kind);
    const UnopenableFile file(kind, "abc\n");
    QVERIFY(file.isMade());
    BoundedLineReader reader(file.path(), 8);
    QVERIFY(!reader.isOpen());
    QVERIFY(reader.failed());
    std::string line = "left over";
    QVERIFY(!reader.next(line));
    QVERIFY(line.empty());
}

#ifdef Q_OS_LINUX
void TestBoundedLineReader::readError() {
    // Counts as a regular file, and its first byte cannot be read.
    BoundedLineReader reader("/proc/self/mem", 8);
    QVERIFY(reader.isOpen());
    QVERIFY(!reader.failed());
    std::string line = "left over";
    QVERIFY(!reader.next(line));
    QVERIFY(line.empty());
    QVERIFY(reader.failed());
}
#endif

QTEST_GUILESS_MAIN(TestBoundedLineReader)

#include "tst_bounded_line_reader.moc"
