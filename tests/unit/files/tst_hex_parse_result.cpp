#include "files/CHexToBin.h"
#include "tests/support/DebugLog.h"
#include "tests/support/StandardOutput.h"
#include "tests/unit/files/FileFixture.h"

#include <QDir>
#include <QTest>

#include <cstdio>
#include <unistd.h>

namespace {

constexpr const char* fileName = "HexParseResult.txt";

/** Makes a folder the working directory while it exists. */
class WorkingDirectory {
public:
    explicit WorkingDirectory(const QByteArray& path) : m_before(QDir::currentPath()) {
        if (::chdir(path.constData()) != 0)
            qFatal("cannot enter %s", path.constData());
    }
    ~WorkingDirectory() { QDir::setCurrent(m_before); }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
    QString m_before;
};

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

int writeParseResult(const QByteArray& bytes) {
    return CHexToBin().writeParseResult(reinterpret_cast<const unsigned char*>(bytes.constData()),
                                        static_cast<unsigned int>(bytes.size()));
}

} // namespace

class TestHexParseResult : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lines_data();
    void lines();
    void oneRecordToTheByte();
    void addressLine();
    void noDataAtAll();
    void replacesAnOlderFile();
    void saysNothing();
    void cannotBeOpened_data();
    void cannotBeOpened();
    void cannotBeWritten_data();
    void cannotBeWritten();
};

void TestHexParseResult::lines_data() {
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("lineCount");
    QTest::newRow("empty") << 0 << 0;
    QTest::newRow("1 byte") << 1 << 0;
    QTest::newRow("258 bytes") << 258 << 0;
    QTest::newRow("259 bytes") << 259 << 17;
    QTest::newRow("260 bytes") << 260 << 17;
    QTest::newRow("517 bytes") << 517 << 17;
    QTest::newRow("518 bytes") << 518 << 34;
    QTest::newRow("600 bytes") << 600 << 34;
    QTest::newRow("100 records") << 25900 << 1700;
}

void TestHexParseResult::lines() {
    QFETCH(int, size);
    QFETCH(int, lineCount);
    const TestFolder folder;
    const WorkingDirectory inside(folder.path(""));
    const QByteArray bytes = block(size);
    QCOMPARE(writeParseResult(bytes), 0);
    const QByteArray text = folder.read(fileName);
    QVERIFY(!text.isNull());
    QCOMPARE(text.count('\n'), lineCount);
    QCOMPARE(text, dumpOf(bytes));
}

void TestHexParseResult::oneRecordToTheByte() {
    const TestFolder folder;
    const WorkingDirectory inside(folder.path(""));
    QByteArray bytes("\xAB\x0C\xDE", 3);
    for (int i = 0; i < 256; ++i)
        bytes.append(static_cast<char>(i));
    QCOMPARE(writeParseResult(bytes), 0);
    QCOMPARE(folder.read(fileName), QByteArray("[address]ab0cde\n"
                                               "000102030405060708090a0b0c0d0e0f\n"
                                               "101112131415161718191a1b1c1d1e1f\n"
                                               "202122232425262728292a2b2c2d2e2f\n"
                                               "303132333435363738393a3b3c3d3e3f\n"
                                               "404142434445464748494a4b4c4d4e4f\n"
                                               "505152535455565758595a5b5c5d5e5f\n"
                                               "606162636465666768696a6b6c6d6e6f\n"
                                               "707172737475767778797a7b7c7d7e7f\n"
                                               "808182838485868788898a8b8c8d8e8f\n"
                                               "909192939495969798999a9b9c9d9e9f\n"
                                               "a0a1a2a3a4a5a6a7a8a9aaabacadaeaf\n"
                                               "b0b1b2b3b4b5b6b7b8b9babbbcbdbebf\n"
                                               "c0c1c2c3c4c5c6c7c8c9cacbcccdcecf\n"
                                               "d0d1d2d3d4d5d6d7d8d9dadbdcdddedf\n"
                                               "e0e1e2e3e4e5e6e7e8e9eaebecedeeef\n"
                                               "f0f1f2f3f4f5f6f7f8f9fafbfcfdfeff\n"));
}

void TestHexParseResult::addressLine() {
    const TestFolder folder;
    const WorkingDirectory inside(folder.path(""));
    QCOMPARE(writeParseResult(QByteArray("\x01\x20\x00", 3) + QByteArray(256, '\0')), 0);
    QCOMPARE(folder.read(fileName).left(16), QByteArray("[address]012000\n"));
}

void TestHexParseResult::noDataAtAll() {
    const TestFolder folder;
    const WorkingDirectory inside(folder.path(""));
    QCOMPARE(CHexToBin().writeParseResult(nullptr, 0), 0);
    QCOMPARE(folder.read(fileName), QByteArray(""));
}

void TestHexParseResult::replacesAnOlderFile() {
    const TestFolder folder;
    const WorkingDirectory inside(folder.path(""));
    QVERIFY(!folder.write(fileName, QByteArray(5000, 'x')).isEmpty());
    QCOMPARE(writeParseResult(block(259)), 0);
    QCOMPARE(folder.read(fileName), dumpOf(block(259)));
    QCOMPARE(writeParseResult(block(258)), 0);
    QCOMPARE(folder.read(fileName), QByteArray(""));
}

void TestHexParseResult::saysNothing() {
    const TestFolder folder;
    const WorkingDirectory inside(folder.path(""));
    const DebugLog log;
    QByteArray printed;
    {
        StandardOutput output;
        writeParseResult(block(518));
        printed = output.take();
    }
    QCOMPARE(printed, QByteArray());
    QCOMPARE(log.lines() + log.others(), QStringList());
}

void TestHexParseResult::cannotBeOpened_data() {
    QTest::addColumn<bool>("isFolder");
    QTest::addColumn<int>("size");
    QTest::newRow("a folder of that name, 2 records") << true << 518;
    QTest::newRow("a folder of that name, no data") << true << 0;
    QTest::newRow("working directory is gone, 2 records") << false << 518;
    QTest::newRow("working directory is gone, no data") << false << 0;
}

void TestHexParseResult::cannotBeOpened() {
    QFETCH(bool, isFolder);
    QFETCH(int, size);
    const TestFolder folder;
    const QByteArray directory = folder.path("working");
    QVERIFY(QDir().mkpath(QFile::decodeName(directory)));
    const WorkingDirectory inside(directory);
    if (isFolder)
        QVERIFY(QDir().mkdir(QString::fromLatin1(fileName)));
    else
        QVERIFY(::rmdir(directory.constData()) == 0);
    QCOMPARE(writeParseResult(block(size)), EOF);
    QCOMPARE(QDir(QFile::decodeName(directory)).exists(), isFolder);
}

void TestHexParseResult::cannotBeWritten_data() {
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("result");
    // The first shows when the file is closed, the second long before.
    QTest::newRow("2 records") << 518 << EOF;
    QTest::newRow("1000 records") << 259000 << EOF;
    QTest::newRow("nothing to write") << 258 << 0;
}

void TestHexParseResult::cannotBeWritten() {
    QFETCH(int, size);
    QFETCH(int, result);
    const TestFolder folder;
    const WorkingDirectory inside(folder.path(""));
    int actual = 1;
    {
        const NoSpaceForFiles noSpace;
        actual = writeParseResult(block(size));
    }
    QCOMPARE(actual, result);
    QCOMPARE(folder.read(fileName), QByteArray(""));
}

QTEST_GUILESS_MAIN(TestHexParseResult)

#include "tst_hex_parse_result.moc"
