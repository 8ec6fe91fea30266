#include "files/CFileIO.h"
#include "tests/unit/files/UnopenableFile.h"

#include <QTest>

#include <limits>

/** The lookup of one key, `CFileIO::ReadProfileString`. */
class TestProfileString : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void sections_data();
    void sections();
    void otherNames_data();
    void otherNames();
    void valueBound_data();
    void valueBound();
    void lineBound_data();
    void lineBound();
    void restOfALongLineIsSkipped();
    void defaults_data();
    void defaults();
    void overlongDefault();
    void sizeIsIgnored();
    void cannotBeOpened_data();
    void cannotBeOpened();
};

namespace {

/** One lookup into 512 bytes with a guard behind them, and what it did. */
struct Lookup {
    Lookup(const QByteArray& path, const char* section, const char* key, const char* defaultValue,
           std::size_t size = 0)
        : buffer(512 + 64, '\xA5') {
        length = CFileIO::ReadProfileString(section, key, defaultValue, buffer.data(), size,
                                            path.constData());
    }

    /** The text in the buffer up to its NUL; null when there is none in its 512 bytes. */
    QByteArray value() const {
        const int end = buffer.indexOf('\0');
        return end >= 0 && end < 512 ? QByteArray(buffer.constData(), end) : QByteArray();
    }
    bool guardIsWhole() const { return buffer.mid(512) == QByteArray(64, '\xA5'); }
    bool isUntouched() const { return buffer == QByteArray(512 + 64, '\xA5'); }

    QByteArray buffer;
    int length;
};

const QByteArray notFound("<default>");

} // namespace

/** Looks up the key "Key" of the section "Section" in the file of the row. */
#define CHECK_LOOKUP(content, expected)                                                            \
    do {                                                                                           \
        const TestFolder folder;                                                                   \
        const QByteArray path = folder.write("file.ini", content);                                 \
        const Lookup lookup(path, "Section", "Key", notFound.constData());                         \
        QCOMPARE(lookup.value(), expected);                                                        \
        QCOMPARE(lookup.length, (expected).size());                                                \
        QVERIFY(lookup.guardIsWhole());                                                            \
    } while (false)

void TestProfileString::values_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char* name, const QByteArray& line, const QByteArray& expected) {
        QTest::newRow(name) << line << expected;
    };
    row("plain", "Key=abc", "abc");
    row("lower case", "key=abc", "abc");
    row("upper case", "KEY=abc", "abc");
    row("blanks around the sign", "Key = abc", "abc");
    row("tabs and blanks", " \t Key\t =\t abc \t", "abc");
    row("blank inside", "Key=a b\tc", "a b\tc");
    row("sign in the value", "Key=a=b=", "a=b=");
    row("sign is the value", "Key==", "=");
    row("no comment behind", "Key=abc ; text", "abc ; text");
    row("quotes stay", "Key=\"abc\"", "\"abc\"");
    row("no value", "Key=", notFound);
    row("no value, blanks before the sign", "Key   =", notFound);
    row("blanks as value", "Key=   ", "");
    row("tab as value", "Key=\t", "");
    row("no sign", "Key", notFound);
    row("no sign, blank", "Key abc", notFound);
    row("other name", "Keys=abc", notFound);
    row("shorter name", "Ke=abc", notFound);
    row("blank in the name", "K ey=abc", notFound);
    row("no name", "=abc", notFound);
    row("commented out", ";Key=abc", notFound);
    row("CR LF", "Key=abc\r", "abc");
    row("CR LF, no value", "Key=\r", "");
    row("CR LF, blank as value", "Key= \r", "");
    row("blank before CR LF stays", "Key=abc \r", "abc ");
    row("blank behind a carriage return", "Key=abc\r ", "abc");
    row("two carriage returns", "Key=abc\r\r", "abc\r\r");
    row("carriage return inside", "Key=a\rb", "a\rb");
    row("carriage returns inside and behind", "Key=a\rb\r", "a\rb\r");
    row("carriage return in the name", "Key\r=abc", notFound);
    row("NUL byte in the value", QByteArray("Key=ab\0cd", 9), "ab");
    row("NUL byte as value", QByteArray("Key=\0cd", 7), "");
    row("NUL byte in the name", QByteArray("Key\0=abc", 8), notFound);
    row("signs around stay", "Key=~abc!#", "~abc!#");
    row("high bytes", "Key=\xE6\x97\xA5\xFF", "\xE6\x97\xA5\xFF");
    row("no-break blank stays", "Key=\xA0 abc\xA0", "\xA0 abc\xA0");
    row("vertical tab stays", "Key=\vabc\f", "\vabc\f");
}

void TestProfileString::values() {
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, expected);
    CHECK_LOOKUP("[Section]\n" + line + "\n", expected);
    CHECK_LOOKUP("[Section]\n" + line, expected);
    CHECK_LOOKUP("[section]\r\n\nOther=1\n\r\n" + line + "\nLast=2\n", expected);
}

