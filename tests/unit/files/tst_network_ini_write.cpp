#include "tests/support/DebugLog.h"
#include "tests/support/StandardOutput.h"
#include "tests/unit/files/NetworkFixture.h"
#include "tests/unit/files/UnopenableFile.h"

#include <QDir>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/** The network settings file as it is written, byte for byte. */
class TestNetworkIniWrite : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void elevenLines();
#ifdef Q_OS_LINUX
    void flushesEachLine();
#endif
    void content_data();
    void content();
    void replacesAnOlderFile();
    void mayBeReadByOthersAsTheUserWants();
    void leavesTheRecordAlone();
    void saysNothing();
    void cannotBeOpened_data();
    void cannotBeOpened();
    void pipeThatIsRead();
    void writeProtected();
    void followsALink();
    void failsToWriteLater();
    void nullArguments();
};

void TestNetworkIniWrite::elevenLines() {
    const TestFolder folder;
    const KVA_NETWORKINFO info = sampleNetwork().record();
    QVERIFY(CFileIO().WriteNetworkIni(folder.path("net.ini").constData(), &info));
    QCOMPARE(folder.read("net.ini"), sampleNetworkIni());
    QCOMPARE(folder.read("net.ini").count('\n'), 11);
}

#ifdef Q_OS_LINUX
namespace {

/** How often the process has written to anything so far, as the system counts; -1 if it does not.
 */
int writesSoFar() {
    QFile file(QStringLiteral("/proc/self/io"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArrayList lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("syscw: "))
            return line.mid(7).toInt();
    }
    return -1;
}

} // namespace

void TestNetworkIniWrite::flushesEachLine() {
    const TestFolder folder;
    const QByteArray path = folder.path("net.ini");
    const KVA_NETWORKINFO info = sampleNetwork().record();
    const int before = writesSoFar();
    QVERIFY(before >= 0);
    CFileIO().WriteNetworkIni(path.constData(), &info);
    QCOMPARE(writesSoFar() - before, 11);
}
#endif

void TestNetworkIniWrite::content_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    const auto row = [](const char* name, const NetworkBytes& network, const QByteArray& before,
                        const QByteArray& after) {
        QTest::newRow(name) << network.bytes() << before << after;
    };
    const NetworkBytes sample = sampleNetwork();
    const auto with = [&sample] { return NetworkBytes(sample); };
    row("DHCP on", with().dhcpUse("01000000"), "DHCPUse=0\n", "DHCPUse=1\n");
    row("DHCP all ones", with().dhcpUse("ffffffff"), "DHCPUse=0\n", "DHCPUse=-1\n");
    row("DHCP highest", with().dhcpUse("ffffff7f"), "DHCPUse=0\n", "DHCPUse=2147483647\n");
    row("DHCP lowest", with().dhcpUse("00000080"), "DHCPUse=0\n", "DHCPUse=-2147483648\n");
    row("wireless off", with().apConnectUse("00000000"), "APConnectUse=1\n", "APConnectUse=0\n");
    row("wireless all ones", with().apConnectUse("ffffffff"), "APConnectUse=1\n",
        "APConnectUse=-1\n");
    row("wireless minus 1000000", with().apConnectUse("c0bdf0ff"), "APConnectUse=1\n",
        "APConnectUse=-1000000\n");
    row("address zero", with().ipAddress("00000000"), "=192.168.0.10\n", "=0.0.0.0\n");
    row("address highest", with().ipAddress("ffffffff"), "=192.168.0.10\n", "=255.255.255.255\n");
    row("address order", with().ipAddress("01020304"), "=192.168.0.10\n", "=1.2.3.4\n");
    row("mask order", with().subnetMask("80070605"), "=255.255.255.0\n", "=128.7.6.5\n");
    row("gateway order", with().defaultGateway("0a0b0c0d"), "=192.168.0.1\n", "=10.11.12.13\n");
    row("DNS order", with().dns("64630001"), "DNS=8.8.4.4\n", "DNS=100.99.0.1\n");
    row("no SSID", with().ssid(QByteArray(5, '\0')), "SSID=Lab 5\n", "SSID=\n");
    row("no key", with().encryptKey(QByteArray(11, '\0')), "Key=pass word=1\n", "Key=\n");
    row("SSID of 32 bytes", with().ssid(QByteArray(32, 's')), "Lab 5", QByteArray(32, 's'));
    row("key of 64 bytes", with().encryptKey(QByteArray(64, 'k')), "pass word=1",
        QByteArray(64, 'k'));
    row("SSID without its NUL", with().ssid(QByteArray(33, 's')), "Lab 5", QByteArray(33, 's'));
    row("key without its NUL", with().encryptKey(QByteArray(65, 'k')), "pass word=1",
        QByteArray(65, 'k'));
    row("bytes behind the NUL", with().ssid(QByteArray("ab\0cd", 5)), "Lab 5", "ab");
    row("percent signs", with().ssid("%s%n!"), "Lab 5", "%s%n!");
    row("high bytes", with().ssid("\xE6\x97\xA5\xFF\x01"), "Lab 5", "\xE6\x97\xA5\xFF\x01");
}

