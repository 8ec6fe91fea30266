#include "files/BoundedLineReader.h"
#include "tests/unit/files/CalRefFixture.h"
#include "tests/unit/files/NetworkFixture.h"
#include "tests/unit/files/ReadHook.h"

#include <fcntl.h>
#include <functional>
#include <unistd.h>

/** Files that fail while they are read, or that change meanwhile. Each counts as a file that cannot
    be opened; nothing that was read short is taken. */
class TestDisturbedReads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void handsOutNoPartOfALine();
    void calibrationFails_data();
    void calibrationFails();
    void calibrationChanges_data();
    void calibrationChanges();
    void settingsFail_data();
    void settingsFail();
    void settingsChange_data();
    void settingsChange();
    void lookupFails_data();
    void lookupFails();
#ifdef Q_OS_LINUX
    void failsAtTheFirstByte();
#endif
};

namespace {

const auto fails = [] { return false; };
const QByteArray serialNo("\x12\x34\x56\x78");

/** The last value is 87.6543, which reads as another number wherever it is cut. */
QByteArray calibrationFile(const CalRefReader& reader) {
    return "heading\nheading\n12345678\n" + sampleLine(reader.valueCount - 1) + ",87.6543\nend\n";
}

QByteArray completeRecord(const CalRefReader& reader) {
    const QVector<float> values = sampleValues(reader.valueCount - 1) + QVector<float>{87.6543F};
    return expectedRecord(reader, serialNo, bytesOfFloats(values));
}

/** Gives the file a time of last change that no later change can have. */
bool makeOld(const QByteArray& path) {
    const timespec times[2] = {{1, 0}, {1, 0}};
    return ::utimensat(AT_FDCWD, path.constData(), times, 0) == 0;
}

/** Something that happens to a file, once, to be put in the way of a read. */
class Change {
public:
    /** The ways; the column is "way". */
    static void addRows() {
        QTest::addColumn<QByteArray>("way");
        for (const char* way :
             {"none", "grows", "shrinks", "is emptied", "other bytes", "replaced"})
            QTest::newRow(way) << QByteArray(way);
    }

    Change(const QByteArray& way, const QByteArray& path, const QByteArray& content)
        : m_way(way), m_path(path), m_content(content) {}

    bool operator()() {
        if (!m_isDone)
            make();
        m_isDone = true;
        return true;
    }

private:
    void make() const {
        const QString name = QFile::decodeName(m_path);
        const QString other = name + QStringLiteral(".other");
        QFile file(m_way == "replaced" ? other : name);
        if (m_way == "grows")
            QVERIFY(file.open(QIODevice::Append) && file.write("more\n") == 5);
        else if (m_way == "shrinks")
            QVERIFY(file.resize(m_content.lastIndexOf("6543")));
        else if (m_way == "is emptied")
            QVERIFY(file.resize(0));
        else if (m_way == "other bytes")
            QVERIFY(file.open(QIODevice::ReadWrite) && file.write(m_content) == m_content.size());
        else if (m_way == "replaced")
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(m_content) == m_content.size() &&
                    ::rename(QFile::encodeName(other).constData(), m_path.constData()) == 0);
    }

    QByteArray m_way;
    QByteArray m_path;
    QByteArray m_content; ///< that the file gets
    bool m_isDone = false;
};

} // namespace

void TestDisturbedReads::handsOutNoPartOfALine() {
    const TestFolder folder;
    const QByteArray path = folder.write("lines", "first\nsecond\n");
    const ReadHook hook(path, 9, fails);
    BoundedLineReader reader(path.constData(), 100);
    std::string line;
    QVERIFY(reader.next(line));
    QCOMPARE(line, std::string("first"));
    QVERIFY(!reader.failed());
    for (int i = 0; i < 2; ++i) {
        QVERIFY(!reader.next(line));
        QCOMPARE(line, std::string());
        QVERIFY(reader.failed());
    }
}

void TestDisturbedReads::calibrationFails_data() {
    QTest::addColumn<bool>("adapter");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("offset");
    for (const bool adapter : {false, true}) {
        const QByteArray file = calibrationFile(calRefReader(adapter));
        const auto row = [&](const char* name, const QByteArray& content, int offset) {
            QTest::addRow("%s, %s", adapter ? "adapter" : "white plate", name)
                << adapter << content << offset;
        };
        const QByteArray wrongSerialNo = QByteArray(file).replace("12345678", "123456789");
        row("first byte", file, 0);
        row("in the headings", file, 3);
        row("before the serial number", file, file.indexOf("12345678"));
        row("in the serial number", file, file.indexOf("5678"));
        row("before the values", file, file.indexOf("0.25"));
        row("in the last value", file, file.indexOf("7.6543"));
        row("behind the last value", file, file.indexOf("\nend"));
        row("behind the values", file, file.indexOf("end"));
        row("last byte", file, file.size() - 1);
        row("behind the buffer", file + QByteArray(100000, 'x'), 70000);
        row("behind a serial number that is complained of", wrongSerialNo, file.indexOf("end"));
    }
}

void TestDisturbedReads::calibrationFails() {
    QFETCH(bool, adapter);
    QFETCH(QByteArray, content);
    QFETCH(int, offset);
    const CalRefReader reader = calRefReader(adapter);
    const TestFolder folder;
    const QByteArray path = folder.write("values.csv", content);
    const ReadHook hook(path, offset, fails);
    const CalRefRead read(reader, path.constData());
    QVERIFY(!read.result);
    QCOMPARE(read.printed, QByteArray());
    QCOMPARE(read.logged, QStringList());
    QCOMPARE(read.bytes.toHex(), expectedRecord(reader, {}, {}).toHex());
}