void TestProfileString::sections_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char* name, const QByteArray& content, const QByteArray& expected) {
        QTest::newRow(name) << content << expected;
    };
    row("empty file", "", notFound);
    row("no section", "Key=abc\n", notFound);
    row("no such section", "[Other]\nKey=abc\n", notFound);
    row("lower case", "[section]\nKey=abc\n", "abc");
    row("mixed case", "[sECTION]\nKey=abc\n", "abc");
    row("carriage return", "[Section]\rKey=abc\n", notFound);
    row("CR LF", "[Section]\r\nKey=abc\r\n", "abc");
    row("two carriage returns", "[Section]\r\r\nKey=abc\n", notFound);
    row("trailing blank", "[Section] \nKey=abc\n", notFound);
    row("trailing comment", "[Section] ; text\nKey=abc\n", notFound);
    row("leading blank", " [Section]\nKey=abc\n", notFound);
    row("blanks inside", "[ Section ]\nKey=abc\n", notFound);
    row("no closing bracket", "[Section\nKey=abc\n", notFound);
    row("two brackets", "[Section]]\nKey=abc\n", notFound);
    row("longer name", "[Sections]\nKey=abc\n", notFound);
    row("NUL byte behind", QByteArray("[Section]\0\nKey=abc\n", 19), notFound);
    row("byte order mark", "\xEF\xBB\xBF[Section]\nKey=abc\n", notFound);
    row("byte order mark, then a line", "\xEF\xBB\xBF; text\n[Section]\nKey=abc\n", "abc");
    row("first match wins", "[Section]\nKey=abc\nKey=def\n", "abc");
    row("a first match without value", "[Section]\nKey=\nKey=def\n", "def");
    row("a first match of blanks wins", "[Section]\nKey= \nKey=def\n", "");
    row("key of an earlier section", "[Other]\nKey=abc\n[Section]\nKey=def\n", "def");
    row("key of a later section", "[Section]\nA=1\n[Other]\nKey=abc\n", "abc");
    row("later section repeats it", "[Section]\nKey=abc\n[Other]\nKey=def\n", "abc");
    row("section comes twice", "[Section]\n[Other]\n[Section]\nKey=abc\n", "abc");
    row("header with a sign", "[Section]\n[Key]=abc\n[Key=abc\n", notFound);
    row("only the header", "[Section]", notFound);
    row("UTF-16", QByteArray("\xFF\xFE[\0S\0]\0\n\0K\0=\0a\0\n\0", 18), notFound);
}

void TestProfileString::sections() {
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, expected);
    CHECK_LOOKUP(content, expected);
}

void TestProfileString::otherNames_data() {
    QTest::addColumn<QByteArray>("section");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("as written") << QByteArray("Two") << QByteArray("B") << QByteArray("22");
    QTest::newRow("other case") << QByteArray("tWO") << QByteArray("b") << QByteArray("22");
    QTest::newRow("from the first on") << QByteArray("One") << QByteArray("B") << QByteArray("12");
    QTest::newRow("empty section") << QByteArray("") << QByteArray("B") << QByteArray("32");
    QTest::newRow("empty key") << QByteArray("Two") << QByteArray("") << QByteArray("no name");
    QTest::newRow("key with a blank") << QByteArray("Two") << QByteArray("B ") << notFound;
    QTest::newRow("section with bracket") << QByteArray("Two]") << QByteArray("B") << notFound;
}

void TestProfileString::otherNames() {
    QFETCH(QByteArray, section);
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, expected);
    const TestFolder folder;
    const QByteArray path =
        folder.write("file.ini", "[One]\nA=11\nB=12\n[Two]\nB=22\n=no name\n[]\nB=32\n");
    const Lookup lookup(path, section.constData(), key.constData(), notFound.constData());
    QCOMPARE(lookup.value(), expected);
    QCOMPARE(lookup.length, expected.size());
}

void TestProfileString::valueBound_data() {
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("expected");
    QTest::newRow("510 bytes") << 510 << 510;
    QTest::newRow("511 bytes") << 511 << 511;
    QTest::newRow("512 bytes") << 512 << 511;
    QTest::newRow("513 bytes") << 513 << 511;
    QTest::newRow("5000 bytes") << 5000 << 511;
    QTest::newRow("longer than a line may be") << 70000 << 511;
    QTest::newRow("1 MiB") << (1 << 20) << 511;
}

void TestProfileString::valueBound() {
    QFETCH(int, length);
    QFETCH(int, expected);
    QByteArray value;
    for (int i = 0; i < length; ++i)
        value.append(static_cast<char>('a' + i % 26));
    CHECK_LOOKUP("[Section]\nKey=" + value + "\n", value.left(expected));
}

void TestProfileString::lineBound_data() {
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("a byte less") << 65535 << QByteArray("xyz");
    QTest::newRow("just as long") << 65536 << QByteArray("xyz");
    QTest::newRow("a byte more") << 65537 << QByteArray("xy").leftJustified(511, ' ');
    QTest::newRow("three bytes more") << 65539 << QByteArray("");
    QTest::newRow("no sign in the part that is read") << 65540 << notFound;
}