void TestNetworkIniWrite::content() {
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QCOMPARE(sampleNetworkIni().count(before), 1);
    KVA_NETWORKINFO info = {};
    std::memcpy(&info, bytes.constData(), sizeof(info));
    const TestFolder folder;
    QVERIFY(CFileIO().WriteNetworkIni(folder.path("net.ini").constData(), &info));
    QCOMPARE(folder.read("net.ini"), sampleNetworkIni().replace(before, after));
}

void TestNetworkIniWrite::replacesAnOlderFile() {
    const TestFolder folder;
    const QByteArray path = folder.write("net.ini", QByteArray(5000, 'x'));
    const KVA_NETWORKINFO info = sampleNetwork().record();
    QVERIFY(CFileIO().WriteNetworkIni(path.constData(), &info));
    QCOMPARE(folder.read("net.ini"), sampleNetworkIni());
}

void TestNetworkIniWrite::mayBeReadByOthersAsTheUserWants() {
    const TestFolder folder;
    const QByteArray path = folder.path("net.ini");
    const KVA_NETWORKINFO info = sampleNetwork().record();
    const mode_t before = ::umask(027);
    const bool result = CFileIO().WriteNetworkIni(path.constData(), &info);
    ::umask(before);
    QVERIFY(result);
    struct stat status = {};
    QVERIFY(::stat(path.constData(), &status) == 0);
    QCOMPARE(status.st_mode & 0777U, mode_t{0640});
}

void TestNetworkIniWrite::leavesTheRecordAlone() {
    const TestFolder folder;
    const auto info = patternedRecord<KVA_NETWORKINFO>();
    const QByteArray before = bytesOf(info);
    QVERIFY(CFileIO().WriteNetworkIni(folder.path("net.ini").constData(), &info));
    QCOMPARE(bytesOf(info).toHex(), before.toHex());
}

void TestNetworkIniWrite::saysNothing() {
    const TestFolder folder;
    const KVA_NETWORKINFO info = sampleNetwork().record();
    const DebugLog log;
    QByteArray printed;
    {
        StandardOutput output;
        CFileIO().WriteNetworkIni(folder.path("net.ini").constData(), &info);
        CFileIO().WriteNetworkIni(folder.path("").constData(), &info);
        printed = output.take();
    }
    QCOMPARE(printed, QByteArray());
    QCOMPARE(log.lines() + log.others(), QStringList());
}

void TestNetworkIniWrite::cannotBeOpened_data() {
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("a folder") << QByteArray("folder");
    QTest::newRow("in a folder that is missing") << QByteArray("missing/net.ini");
    QTest::newRow("behind a file") << QByteArray("older.ini/net.ini");
    QTest::newRow("link to itself") << QByteArray("loop");
    QTest::newRow("link to a device") << QByteArray("null");
    QTest::newRow("pipe that nobody reads") << QByteArray("pipe");
    QTest::newRow("empty path") << QByteArray();
    QTest::newRow("name too long") << QByteArray(300, 'n');
}

