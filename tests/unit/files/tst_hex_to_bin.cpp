#include "files/CHexToBin.h"
#include "tests/unit/files/FileFixture.h"

#include <QTest>

#include <climits>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>

/** Text whose last character is the last one that can be read: touching the next one ends the
    program. */
class TextBeforeWall {
public:
    explicit TextBeforeWall(const QByteArray& text)
        : m_page(static_cast<std::size_t>(::sysconf(_SC_PAGESIZE))),
          m_memory(static_cast<char*>(
              ::mmap(nullptr, 2 * m_page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANON, -1, 0))) {
        if (m_memory == MAP_FAILED || ::mprotect(m_memory + m_page, m_page, PROT_NONE) != 0)
            qFatal("no memory with a wall");
        m_text = m_memory + m_page - text.size();
        std::memcpy(m_text, text.constData(), static_cast<std::size_t>(text.size()));
    }
    ~TextBeforeWall() { ::munmap(m_memory, 2 * m_page); }
    TextBeforeWall(const TextBeforeWall&) = delete;
    TextBeforeWall& operator=(const TextBeforeWall&) = delete;

    const char* text() const { return m_text; }

private:
    std::size_t m_page;
    char* m_memory;
    char* m_text;
};

class TestHexToBin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pair_data();
    void pair();
    void everyPair();
    void pairStopsAtTheFirstCharacter();
    void run_data();
    void run();
    void runReadsNoCharacterMore();
    void longRun();
    void hasNoMembers();
    void onlyTheDestructorIsVirtual();
};

void TestHexToBin::pair_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("value");
    QTest::newRow("7f") << QByteArray("7f") << 127;
    QTest::newRow("FF") << QByteArray("FF") << 255;
    QTest::newRow("00") << QByteArray("00") << 0;
    QTest::newRow("mixed case") << QByteArray("aF") << 175;
    QTest::newRow("first is sixteens") << QByteArray("10") << 16;
    QTest::newRow("only two are read") << QByteArray("0A1") << 10;
    QTest::newRow("second no digit") << QByteArray("0G") << -1;
    QTest::newRow("first no digit") << QByteArray("G0") << -1;
    QTest::newRow("leading blank") << QByteArray(" 1") << -1;
    QTest::newRow("trailing blank") << QByteArray("1 ") << -1;
    QTest::newRow("plus") << QByteArray("+1") << -1;
    QTest::newRow("minus") << QByteArray("-1") << -1;
    QTest::newRow("prefix") << QByteArray("0x") << -1;
    QTest::newRow("empty") << QByteArray("") << -1;
    QTest::newRow("one digit") << QByteArray("1") << -1;
}

void TestHexToBin::pair() {
    QFETCH(QByteArray, text);
    QFETCH(int, value);
    QCOMPARE(CHexToBin::hexPairToByte(text.constData()), value);
}

void TestHexToBin::everyPair() {
    const QByteArray digits("0123456789abcdefABCDEF");
    const auto valueOf = [&digits](int c) {
        const int place = digits.indexOf(static_cast<char>(c));
        return place < 16 ? place : place - 6;
    };
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const char text[] = {static_cast<char>(first), static_cast<char>(second)};
            const bool valid = valueOf(first) >= 0 && valueOf(second) >= 0;
            const int expected = valid ? valueOf(first) * 16 + valueOf(second) : -1;
            QCOMPARE(CHexToBin::hexPairToByte(text), expected);
        }
    }
}

void TestHexToBin::pairStopsAtTheFirstCharacter() {
    const TextBeforeWall noDigit("G");
    QCOMPARE(CHexToBin::hexPairToByte(noDigit.text()), -1);
}

void TestHexToBin::run_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("result");
    QTest::addColumn<QByteArray>("written");
    const auto row = [](const char* name, const char* text, int count, int result,
                        const QByteArray& written) {
        QTest::newRow(name) << QByteArray(text) << count << result << written;
    };
    row("two pairs", "0A1b", 2, 1, "\x0A\x1B");
    row("bad second pair", "0A1x", 2, 0, "\x0A");
    row("bad first pair", "xA1b", 2, 0, "");
    row("bad pair in the middle", "0Ax11b", 3, 0, "\x0A");
    row("bad pair behind the count", "0A1x", 1, 1, "\x0A");
    row("count 0", "0A1b", 0, 1, "");
    row("count 0 of no digits", "xyz!", 0, 1, "");
    row("count -1", "0A1b", -1, 1, "");
    row("lowest count", "0A1b", INT_MIN, 1, "");
    row("fewer than the text holds", "0A1b2C", 2, 1, "\x0A\x1B");
    row("text ends early", "0A1", 2, 0, "\x0A");
    row("empty text", "", 1, 0, "");
    row("all bits", "fFfF", 2, 1, "\xFF\xFF");
}

void TestHexToBin::run() {
    QFETCH(QByteArray, text);
    QFETCH(int, count);
    QFETCH(int, result);
    QFETCH(QByteArray, written);
    const QByteArray guard(16, '\xA5');
    QByteArray out = guard;
    CHexToBin converter;
    QCOMPARE(converter.hexToBin(text.constData(), reinterpret_cast<unsigned char*>(out.data()) + 4,
                                count),
             result);
    QCOMPARE(out.toHex(), overlaid(guard, 4, written).toHex());
}

void TestHexToBin::runReadsNoCharacterMore() {
    const TextBeforeWall text("0A1b");
    unsigned char out[2] = {};
    CHexToBin converter;
    QCOMPARE(converter.hexToBin(text.text(), out, 2), 1);
    QCOMPARE(int(out[0]), 0x0A);
    QCOMPARE(int(out[1]), 0x1B);
}

void TestHexToBin::longRun() {
    QByteArray bytes;
    for (int i = 0; i < 100000; ++i)
        bytes.append(static_cast<char>(i % 251));
    QByteArray out(bytes.size() + 1, '\xA5');
    CHexToBin converter;
    QCOMPARE(converter.hexToBin(bytes.toHex().constData(),
                                reinterpret_cast<unsigned char*>(out.data()), bytes.size()),
             1);
    QVERIFY(out == bytes + '\xA5');
}

void TestHexToBin::hasNoMembers() {
    QVERIFY(std::has_virtual_destructor<CHexToBin>::value);
    QCOMPARE(sizeof(CHexToBin), sizeof(void*));
}

struct Derived : CHexToBin {
    explicit Derived(bool& isDestroyed) : destroyed(isDestroyed) {}
    Derived(const Derived&) = delete;
    Derived& operator=(const Derived&) = delete;
    ~Derived() override { destroyed = true; }
    int hexToBin(const char*, unsigned char*, int) { return 42; }
    int writeParseResult(const unsigned char*, unsigned int) { return 42; }
    bool& destroyed;
};

void TestHexToBin::onlyTheDestructorIsVirtual() {
    bool destroyed = false;
    std::unique_ptr<CHexToBin> object = std::make_unique<Derived>(destroyed);
    QCOMPARE(object->hexToBin("", nullptr, 0), 1);
    object.reset();
    QVERIFY(destroyed);
}

QTEST_GUILESS_MAIN(TestHexToBin)

#include "tst_hex_to_bin.moc"