/** The value is moved to the end of a line of that length by the blanks before its name. */
void TestProfileString::lineBound() {
    QFETCH(int, length);
    QFETCH(QByteArray, expected);
    const bool signIsCut = length == 65540;
    const QByteArray assignment = signIsCut ? "Key=xyz" : "Key= xyz";
    const QByteArray line = QByteArray(length - assignment.size(), ' ') + assignment;
    CHECK_LOOKUP("[Section]\n" + line + "\n", expected);
}

void TestProfileString::restOfALongLineIsSkipped() {
    const QByteArray longLine = ";" + QByteArray(65535, '-') + "Key=hidden";
    CHECK_LOOKUP("[Section]\n" + longLine + "\nKey=abc\n", QByteArray("abc"));
    CHECK_LOOKUP("[Section]\n" + longLine, notFound);
    CHECK_LOOKUP(QByteArray(65536, ';') + "[Section]\nKey=abc\n", notFound);
}

void TestProfileString::defaults_data() {
    QTest::addColumn<bool>("hasSection");
    QTest::addColumn<bool>("hasKey");
    QTest::addColumn<bool>("hasPath");
    QTest::newRow("not found") << true << true << true;
    QTest::newRow("no section") << false << true << true;
    QTest::newRow("no key") << true << false << true;
    QTest::newRow("no path") << true << true << false;
    QTest::newRow("nothing") << false << false << false;
}

void TestProfileString::defaults() {
    QFETCH(bool, hasSection);
    QFETCH(bool, hasKey);
    QFETCH(bool, hasPath);
    const TestFolder folder;
    const QByteArray file = folder.write("file.ini", "[Section]\nOther=abc\n");
    const QByteArray path = hasPath ? file : QByteArray();
    const char* section = hasSection ? "Section" : nullptr;
    const char* key = hasKey ? "Key" : nullptr;
    const char* pathText = hasPath ? path.constData() : nullptr;
    for (const char* defaultValue : {"", "a", "some text"}) {
        QByteArray out(512, '\xA5');
        const int length =
            CFileIO::ReadProfileString(section, key, defaultValue, out.data(), 0, pathText);
        QCOMPARE(length, static_cast<int>(qstrlen(defaultValue)));
        QCOMPARE(out.left(length + 1), QByteArray(defaultValue, length + 1));
        QCOMPARE(out.mid(length + 1), QByteArray(512 - length - 1, '\xA5'));
        QCOMPARE(CFileIO::ReadProfileString(section, key, defaultValue, nullptr, 0, pathText),
                 length);
    }
    QByteArray out(512, '\xA5');
    QCOMPARE(CFileIO::ReadProfileString(section, key, nullptr, out.data(), 0, pathText), 0);
    QCOMPARE(out.mid(1), QByteArray(511, '\xA5'));
    QCOMPARE(CFileIO::ReadProfileString(section, key, nullptr, nullptr, 0, pathText), 0);
}

void TestProfileString::overlongDefault() {
    const TestFolder folder;
    const QByteArray path = folder.write("file.ini", "[Section]\nOther=abc\n");
    for (const int length : {511, 512, 513, 5000}) {
        const QByteArray text(length, 'd');
        const Lookup lookup(path, "Section", "Key", text.constData());
        QCOMPARE(lookup.value(), QByteArray(511, 'd'));
        QCOMPARE(lookup.length, 511);
        QVERIFY(lookup.guardIsWhole());
    }
}

void TestProfileString::sizeIsIgnored() {
    const TestFolder folder;
    const QByteArray path = folder.write("file.ini", "[Section]\nKey=abcdef\n");
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{512},
                                   std::numeric_limits<std::size_t>::max()}) {
        const Lookup lookup(path, "Section", "Key", "", size);
        QCOMPARE(lookup.value(), QByteArray("abcdef"));
        QCOMPARE(lookup.length, 6);
    }
}

void TestProfileString::cannotBeOpened_data() {
    UnopenableFile::addRows();
}

/** The one case in which the default is not copied. */
void TestProfileString::cannotBeOpened() {
    QFETCH(QByteArray, kind);
    const UnopenableFile file(kind, "[Section]\nKey=abc\n");
    QVERIFY(file.isMade());
    const Lookup lookup(file.path(), "Section", "Key", notFound.constData());
    QCOMPARE(lookup.length, notFound.size());
    QVERIFY(lookup.isUntouched());
    const Lookup longDefault(file.path(), "Section", "Key", QByteArray(600, 'd').constData());
    QCOMPARE(longDefault.length, 600);
    QVERIFY(longDefault.isUntouched());
    const Lookup withoutDefault(file.path(), "Section", "Key", nullptr);
    QCOMPARE(withoutDefault.length, 0);
    QVERIFY(withoutDefault.isUntouched());
}

QTEST_GUILESS_MAIN(TestProfileString)

#include "tst_profile_string.moc"