void TestNetworkIniWrite::cannotBeOpened() {
    QFETCH(QByteArray, name);
    const TestFolder folder;
    QVERIFY(::mkdir(folder.path("folder").constData(), 0700) == 0);
    QVERIFY(::symlink("loop", folder.path("loop").constData()) == 0);
    QVERIFY(::symlink("/dev/null", folder.path("null").constData()) == 0);
    QVERIFY(::mkfifo(folder.path("pipe").constData(), 0600) == 0);
    QVERIFY(!folder.write("older.ini", "older").isEmpty());
    const KVA_NETWORKINFO info = sampleNetwork().record();
    const QByteArray path = name.isEmpty() ? name : folder.path(name.constData());
    QVERIFY(!CFileIO().WriteNetworkIni(path.constData(), &info));
    QCOMPARE(folder.read("older.ini"), QByteArray("older"));
    const QDir directory(QFile::decodeName(folder.path("")));
    QCOMPARE(directory.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size(), 5);
}

/** It can be opened, and is let go without a byte. */
void TestNetworkIniWrite::pipeThatIsRead() {
    const TestFolder folder;
    const QByteArray path = folder.path("pipe");
    QVERIFY(::mkfifo(path.constData(), 0600) == 0);
    const int reader = ::open(path.constData(), O_RDONLY | O_NONBLOCK);
    QVERIFY(reader >= 0);
    const KVA_NETWORKINFO info = sampleNetwork().record();
    QVERIFY(!CFileIO().WriteNetworkIni(path.constData(), &info));
    char byte = 0;
    QCOMPARE(::read(reader, &byte, 1), ssize_t{0});
    ::close(reader);
}

void TestNetworkIniWrite::writeProtected() {
    const TestFolder folder;
    const QByteArray path = folder.write("net.ini", "older");
    QVERIFY(::chmod(path.constData(), 0400) == 0);
    const KVA_NETWORKINFO info = sampleNetwork().record();
    bool result = true;
    {
        const WithoutPrivileges guard;
        QVERIFY(::geteuid() != 0);
        result = CFileIO().WriteNetworkIni(path.constData(), &info);
    }
    QVERIFY(!result);
    QCOMPARE(folder.read("net.ini"), QByteArray("older"));
}

void TestNetworkIniWrite::followsALink() {
    const TestFolder folder;
    QVERIFY(::symlink("net.ini", folder.path("link").constData()) == 0);
    const KVA_NETWORKINFO info = sampleNetwork().record();
    QVERIFY(CFileIO().WriteNetworkIni(folder.path("link").constData(), &info));
    QCOMPARE(folder.read("net.ini"), sampleNetworkIni());
}

/** The result is settled when the file is open. */
void TestNetworkIniWrite::failsToWriteLater() {
    const TestFolder folder;
    const QByteArray path = folder.path("net.ini");
    const KVA_NETWORKINFO info = sampleNetwork().record();
    bool result = false;
    {
        const NoSpaceForFiles noSpace;
        result = CFileIO().WriteNetworkIni(path.constData(), &info);
    }
    QVERIFY(result);
    QCOMPARE(folder.read("net.ini"), QByteArray(""));
}

void TestNetworkIniWrite::nullArguments() {
    const TestFolder folder;
    const QByteArray path = folder.write("net.ini", "older");
    const KVA_NETWORKINFO info = sampleNetwork().record();
    QVERIFY(!CFileIO().WriteNetworkIni(nullptr, &info));
    QVERIFY(!CFileIO().WriteNetworkIni(path.constData(), nullptr));
    QCOMPARE(folder.read("net.ini"), QByteArray("older"));
}

QTEST_GUILESS_MAIN(TestNetworkIniWrite)

#include "tst_network_ini_write.moc"
