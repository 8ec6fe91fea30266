#include "files/CHexToBin.h"
#include "tests/unit/files/FileFixture.h"

#include <climits>
#include <sys/mman.h>

namespace {

/** Text whose last character is the last one that can be read: touching the next one ends the
    program. It stays in memory. */
const char* beforeWall(const QByteArray& text) {
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    void* memory = ::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANON, -1, 0);
    char* wall = static_cast<char*>(memory) + page;
    if (memory == MAP_FAILED || ::mprotect(wall, page, PROT_NONE) != 0)
        giveUp("no memory with a wall");
    return std::copy(text.begin(), text.end(), wall - text.size()) - text.size();
}

struct RunRow {
    const char* name;
    const char* text;
    int count;
    int result;
    const char* written;
};

struct Derived : CHexToBin {
    int hexToBin(const char*, unsigned char*, int) { return 42; }
    int writeParseResult(const unsigned char*, unsigned int) { return 42; }
};

constexpr const char* fileName = "HexParseResult.txt";

int convert(const char* text, QByteArray& out, int offset, int count) {
    return CHexToBin().hexToBin(text, reinterpret_cast<unsigned char*>(out.data()) + offset, count);
}

/** @param size  bytes, each the low 8 bits of its position plus 1 */
QByteArray block(int size) {
    QByteArray bytes;
    for (int i = 0; i < size; ++i)
        bytes.append(static_cast<char>(i + 1));
    return bytes;
}

/** What the dump of whole records is, made another way than the code under test makes it. */
QByteArray dumpOf(const QByteArray& bytes) {
    QByteArray text;
    for (int at = 0; at + 259 <= bytes.size(); at += 259) {
        text += "[address]" + bytes.mid(at, 3).toHex() + '\n';
        for (int line = 0; line < 16; ++line)
            text += bytes.mid(at + 3 + 16 * line, 16).toHex() + '\n';
    }
    return text;
}

/** No bytes are given as a null pointer. */
int writeParseResult(const QByteArray& bytes) {
    const char* data = bytes.isEmpty() ? nullptr : bytes.constData();
    return CHexToBin().writeParseResult(reinterpret_cast<const unsigned char*>(data),
                                        static_cast<unsigned int>(bytes.size()));
}

} // namespace

using SizeCase = Case<int, int>;
using FolderCase = Case<int, bool>;

