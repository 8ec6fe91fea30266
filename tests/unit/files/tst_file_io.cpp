#include "tests/unit/files/FileFixture.h"

#include <climits>

namespace {

struct PiecesRow {
    const char* name;
    QByteArray text;
    char delimiter;
    QByteArrayList pieces;
};

struct Derived : CFileIO {
    bool WriteNetworkIni(const char*, const KVA_NETWORKINFO*) { return true; }
    bool ReadNetworkIni(const char*, KVA_NETWORKINFO*) { return true; }
    bool GetCalRefDataFromFile(const char*, KVA_JIG_CALREFDATA*) { return true; }
    bool GetAmbAdpCalRefDataFromFile(const char*, KVA_JIG_CALREFDATA*) { return true; }
};

struct NamesRow {
    const char* name;
    const char* section;
    const char* key;
    QByteArray expected;
};

struct DefaultRow {
    const char* name;
    const char* section;
    const char* key;
    const char* path;
};

const QByteArray notFound("<default>");

/** What a lookup in "file.ini" puts into 512 bytes. In place of it, where something is wrong: the
    length that is returned, and everything up to behind a guard. */
QByteArray lookedUp(const char* section = "Section", const char* key = "Key",
                    const QByteArray& defaultValue = notFound, std::size_t size = 0) {
    const QByteArray guard(64, '\xA5');
    QByteArray out = QByteArray(512, '\xA5') + guard;
    const int length =
        CFileIO::ReadProfileString(section, key, defaultValue, out.data(), size, "file.ini");
    const QByteArray value(out.constData());
    const bool isRight = length == value.size() && length < 512 && out.endsWith(guard);
    return isRight ? value : QByteArray::number(length) + ": " + out;
}

/** The same of a file of this content. */
QByteArray lookedUpIn(const QByteArray& content) {
    const TestFolder folder;
    folder.write("file.ini", content);
    return lookedUp();
}

/** @p end at the end of a line of that length. */
QByteArray lineEndingIn(const QByteArray& end, int length) {
    return "[Section]\n" + QByteArray(length - end.size(), ' ') + end + '\n';
}

} // namespace

