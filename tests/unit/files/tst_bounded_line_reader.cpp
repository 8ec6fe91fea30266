#include "files/BoundedLineReader.h"
#include "tests/unit/files/FileFixture.h"

namespace {

struct LinesRow {
    QByteArray name;
    QByteArray content;
    QByteArrayList lines;
    std::size_t maxLine = 8;
};

QByteArrayList linesOf(const char* path, std::size_t maxLine) {
    QByteArrayList lines;
    BoundedLineReader reader(path, maxLine);
    std::string line = "left over";
    while (reader.next(line))
        lines.append(QByteArray::fromStdString(line));
    if (!line.empty() || reader.next(line) || reader.failed())
        lines.append("there is no end");
    return lines;
}

} // namespace

class TestBoundedLineReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lines_data() {
        QVector<LinesRow> rows = {
            {"empty file", "", {}},
            {"one byte", "a", {"a"}},
            {"one line feed", "\n", {""}},
            {"one byte behind the buffer", QByteArray(65535, 'y') + "\nx", {"yyyyyyyy", "x"}},
            {"one line", "abc\n", {"abc"}},
            {"no final line feed", "abc\nde", {"abc", "de"}},
            {"empty lines", "\n\nabc\n\n", {"", "", "abc", ""}},
            {"carriage returns stay", "abc\r\nde\r\n", {"abc\r", "de\r"}},
            {"carriage returns end no line", "ab\rcd\r", {"ab\rcd\r"}},
            {"NUL bytes stay",
             QByteArray("a\0b\n\0\n", 6),
             {QByteArray("a\0b", 3), QByteArray(1, '\0')}},
            {"as long as the limit", "12345678\nx\n", {"12345678", "x"}},
            {"longer than the limit", "123456789\nx\n", {"12345678", "x"}},
            {"much longer", "12345678" + QByteArray(500000, 'y') + "\nx\n", {"12345678", "x"}},
            {"longer, no line feed", "x\n123456789", {"x", "12345678"}},
            {"high bytes", "\xFF\xFE\n\x80\n", {"\xFF\xFE", "\x80"}},
        };
        // The file is read in pieces of 64 KiB; a line may end before, at and behind their border.
        for (const int length : {65534, 65535, 65536, 65537, 131071, 131072, 131073, 200000}) {
            QByteArray first;
            for (int i = 0; i < length; ++i)
                first.append(static_cast<char>('a' + i % 26));
            rows.append({QByteArray::number(length) + " bytes",
                         first + "\nsecond\n\nlast",
                         {first, "second", "", "last"},
                         1024 * 1024});
        }
        addRows(rows);
    }
    void lines() {
        const auto row = rowOf<LinesRow>();
        const TestFolder folder;
        folder.write("lines", row.content);
        QVERIFY(BoundedLineReader("lines", row.maxLine).isOpen());
        QCOMPARE(linesOf("lines", row.maxLine), row.lines);
    }

    void tellsWhichLineWasCut() {
        const TestFolder folder;
        // The second one cut fills the buffer, so that its line feed is all that is read next.
        folder.write("lines", "123456789\n12345678\n\n" + QByteArray(65516, 'y') + "\n1\n" +
                                  QByteArray(9, 'z'));
        BoundedLineReader reader("lines", 8);
        QVERIFY(!reader.wasCut());
        std::string line;
        QList<bool> cut;
        while (reader.next(line))
            cut.append(reader.wasCut());
        QCOMPARE(cut, (QList<bool>{true, false, false, true, false, true}));
        QVERIFY(!reader.wasCut());
        QVERIFY(!reader.failed());
    }

    void endlessLineTakesNoMemory() {
        const TestFolder folder;
        folder.write("endless", "start");
        QVERIFY(QFile::resize("endless", 256 * 1024 * 1024));
        const qint64 before = peakMemory();
        BoundedLineReader reader("endless", 1024 * 1024);
        std::string line;
        QVERIFY(reader.next(line));
        QCOMPARE(line.size(), std::size_t{1024 * 1024});
        QVERIFY(line.capacity() <= std::size_t{4 * 1024 * 1024});
        QVERIFY(!reader.next(line));
        QVERIFY2(peakMemory() - before < 64 * 1024 * 1024, "more than 64 MiB for a line of 1 MiB");
    }

    void followsALink() {
        const TestFolder folder;
        folder.write("lines", "abc\n");
        QVERIFY(QFile::link("lines", "link"));
        QCOMPARE(linesOf("link", 8), QByteArrayList{"abc"});
    }

#ifdef Q_OS_LINUX
    void readError() {
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
};

TEST_CLASS(TestBoundedLineReader)

#include "tst_bounded_line_reader.moc"