class TestHexToBin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /** None but hexadecimal digits are digits: no sign, blank, prefix or end of the text. */
    void everyPair() {
        const QByteArray digits("0123456789abcdefABCDEF");
        const auto valueOf = [&digits](int c) {
            const int place = int(digits.indexOf(static_cast<char>(c)));
            return place < 16 ? place : place - 6;
        };
        for (int first = 0; first < 256; ++first) {
            for (int second = 0; second < 256; ++second) {
                // The third one, a digit too, is not read.
                const char text[] = {static_cast<char>(first), static_cast<char>(second), '1'};
                const bool valid = valueOf(first) >= 0 && valueOf(second) >= 0;
                const int expected = valid ? valueOf(first) * 16 + valueOf(second) : -1;
                QCOMPARE(CHexToBin::hexPairToByte(text), expected);
            }
        }
    }

    void pairStopsAtTheFirstCharacter() { QCOMPARE(CHexToBin::hexPairToByte(beforeWall("G")), -1); }

    void run_data() {
        addRows(QVector<RunRow>{
            {"two pairs", "0A1b", 2, 1, "\x0A\x1B"},
            {"bad second pair", "0A1x", 2, 0, "\x0A"},
            {"bad first pair", "xA1b", 2, 0, ""},
            {"bad pair in the middle", "0Ax11b", 3, 0, "\x0A"},
            {"bad pair behind the count", "0A1x", 1, 1, "\x0A"},
            {"count 0", "0A1b", 0, 1, ""},
            {"count 0 of no digits", "xyz!", 0, 1, ""},
            {"count -1", "0A1b", -1, 1, ""},
            {"lowest count", "0A1b", INT_MIN, 1, ""},
            {"fewer than the text holds", "0A1b2C", 2, 1, "\x0A\x1B"},
            {"text ends early", "0A1", 2, 0, "\x0A"},
            {"empty text", "", 1, 0, ""},
            {"all bits", "fFfF", 2, 1, "\xFF\xFF"},
        });
    }
    void run() {
        const auto row = rowOf<RunRow>();
        const QByteArray guard(16, '\xA5');
        QByteArray out = guard;
        QCOMPARE(convert(row.text, out, 4, row.count), row.result);
        QCOMPARE(out.toHex(), overlaid(guard, 4, row.written).toHex());
    }

    void runReadsNoCharacterMore() {
        QByteArray out(2, '\0');
        QCOMPARE(convert(beforeWall("0A1b"), out, 0, 2), 1);
        QCOMPARE(out, QByteArray("\x0A\x1B"));
    }

    void longRun() {
        QByteArray bytes;
        for (int i = 0; i < 100000; ++i)
            bytes.append(static_cast<char>(i % 251));
        QByteArray out(bytes.size() + 1, '\xA5');
        QCOMPARE(convert(bytes.toHex(), out, 0, int(bytes.size())), 1);
        QVERIFY(out == bytes + '\xA5');
    }

    void hasNoMembers() {
        QVERIFY(std::has_virtual_destructor<CHexToBin>::value);
        QCOMPARE(sizeof(CHexToBin), sizeof(void*));
    }

    void onlyTheDestructorIsVirtual() {
        Derived derived;
        CHexToBin& object = derived;
        QCOMPARE(object.hexToBin("", nullptr, 0), 1);
    }

    // ---- The dump

    void lines_data() {
        addRows(QVector<SizeCase>{
            {"empty", 0},
            {"1 byte", 1},
            {"258 bytes", 258},
            {"259 bytes", 259, 17},
            {"260 bytes", 260, 17},
            {"517 bytes", 517, 17},
            {"518 bytes", 518, 34},
            {"600 bytes", 600, 34},
            {"100 records", 25900, 1700},
        });
    }
    void lines() {
        const auto row = rowOf<SizeCase>();
        const TestFolder folder;
        const QByteArray bytes = block(row.given);
        for (const bool isOlder : {false, true}) {
            if (isOlder)
                folder.write(fileName, QByteArray(50000, 'x'));
            int result = EOF;
            QCOMPARE(saidDuring([&] { result = writeParseResult(bytes); }), QByteArray());
            QCOMPARE(result, 0);
            QVERIFY(QFile::exists(fileName));
            const QByteArray text = folder.read(fileName);
            QCOMPARE(text.count('\n'), row.expected);
            QCOMPARE(text, dumpOf(bytes));
        }
    }

    void oneRecordToTheByte() {
        const TestFolder folder;
        QByteArray bytes("\xAB\x0C\xDE");
        for (int i = 0; i < 256; ++i)
            bytes.append(static_cast<char>(i));
        bytes += QByteArray("\x01\x20\x00", 3) + QByteArray(256, '\0');
        QCOMPARE(writeParseResult(bytes), 0);
        const QByteArray text = folder.read(fileName);
        QCOMPARE(text, dumpOf(bytes));
        QCOMPARE(text.left(49), "[address]ab0cde\n000102030405060708090a0b0c0d0e0f\n");
        QCOMPARE(text.mid(511, 49), "f0f1f2f3f4f5f6f7f8f9fafbfcfdfeff\n[address]012000\n");
    }

    void cannotBeOpened_data() {
        addRows(QVector<FolderCase>{
            {"a folder of that name, 2 records", 518, true},
            {"a folder of that name, no data", 0, true},
            {"working directory is gone, 2 records", 518, false},
            {"working directory is gone, no data", 0, false},
        });
    }
    void cannotBeOpened() {
        const auto row = rowOf<FolderCase>();
        const bool isFolder = row.expected;
        const TestFolder folder;
        QVERIFY(QDir().mkdir("working") && QDir::setCurrent("working"));
        QVERIFY(isFolder ? QDir().mkdir(fileName) : QDir().rmdir(folder.path("working")));
        QCOMPARE(writeParseResult(block(row.given)), EOF);
        QCOMPARE(QDir(folder.path("working")).exists(), isFolder);
    }

    void cannotBeWritten_data() {
        addRows(QVector<SizeCase>{
            // The first shows when the file is closed, the second long before.
            {"2 records", 518, EOF},
            {"1000 records", 259000, EOF},
            {"nothing to write", 258, 0},
        });
    }
    void cannotBeWritten() {
        const auto row = rowOf<SizeCase>();
        const TestFolder folder;
        int result = 1;
        {
            const FileSizeLimit noSpace(0);
            result = writeParseResult(block(row.given));
        }
        QCOMPARE(result, row.expected);
        QCOMPARE(folder.read(fileName), QByteArray());
    }
};

TEST_CLASS(TestHexToBin)

#include "tst_hex_to_bin.moc"
