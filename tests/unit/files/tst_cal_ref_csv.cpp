#include "tests/unit/files/FileFixture.h"

#include <limits>

namespace {

/** Makes what is to be read of what is right. */
using Edit = QByteArray (*)(QByteArray right);

struct SerialRow {
    const char* name;
    QByteArray line;
    const char* white;       ///< what the readers store, in hexadecimal; empty: the field keeps its
    const char* adapter;     ///< bytes; null: the line is complained of
    QByteArray cited = line; ///< in the complaint
};

struct FileRow {
    const char* name;
    Edit content;
    bool hasSerialNo = true; ///< that is stored
    bool hasValues = true;   ///< that are stored
    bool accepted = true;
    QByteArray said = {};
};

const QByteArray serialNo("\x12\x34\x56\x78");

} // namespace

using LineCase = Case<Edit, bool>;
using CellCase = Case<QByteArray, float>;

/** The two readers of calibration files: what they take from the serial line and the values line,
    and from files that are short, long, odd or broken. */
class TestCalRefCsv : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { addReaders(); }
    void init() {
        QFETCH_GLOBAL(bool, adapter);
        m_adapter = adapter;
        m_count = calRefReader(adapter).valueCount;
    }

    void serialLine_data() {
        addRows(QVector<SerialRow>{
            {"8 digits", "12345678", "12345678", "12345678"},
            {"8 digits, zeros first", "00012345", "00012345", "00012345"},
            {"7 digits", "1234567", "01234567", nullptr},
            {"6 digits", "123456", "00123456", nullptr},
            {"5 digits", "12345", "00012345", nullptr},
            {"4 digits", "1234", "00001234", nullptr},
            {"3 digits", "123", "00000123", nullptr},
            {"2 digits", "12", "00000012", nullptr},
            {"1 digit", "5", "00000005", nullptr},
            {"zeros", "00000000", "00000000", "00000000"},
            {"hexadecimal", "abCDef09", "abcdef09", "abcdef09"},
            {"last pair no digits", "ABCDEFGH", "abcdefff", "abcdefff"},
            {"no digits at all", "????????", "ffffffff", "ffffffff"},
            {"one character, no digit", "G", "000000ff", nullptr},
            {"digit and no digit", "123G", "000012ff", nullptr},
            {"leading blank", " 1234567", "ff234567", "ff234567"},
            {"is not split at commas", "12,345", "0012ff45", nullptr},
            {"NUL byte", QByteArray("12\0\x34", 4), "000012ff", nullptr, "12"},
            {"carriage return inside", "12\r4", "000012ff", nullptr},
            {"carriage return at the end", "12345678\r", "12345678", "12345678"},
            {"7 digits and a carriage return", "1234567\r", "01234567", nullptr, "1234567"},
            {"empty", "", "", nullptr},
            {"carriage return", "\r", "", nullptr, ""},
            {"9 digits", "123456789", nullptr, nullptr},
            {"trailing blank", "12345678 ", nullptr, nullptr},
            {"percent signs", "%s%n%d%x%s", nullptr, nullptr},
            {"two carriage returns", "12345678\r\r", nullptr, nullptr},
            {"without its carriage return", "123456789\r", nullptr, nullptr, "123456789"},
            {"ends at a NUL byte", QByteArray("12\0\x34\x35\x36\x37\x38\x61\x62", 10), nullptr,
             nullptr, "12"},
            {"very long", QByteArray(5000, '7'), nullptr, nullptr},
            // What is cut off is skipped, not read as the next line.
            {"cut at 1 MiB", QByteArray(3 << 20, '1'), nullptr, nullptr, QByteArray(1 << 20, '1')},
        });
    }
    /** The values line is right: it is stored whatever the serial line is. */
    void serialLine() {
        const auto row = rowOf<SerialRow>();
        const char* stored = m_adapter ? row.adapter : row.white;
        const QByteArray said = stored ? "" : "incorrect data. " + row.cited + '\n';
        QCOMPARE(read(calRefFile(m_adapter, row.line)),
                 outcome(stored || m_adapter, record(QByteArray::fromHex(stored), values()), said));
    }

    void valuesLine_data() {
        addRows(QVector<LineCase>{
            {"as many as it must be", [](QByteArray right) { return right; }, true},
            {"one too few", [](QByteArray right) { return right.left(right.lastIndexOf(',')); }},
            {"one too many", [](QByteArray right) { return right + ",1"; }},
            {"as many as the other kind",
             [](QByteArray right) { return sampleLine(112 - int(right.count(','))); }},
            {"empty line", [](QByteArray) { return QByteArray(); }},
            {"one value", [](QByteArray) { return QByteArray("1"); }},
            {"empty cell more", [](QByteArray right) { return "," + right; }, true},
            {"trailing comma", [](QByteArray right) { return right + ","; }, true},
            {"two commas in a row",
             [](QByteArray right) { return right.replace("3.25,", "3.25,,"); }, true},
            {"a cell is empty", [](QByteArray right) { return right.replace(",3.25,", ",,"); }},
            {"semicolons", [](QByteArray right) { return right.replace(',', ';'); }},
            {"carriage return at the end", [](QByteArray right) { return right + "\r"; }, true},
            {"trailing comma and carriage return", [](QByteArray right) { return right + ",\r"; },
             true},
            {"carriage return is a cell", [](QByteArray right) { return right + ",\r\r"; }},
            {"blank is a cell", [](QByteArray right) { return right + ", "; }},
            // The last value is moved to the end of a long line by the blanks before it.
            {"1 MiB less a byte", [](QByteArray right) { return stretched(right, 1048575); }, true},
            {"1 MiB", [](QByteArray right) { return stretched(right, 1048576); }, true},
            {"1 MiB and a byte", [](QByteArray right) { return stretched(right, 1048577); }},
        });
    }
    void valuesLine() {
        const auto row = rowOf<LineCase>();
        const QByteArray line = row.given(sampleLine(m_count));
        QCOMPARE(
            read("\n\n12345678\n" + line + "\nbehind\n"),
            outcome(row.expected, record(serialNo, row.expected ? values() : QVector<float>())));
    }

    void cells_data() {
        addRows(QVector<CellCase>{
            {"decimal", "0.5", 0.5F},
            {"nearest single", "98.7654321", 98.7654321F},
            {"minus", "-1.5", -1.5F},
            {"exponent", "1.5e-3", 1.5e-3F},
            {"blanks around", " \t0.5 ", 0.5F},
            {"carriage return before", "\r0.5", 0.5F},
            {"carriage return behind", "7\r", 7.0F},
            {"text behind", "0.5 %", 0.5F},
            {"quoted", "\"0.5\"", 0.0F},
            {"no number", "abc", 0.0F},
            {"blank", " ", 0.0F},
            {"NUL byte behind", QByteArray("0.5\0007", 5), 0.5F},
            {"out of range", "1e39", std::numeric_limits<float>::infinity()},
            {"out of range below", "-1e99", -std::numeric_limits<float>::infinity()},
            {"too small", "1e-60", 0.0F},
            {"many digits", "0." + QByteArray(1000, '3'), 0.333333333F},
        });
    }
    void cells() {
        const auto row = rowOf<CellCase>();
        QByteArrayList cells = sampleLine(m_count).split(',');
        QVector<float> expected = values();
        for (int i = 7; i < m_count; i += 10) {
            cells[i] = row.given;
            expected[i] = row.expected;
        }
        QCOMPARE(read("\n\n12345678\n" + cells.join(',') + '\n'),
                 outcome(true, record(serialNo, expected)));
    }

    void files_data() {
        static const QByteArray longText(3 << 20, ',');
        addRows(QVector<FileRow>{
            {"plain", [](QByteArray right) { return right; }},
            {"CR LF", [](QByteArray right) { return right.replace("\n", "\r\n"); }},
            {"no final line feed", [](QByteArray right) { return right.chopped(1); }},
            {"no final line feed, carriage return",
             [](QByteArray right) { return right.chopped(1) + "\r"; }},
            {"empty headings", [](QByteArray right) { return right.replace("heading", ""); }},
            {"byte order mark", [](QByteArray right) { return "\xEF\xBB\xBF" + right; }},
            {"headings like the data",
             [](QByteArray right) { return "123456789\n1,2,3\n" + right.mid(16); }},
            {"NUL bytes in the headings",
             [](QByteArray right) { return QByteArray("\0\0\0\n\0\n", 6) + right.mid(16); }},
            {"high bytes in the headings",
             [](QByteArray right) { return "\x93\xFA\x96{\n\xFF\n" + right.mid(16); }},
            {"headings of 3 MiB", [](QByteArray right) { return longText + right.mid(7); }},
            {"lines behind",
             [](QByteArray right) { return right + "123456789\n1,2,3\nanything\n"; }},
            {"a file behind", [](QByteArray right) { return right + right; }},
            {"an endless line behind", [](QByteArray right) { return right + longText; }},
            // Missing lines are no error: the record keeps their fields.
            {"empty", [](QByteArray) { return QByteArray(); }, false, false},
            {"a line feed", [](QByteArray) { return QByteArray("\n"); }, false, false},
            {"part of a line", [](QByteArray) { return QByteArray("heading"); }, false, false},
            {"one line", [](QByteArray) { return QByteArray("heading\n"); }, false, false},
            {"two lines", [](QByteArray) { return QByteArray("heading\nheading\n"); }, false,
             false},
            {"two lines, the last without end",
             [](QByteArray) { return QByteArray("heading\nheading"); }, false, false},
            {"three lines", [](QByteArray right) { return right.left(25); }, true, false},
            {"three lines, the last without end", [](QByteArray right) { return right.left(24); },
             true, false},
            {"carriage returns alone, which end no line",
             [](QByteArray right) { return right.replace('\n', '\r'); }, false, false},
            {"right values behind wrong ones",
             [](QByteArray right) { return right.replace("0.25", "1,2,3\n0.25"); }, true, false,
             false},
            {"both lines wrong", [](QByteArray) { return QByteArray("\n\n1234567890\n1,2,3\n"); },
             false, false, false, "incorrect data. 1234567890\n"},
        });
    }
    void files() {
        const auto row = rowOf<FileRow>();
        const QByteArray expected = record(row.hasSerialNo ? serialNo : QByteArray(),
                                           row.hasValues ? values() : QVector<float>());
        QCOMPARE(read(row.content(calRefFile(m_adapter))),
                 outcome(row.accepted, expected, row.said));
    }

    void registersOneAfterTheOther() {
        const TestFolder folder;
        auto data = patternedRecord<KVA_JIG_CALREFDATA>();
        for (const bool adapter : {m_adapter, !m_adapter}) {
            folder.write("values.csv", calRefFile(adapter, adapter ? "00054321" : "12345678"));
            QVERIFY((CFileIO().*calRefReader(adapter).read)("values.csv", &data));
        }
        const QByteArray white = calRefRecord(false, serialNo, sampleValues(38));
        QCOMPARE(
            bytesOf(data).toHex(),
            calRefRecord(true, QByteArray::fromHex("00054321"), sampleValues(75), white).toHex());
        QCOMPARE(CFileIO::BcdToDec(data.whiteSerialNo[0]), 12U);
        QCOMPARE(CFileIO::BcdToDec(data.ambAdpSerialNo[3]), 21U);
    }

    void nullArguments() const {
        const TestFolder folder;
        folder.write("values.csv", calRefFile(m_adapter));
        QVERIFY(!(CFileIO().*calRefReader(m_adapter).read)("values.csv", nullptr));
        QCOMPARE(readCalRef(m_adapter, nullptr), refusedCalRef(m_adapter));
    }

private:
    static QByteArray stretched(const QByteArray& line, int length) {
        const auto at = line.lastIndexOf(',') + 1;
        return line.left(at) + QByteArray(length - line.size(), ' ') + line.mid(at);
    }

    QByteArray read(const QByteArray& content) const {
        const TestFolder folder;
        folder.write("values.csv", content);
        return readCalRef(m_adapter, "values.csv");
    }
    QByteArray record(const QByteArray& serial, const QVector<float>& floats) const {
        return calRefRecord(m_adapter, serial, floats);
    }
    QVector<float> values() const { return sampleValues(m_count); }

    bool m_adapter = false;
    int m_count = 0;
};

TEST_CLASS(TestCalRefCsv)

#include "tst_cal_ref_csv.moc"