void TestDisturbedReads::calibrationChanges_data() {
    Change::addRows();
}

void TestDisturbedReads::calibrationChanges() {
    QFETCH(QByteArray, way);
    // What is replaced is another file: the one that was opened is read as it is.
    const bool accepted = way == "none" || way == "replaced";
    for (const bool adapter : {false, true}) {
        const CalRefReader reader = calRefReader(adapter);
        const QByteArray content = calibrationFile(reader);
        for (const int offset : {0, static_cast<int>(content.indexOf("6543"))}) {
            const TestFolder folder;
            const QByteArray path = folder.write("values.csv", content);
            QVERIFY(makeOld(path));
            const ReadHook hook(path, offset,
                                Change(way, path, QByteArray(content).replace(".25", ".75")));
            const CalRefRead read(reader, path.constData());
            QCOMPARE(read.result, accepted);
            QCOMPARE(read.bytes.toHex(),
                     (accepted ? completeRecord(reader) : expectedRecord(reader, {}, {})).toHex());
        }
    }
}

void TestDisturbedReads::settingsFail_data() {
    QTest::addColumn<int>("offset");
    const QByteArray file = sampleNetworkIni();
    QTest::newRow("first byte") << 0;
    QTest::newRow("in the header") << 3;
    for (const char* value :
         {"0\nIPA", "8.0.10\n", "255.0\n", "68.0.1\n", "ab 5\n", "word=1\n", "8.4.4\n", "1\n"})
        QTest::addRow("before \"%s\"", QByteArray(value).simplified().constData())
            << file.lastIndexOf(value);
    QTest::newRow("last byte") << file.size() - 1;
}

void TestDisturbedReads::settingsFail() {
    QFETCH(int, offset);
    const TestFolder folder;
    const QByteArray path = folder.write("net.ini", sampleNetworkIni());
    const ReadHook hook(path, offset, fails);
    auto info = patternedRecord<KVA_NETWORKINFO>();
    const QByteArray before = bytesOf(info);
    QVERIFY(!CFileIO().ReadNetworkIni(path.constData(), &info));
    QCOMPARE(bytesOf(info).toHex(), before.toHex());
}

void TestDisturbedReads::settingsChange_data() {
    Change::addRows();
}

/** Before the first key is read; the seven others are looked up afterwards. */
void TestDisturbedReads::settingsChange() {
    QFETCH(QByteArray, way);
    const QByteArray content = sampleNetworkIni() + "; 87.6543\n";
    const TestFolder folder;
    const QByteArray path = folder.write("net.ini", content);
    QVERIFY(makeOld(path));
    const ReadHook hook(path, 0, Change(way, path, QByteArray(content).replace("168", "199")));
    auto info = patternedRecord<KVA_NETWORKINFO>();
    std::memset(&info, 0, sizeof info);
    QCOMPARE(CFileIO().ReadNetworkIni(path.constData(), &info), way == "none");
    const NetworkBytes expected = way == "none" ? sampleNetwork() : NetworkBytes();
    QCOMPARE(bytesOf(info).toHex(), expected.bytes().toHex());
}

void TestDisturbedReads::lookupFails_data() {
    QTest::addColumn<int>("offset");
    QTest::addColumn<bool>("found");
    const QByteArray file("[Section]\nKey=abcdef\nLast=1\n");
    QTest::newRow("first byte") << 0 << false;
    QTest::newRow("in the header") << 5 << false;
    QTest::newRow("in the key") << file.indexOf("ey=") << false;
    QTest::newRow("before the value") << file.indexOf("abcdef") << false;
    QTest::newRow("in the value") << file.indexOf("def") << false;
    QTest::newRow("behind the value") << file.indexOf("\nLast") << false;
    QTest::newRow("behind its line") << file.indexOf("Last") << true;
}

void TestDisturbedReads::lookupFails() {
    QFETCH(int, offset);
    QFETCH(bool, found);
    const TestFolder folder;
    const QByteArray path = folder.write("file.ini", "[Section]\nKey=abcdef\nLast=1\n");
    const ReadHook hook(path, offset, fails);
    const QByteArray before(512, '\xA5');
    QByteArray out = before;
    const int length =
        CFileIO::ReadProfileString("Section", "Key", "default", out.data(), 0, path.constData());
    QCOMPARE(length, found ? 6 : 7);
    QCOMPARE(out, found ? overlaid(before, 0, QByteArray("abcdef\0", 7)) : before);
}

#ifdef Q_OS_LINUX
/** Counts as a regular file, and its first byte cannot be read: nothing is mapped there. */
void TestDisturbedReads::failsAtTheFirstByte() {
    for (const bool adapter : {false, true}) {
        const CalRefReader reader = calRefReader(adapter);
        const CalRefRead read(reader, "/proc/self/mem");
        QVERIFY(!read.result);
        QCOMPARE(read.bytes.toHex(), expectedRecord(reader, {}, {}).toHex());
    }
    char out[512] = "left";
    QCOMPARE(CFileIO::ReadProfileString("S", "K", "default", out, 0, "/proc/self/mem"), 7);
    QCOMPARE(QByteArray(out), QByteArray("left"));
}
#endif

QTEST_GUILESS_MAIN(TestDisturbedReads)

#include "tst_disturbed_reads.moc"