/** What CFileIO reads with: the split of a text, serial number digits, the lookup of one key. */
class TestFileIo : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void values_data() {
        addRows(QVector<TextCase>{
            {"plain", "Key=abc", "abc"},
            {"lower case", "key=abc", "abc"},
            {"upper case", "KEY=abc", "abc"},
            {"blanks around the sign", "Key = abc", "abc"},
            {"tabs and blanks", " \t Key\t =\t abc \t", "abc"},
            {"blank inside", "Key=a b\tc", "a b\tc"},
            {"sign in the value", "Key=a=b=", "a=b="},
            {"sign is the value", "Key==", "="},
            {"no comment behind", "Key=abc ; text", "abc ; text"},
            {"quotes stay", "Key=\"abc\"", "\"abc\""},
            {"no value", "Key=", notFound},
            {"no value, blanks before the sign", "Key   =", notFound},
            {"blanks as value", "Key=   ", ""},
            {"tab as value", "Key=\t", ""},
            {"no sign", "Key", notFound},
            {"no sign, blank", "Key abc", notFound},
            {"other name", "Keys=abc", notFound},
            {"shorter name", "Ke=abc", notFound},
            {"blank in the name", "K ey=abc", notFound},
            {"no name", "=abc", notFound},
            {"commented out", ";Key=abc", notFound},
            {"CR LF", "Key=abc\r", "abc"},
            {"CR LF, no value", "Key=\r", ""},
            {"CR LF, blank as value", "Key= \r", ""},
            {"blank before CR LF stays", "Key=abc \r", "abc "},
            {"blank behind a carriage return", "Key=abc\r ", "abc"},
            {"two carriage returns", "Key=abc\r\r", "abc\r\r"},
            {"carriage return inside", "Key=a\rb", "a\rb"},
            {"carriage returns inside and behind", "Key=a\rb\r", "a\rb\r"},
            {"carriage return in the name", "Key\r=abc", notFound},
            {"NUL byte in the value", QByteArray("Key=ab\0cd", 9), "ab"},
            {"NUL byte as value", QByteArray("Key=\0cd", 7), ""},
            {"NUL byte in the name", QByteArray("Key\0=abc", 8), notFound},
            {"signs around stay", "Key=~abc!#", "~abc!#"},
            {"high bytes", "Key=\xE6\x97\xA5\xFF", "\xE6\x97\xA5\xFF"},
            {"no-break blank stays", "Key=\xA0 abc\xA0", "\xA0 abc\xA0"},
            {"vertical tab stays", "Key=\vabc\f", "\vabc\f"},
        });
    }
    void values() {
        const auto row = rowOf<TextCase>();
        QCOMPARE(lookedUpIn("[Section]\n" + row.given + "\n"), row.expected);
        QCOMPARE(lookedUpIn("[Section]\n" + row.given), row.expected);
        QCOMPARE(lookedUpIn("[section]\r\n\nOther=1\n\r\n" + row.given + "\nLast=2\n"),
                 row.expected);
    }

    void files_data() {
        QVector<TextCase> rows = {
            {"empty file", "", notFound},
            {"no section", "Key=abc\n", notFound},
            {"no such section", "[Other]\nKey=abc\n", notFound},
            {"lower case", "[section]\nKey=abc\n", "abc"},
            {"mixed case", "[sECTION]\nKey=abc\n", "abc"},
            {"carriage return", "[Section]\rKey=abc\n", notFound},
            {"CR LF", "[Section]\r\nKey=abc\r\n", "abc"},
            {"two carriage returns", "[Section]\r\r\nKey=abc\n", notFound},
            {"trailing blank", "[Section] \nKey=abc\n", notFound},
            {"trailing comment", "[Section] ; text\nKey=abc\n", notFound},
            {"leading blank", " [Section]\nKey=abc\n", notFound},
            {"blanks inside", "[ Section ]\nKey=abc\n", notFound},
            {"no closing bracket", "[Section\nKey=abc\n", notFound},
            {"two brackets", "[Section]]\nKey=abc\n", notFound},
            {"longer name", "[Sections]\nKey=abc\n", notFound},
            {"NUL byte behind", QByteArray("[Section]\0\nKey=abc\n", 19), notFound},
            {"byte order mark", "\xEF\xBB\xBF[Section]\nKey=abc\n", notFound},
            {"byte order mark, then a line", "\xEF\xBB\xBF; text\n[Section]\nKey=abc\n", "abc"},
            {"first match wins", "[Section]\nKey=abc\nKey=def\n", "abc"},
            {"a first match without value", "[Section]\nKey=\nKey=def\n", "def"},
            {"a first match of blanks wins", "[Section]\nKey= \nKey=def\n", ""},
            {"key of an earlier section", "[Other]\nKey=abc\n[Section]\nKey=def\n", "def"},
            {"key of a later section", "[Section]\nA=1\n[Other]\nKey=abc\n", "abc"},
            {"later section repeats it", "[Section]\nKey=abc\n[Other]\nKey=def\n", "abc"},
            {"section comes twice", "[Section]\n[Other]\n[Section]\nKey=abc\n", "abc"},
            {"header with a sign", "[Section]\n[Key]=abc\n[Key=abc\n", notFound},
            {"only the header", "[Section]", notFound},
            {"UTF-16", QByteArray("\xFF\xFE[\0S\0]\0\n\0K\0=\0a\0\n\0", 18), notFound},

            // The value is moved to the end of a long line by the blanks before its name.
            {"line of 64 KiB less a byte", lineEndingIn("Key= xyz", 65535), "xyz"},
            {"line of 64 KiB", lineEndingIn("Key= xyz", 65536), "xyz"},
            {"line of a byte more", lineEndingIn("Key= xyz", 65537),
             QByteArray("xy").leftJustified(511, ' ')},
            {"line of three bytes more", lineEndingIn("Key= xyz", 65539), ""},
            {"no sign in the part that is read", lineEndingIn("Key=xyz", 65540), notFound},
            {"rest of a long line is skipped",
             "[Section]\n;" + QByteArray(65535, '-') + "Key=hidden\nKey=abc\n", "abc"},
            {"rest of a long last line is skipped",
             "[Section]\n;" + QByteArray(65535, '-') + "Key=hidden", notFound},
            {"header in the rest of a long line", QByteArray(65536, ';') + "[Section]\nKey=abc\n",
             notFound},
        };
        QByteArray letters;
        for (int i = 0; i < 1 << 20; ++i)
            letters.append(static_cast<char>('a' + i % 26));
        for (const int length : {510, 511, 512, 513, 5000, 70000, 1 << 20})
            rows.append({QByteArray::number(length) + " bytes",
                         "[Section]\nKey=" + letters.left(length) + "\n",
                         letters.left(std::min(length, 511))});
        addRows(rows);
    }
    void files() {
        const auto row = rowOf<TextCase>();
        QCOMPARE(lookedUpIn(row.given), row.expected);
    }

    void otherNames_data() {
        addRows(QVector<NamesRow>{
            {"as written", "Two", "B", "22"},
            {"other case", "tWO", "b", "22"},
            {"from the first on", "One", "B", "12"},
            {"empty section", "", "B", "32"},
            {"empty key", "Two", "", "no name"},
            {"key with a blank", "Two", "B ", notFound},
            {"section with bracket", "Two]", "B", notFound},
        });
    }
    void otherNames() {
        const auto row = rowOf<NamesRow>();
        const TestFolder folder;
        folder.write("file.ini", "[One]\nA=11\nB=12\n[Two]\nB=22\n=no name\n[]\nB=32\n");
        QCOMPARE(lookedUp(row.section, row.key), row.expected);
    }

    void defaults_data() {
        addRows(QVector<DefaultRow>{
            {"not found", "Section", "Key", "file.ini"},
            {"no section", nullptr, "Key", "file.ini"},
            {"no key", "Section", nullptr, "file.ini"},
            {"no path", "Section", "Key", nullptr},
            {"nothing", nullptr, nullptr, nullptr},
        });
    }
    void defaults() {
        const auto row = rowOf<DefaultRow>();
        const TestFolder folder;
        folder.write("file.ini", "[Section]\nOther=abc\n");
        const auto lookUp = [&row](const char* defaultValue, char* out) {
            return CFileIO::ReadProfileString(row.section, row.key, defaultValue, out, 0, row.path);
        };
        for (const char* defaultValue : {"", "a", "some text"}) {
            QByteArray out(512, '\xA5');
            const int length = static_cast<int>(qstrlen(defaultValue));
            QCOMPARE(lookUp(defaultValue, out.data()), length);
            QCOMPARE(out,
                     overlaid(QByteArray(512, '\xA5'), 0, QByteArray(defaultValue, length + 1)));
            QCOMPARE(lookUp(defaultValue, nullptr), length);
        }
        QByteArray out(512, '\xA5');
        QCOMPARE(lookUp(nullptr, out.data()), 0);
        QCOMPARE(out.mid(1), QByteArray(511, '\xA5'));
        QCOMPARE(lookUp(nullptr, nullptr), 0);
    }

    void overlongDefault() {
        const TestFolder folder;
        folder.write("file.ini", "[Section]\nOther=abc\n");
        for (const int length : {511, 512, 513, 5000})
            QCOMPARE(lookedUp("Section", "Key", QByteArray(length, 'd')), QByteArray(511, 'd'));
    }

    void sizeIsIgnored() {
        const TestFolder folder;
        folder.write("file.ini", "[Section]\nKey=abcdef\n");
        for (const std::size_t size : {0UL, 1UL, 3UL, 512UL, ULONG_MAX})
            QCOMPARE(lookedUp("Section", "Key", notFound, size), QByteArray("abcdef"));
    }

    void pieces_data() {
        addRows(QVector<PiecesRow>{
            {"an empty cell", "1,,2,3", ',', {"1", "2", "3"}},
            {"empty text", "", ',', {}},
            {"one piece", "abc", ',', {"abc"}},
            {"two pieces", "a,b", ',', {"a", "b"}},
            {"leading delimiter", ",a,b", ',', {"a", "b"}},
            {"trailing delimiter", "a,b,", ',', {"a", "b"}},
            {"delimiter alone", ",", ',', {}},
            {"delimiters alone", ",,,,", ',', {}},
            {"many in a row", "a,,,,b", ',', {"a", "b"}},
            {"blanks are kept", " a , ,b\t", ',', {" a ", " ", "b\t"}},
            {"carriage return is kept", "a,\r", ',', {"a", "\r"}},
            {"other delimiter", "192.168.0.10", '.', {"192", "168", "0", "10"}},
            {"another one is text", "1,2.3,4", '.', {"1,2", "3,4"}},
            {"NUL byte is text", QByteArray("a\0b,c", 5), ',', {QByteArray("a\0b", 3), "c"}},
            {"high byte as delimiter", "a\xFF\x62", '\xFF', {"a", "b"}},
        });
    }
    void pieces() {
        const auto row = rowOf<PiecesRow>();
        QByteArrayList actual;
        for (const std::string& piece : CFileIO::SplitString(row.text.toStdString(), row.delimiter))
            actual.append(QByteArray::fromStdString(piece));
        QCOMPARE(actual, row.pieces);
    }

    void manyPieces() {
        std::string text;
        for (int i = 0; i < 100000; ++i)
            text += std::to_string(i) + ',';
        const std::vector<std::string> pieces = CFileIO::SplitString(text, ',');
        QCOMPARE(pieces.size(), std::size_t{100000});
        QCOMPARE(pieces.back(), std::string("99999"));
    }

    void everyBinaryCodedDecimal() {
        for (unsigned int byte = 0; byte < 256; ++byte)
            QCOMPARE(CFileIO::BcdToDec(static_cast<unsigned char>(byte)),
                     byte / 16 * 10 + byte % 16);
    }

    void hasNoMembers() {
        QVERIFY(std::has_virtual_destructor<CFileIO>::value);
        QCOMPARE(sizeof(CFileIO), sizeof(void*));
    }

    void onlyTheDestructorIsVirtual() {
        const TestFolder folder;
        const char* missing = "no folder/no file";
        KVA_NETWORKINFO network = {};
        KVA_JIG_CALREFDATA calibration = {};
        Derived derived;
        CFileIO& object = derived;
        QVERIFY(!object.WriteNetworkIni(missing, &network));
        QVERIFY(!object.ReadNetworkIni(missing, &network));
        QVERIFY(!object.GetCalRefDataFromFile(missing, &calibration));
        QVERIFY(!object.GetAmbAdpCalRefDataFromFile(missing, &calibration));
    }
};

TEST_CLASS(TestFileIo)

#include "tst_file_io.moc"
