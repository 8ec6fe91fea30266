#include "tests/unit/files/FileFixture.h"

#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace {

/** A field of the sample with other bytes, and the value that is written of it. */
struct ContentRow {
    const char* name;
    QByteArray key;
    QByteArray bytes;
    QByteArray value;
};

struct FullRow {
    const char* name;
    int room;
    QByteArray there = {}; ///< already; null: nothing
};

/** Whether it was written, and the record left alone. */
bool write(const char* path, const NetworkBytes& network = sampleNetwork()) {
    const KVA_NETWORKINFO info = network.record();
    return CFileIO().WriteNetworkIni(path, &info) && bytesOf(info) == network.bytes();
}

#ifdef Q_OS_LINUX
/** How often the process has written to anything so far, as the system counts; -1 if it does not.
 */
int writesSoFar() {
    QFile file("/proc/self/io");
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArrayList lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("syscw: "))
            return line.mid(7).toInt();
    }
    return -1;
}
#endif

} // namespace

/** The network settings file as it is written, byte for byte. */
class TestNetworkIniWrite : public QObject {
    Q_OBJECT

private Q_SLOTS:
#ifdef Q_OS_LINUX
    void flushesEachLine() {
        const TestFolder folder;
        write("net.ini"); // a sanitizer, too, writes at its first look at a kind of object
        const int before = writesSoFar();
        QVERIFY(before >= 0);
        write("net.ini");
        QCOMPARE(writesSoFar() - before, 11);
    }
#endif

    void content_data() {
        const auto hex = [](const char* text) { return QByteArray::fromHex(text); };
        addRows(QVector<ContentRow>{
            {"eleven lines", "SSID", "Lab 5", "Lab 5"},
            {"DHCP on", "DHCPUse", hex("01000000"), "1"},
            {"DHCP all ones", "DHCPUse", hex("ffffffff"), "-1"},
            {"DHCP highest", "DHCPUse", hex("ffffff7f"), "2147483647"},
            {"DHCP lowest", "DHCPUse", hex("00000080"), "-2147483648"},
            {"wireless off", "APConnectUse", hex("00000000"), "0"},
            {"wireless all ones", "APConnectUse", hex("ffffffff"), "-1"},
            {"wireless minus 1000000", "APConnectUse", hex("c0bdf0ff"), "-1000000"},
            {"address zero", "IPAddress", hex("00000000"), "0.0.0.0"},
            {"address highest", "IPAddress", hex("ffffffff"), "255.255.255.255"},
            {"address order", "IPAddress", hex("01020304"), "1.2.3.4"},
            {"mask order", "SubnetMask", hex("80070605"), "128.7.6.5"},
            {"gateway order", "DefaultGateway", hex("0a0b0c0d"), "10.11.12.13"},
            {"DNS order", "DNS", hex("64630001"), "100.99.0.1"},
            {"no SSID", "SSID", QByteArray(5, '\0'), ""},
            {"no key", "EncryptKey", QByteArray(11, '\0'), ""},
            {"SSID of 32 bytes", "SSID", QByteArray(32, 's'), QByteArray(32, 's')},
            {"key of 64 bytes", "EncryptKey", QByteArray(64, 'k'), QByteArray(64, 'k')},
            {"SSID without its NUL", "SSID", QByteArray(33, 's'), QByteArray(33, 's')},
            {"key without its NUL", "EncryptKey", QByteArray(65, 'k'), QByteArray(65, 'k')},
            {"bytes behind the NUL", "SSID", QByteArray("ab\0cd", 5), "ab"},
            {"percent signs", "SSID", "%s%n!", "%s%n!"},
            {"high bytes", "SSID", "\xE6\x97\xA5\xFF\x01", "\xE6\x97\xA5\xFF\x01"},
        });
    }
    void content() {
        const auto row = rowOf<ContentRow>();
        const TestFolder folder;
        folder.write("older.ini", QByteArray(5000, 'x'));
        for (const char* name : {"net.ini", "older.ini"}) {
            QVERIFY(write(name, sampleNetwork().set(row.key, row.bytes)));
            QCOMPARE(folder.read(name), iniSetting(row.key, row.value));
        }
    }

    void mayBeReadByOthersAsTheUserWants() {
        const TestFolder folder;
        const mode_t before = ::umask(027);
        const bool result = write("net.ini");
        ::umask(before);
        QVERIFY(result);
        struct stat status = {};
        QVERIFY(::stat("net.ini", &status) == 0);
        QCOMPARE(status.st_mode & 0777U, mode_t{0640});
    }

    void saysNothing() {
        const TestFolder folder;
        QCOMPARE(saidDuring([] { write("net.ini"); }), QByteArray());
        QCOMPARE(saidDuring([] { write("."); }), QByteArray());
    }

    void cannotBeOpened_data() {
        addRows(QVector<TextCase>{
            {"a folder", "folder"},
            {"in a folder that is missing", "missing/net.ini"},
            {"behind a file", "older.ini/net.ini"},
            {"link to itself", "loop"},
            {"link to a device", "null"},
            {"link to a folder", "here"},
            {"pipe that nobody reads", "pipe"},
            {"empty path", ""},
            {"name too long", QByteArray(300, 'n')},
        });
    }
    void cannotBeOpened() {
        const auto row = rowOf<TextCase>();
        const TestFolder folder;
        QVERIFY(::mkdir("folder", 0700) == 0);
        QVERIFY(::symlink("loop", "loop") == 0);
        QVERIFY(::symlink("/dev/null", "null") == 0 && ::symlink(".", "here") == 0);
        QVERIFY(::mkfifo("pipe", 0600) == 0);
        folder.write("older.ini", "older");
        QVERIFY(!write(row.given));
        QCOMPARE(folder.read("older.ini"), QByteArray("older"));
        QCOMPARE(QDir().entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size(),
                 6);
    }

    /** It can be opened, and is let go without a byte. */
    void pipeThatIsRead() {
        const TestFolder folder;
        QVERIFY(::mkfifo("pipe", 0600) == 0);
        const int reader = ::open("pipe", O_RDONLY | O_NONBLOCK);
        QVERIFY(reader >= 0);
        QVERIFY(!write("pipe"));
        char byte = 0;
        QCOMPARE(::read(reader, &byte, 1), ssize_t{0});
        ::close(reader);
    }

    void writeProtected_data() {
        addNames({"file", "folder"});
    }
    void writeProtected() {
        const TestFolder folder;
        const bool isFile = QByteArray(QTest::currentDataTag()) == "file";
        if (isFile)
            folder.write("net.ini", "older");
        QVERIFY(!isFile || ::chmod("net.ini", 0400) == 0);
        QVERIFY(::chmod(".", isFile ? 0755 : 0555) == 0);
        std::optional<WithoutPrivileges> guard(std::in_place);
        const bool result = write("net.ini");
        guard.reset();
        QVERIFY(!result);
        QCOMPARE(folder.read("net.ini"), QByteArray(isFile ? "older" : ""));
        QCOMPARE(QFile::exists("net.ini"), isFile);
    }

    void followsALink() {
        const TestFolder folder;
        QVERIFY(QFile::link("net.ini", "link"));
        QVERIFY(write("link"));
        QCOMPARE(folder.read("net.ini"), sampleNetworkIni());
    }

    void full_data() {
        addRows(QVector<FullRow>{
            {"no room", 0},
            {"room for half a line", 5},
            {"room for some lines", 100},
            {"room for all but the last byte", int(sampleNetworkIni().size()) - 1},
            {"just enough", int(sampleNetworkIni().size())},
            {"no room for another", 0, "old settings"},
            {"some room for another", 100, QByteArray(1000, 'o')},
        });
    }
    /** The file opens, which decides: what does not fit is missing, and nobody is told. */
    void full() {
        const auto row = rowOf<FullRow>();
        const TestFolder folder;
        if (!row.there.isNull())
            folder.write("net.ini", row.there);
        std::optional<FileSizeLimit> limit(std::in_place, static_cast<rlim_t>(row.room));
        const bool result = write("net.ini");
        limit.reset();
        QVERIFY(result);
        QVERIFY(QFile::exists("net.ini"));
        QCOMPARE(folder.read("net.ini"), sampleNetworkIni().left(row.room));
    }

    void nullArguments() {
        const TestFolder folder;
        folder.write("net.ini", "older");
        const KVA_NETWORKINFO info = sampleNetwork().record();
        QVERIFY(!CFileIO().WriteNetworkIni(nullptr, &info));
        QVERIFY(!CFileIO().WriteNetworkIni("net.ini", nullptr));
        QCOMPARE(folder.read("net.ini"), QByteArray("older"));
    }
};

TEST_CLASS(TestNetworkIniWrite)

#include "tst_network_ini_write.moc"
