#include "tests/unit/files/NetworkFixture.h"

#include <QTest>

/** What is taken from the eight values of a network settings file. */
class TestNetworkIniRead : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sample();
    void flags_data();
    void flags();
    void addresses_data();
    void addresses();
    void texts_data();
    void texts();
    void missingKey_data();
    void missingKey();
    void tooLong_data();
    void tooLong();
    void otherBytesStay();
    void octetsWithoutAPieceStay();
    void roundTrip_data();
    void roundTrip();
    void emptyTextDoesNotRoundTrip_data();
    void emptyTextDoesNotRoundTrip();
};

namespace {

/** The line of the sample that sets @p key replaced by one that sets @p value. */
QByteArray iniWith(const QByteArray& key, const QByteArray& value) {
    QList<QByteArray> lines = sampleNetworkIni().split('\n');
    for (QByteArray& line : lines) {
        if (line.startsWith(key + '='))
            line = key + '=' + value;
    }
    return lines.join('\n');
}

/** The fields in the order in which they are read, with their places in the record. */
struct Field {
    const char* key;
    int offset;
    int size;
};
constexpr Field fields[] = {
    {"DHCPUse", 4, 4}, {"IPAddress", 8, 4},    {"SubnetMask", 12, 4}, {"DefaultGateway", 16, 4},
    {"SSID", 24, 33},  {"EncryptKey", 57, 65}, {"DNS", 20, 4},        {"APConnectUse", 0, 4}};

/** The sample with the fields from that key on zero, as a read that fails there leaves them. */
QByteArray readUpTo(const QByteArray& key) {
    QByteArray bytes = sampleNetwork().bytes();
    bool reached = false;
    for (const Field& field : fields) {
        reached = reached || field.key == key;
        if (reached)
            bytes = overlaid(bytes, field.offset, QByteArray(field.size, '\0'));
    }
    return bytes;
}

bool read(const QByteArray& content, KVA_NETWORKINFO& info) {
    const TestFolder folder;
    return CFileIO().ReadNetworkIni(folder.write("net.ini", content).constData(), &info);
}

} // namespace

void TestNetworkIniRead::sample() {
    KVA_NETWORKINFO info = {};
    QVERIFY(read(sampleNetworkIni(), info));
    QCOMPARE(bytesOf(info).toHex(), sampleNetwork().bytes().toHex());
    QCOMPARE(info.IPAddress[3], std::uint8_t{10});
    QCOMPARE(info.EncryptKey, "pass word=1");
}

void TestNetworkIniRead::flags_data() {
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("hex");
    const auto row = [](const char* name, const QByteArray& value, const char* hex) {
        QTest::newRow(name) << value << QByteArray(hex);
    };
    row("0", "0", "00000000");
    row("1", "1", "01000000");
    row("2 is not refused", "2", "02000000");
    row("blanks around", " \t1 ", "01000000");
    row("leading zeros", "01", "01000000");
    row("text behind", "1 ; on", "01000000");
    row("no digits", "on", "00000000");
    row("minus one", "-1", "ffffffff");
    row("33 bits", "4294967297", "01000000");
    row("saturates", "99999999999999999999", "ffffffff");
    row("saturates below", "-99999999999999999999", "00000000");
    row("510 bytes", QByteArray(509, '0') + "7", "07000000");
}

void TestNetworkIniRead::flags() {
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, hex);
    KVA_NETWORKINFO info = {};
    QVERIFY(read(iniWith("DHCPUse", value), info));
    QCOMPARE(bytesOf(info).toHex(), sampleNetwork().dhcpUse(hex.constData()).bytes().toHex());

    info = {};
    QVERIFY(read(iniWith("APConnectUse", value), info));
    QCOMPARE(bytesOf(info).toHex(), sampleNetwork().apConnectUse(hex.constData()).bytes().toHex());
}

void TestNetworkIniRead::addresses_data() {
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("hex");
    const auto row = [](const char* name, const QByteArray& value, const char* hex) {
        QTest::newRow(name) << value << QByteArray(hex);
    };
    row("plain", "192.168.0.1", "c0a80001");
    row("an empty piece", "192..168.0.1", "c0a80001");
    row("leading dot", ".192.168.0.1", "c0a80001");
    row("trailing dot", "192.168.0.1.", "c0a80001");
    row("two pieces", "10.1", "0a010000");
    row("one piece", "10", "0a000000");
    row("no pieces", "...", "00000000");
    row("five pieces", "1.2.3.4.5", "01020304");
    row("five pieces, one of them empty", "1..2.3.4", "01020304");
    row("256", "256.0.0.256", "00000000");
    row("300", "300.1.1.1", "2c010101");
    row("511 and 1000", "511.1000.0.0", "ffe80000");
    row("negative", "-1.-2.-256.0", "fffe0000");
    row("saturates", "99999999999999999999.-99999999999999999999.1.2", "ff000102");
    row("leading zeros", "010.001.000.099", "0a010063");
    row("blanks", " 1. 2 .\t3.4 ", "01020304");
    row("no numbers", "a.b.c.d", "00000000");
    row("text behind", "1a.2b.3c.4d", "01020304");
    row("no dots", "host", "00000000");
    row("other delimiter", "1,2,3,4", "01000000");
    row("510 bytes", QByteArray(503, '0') + "1.2.3.4", "01020304");
}

void TestNetworkIniRead::addresses() {
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, hex);
    const char* octets = hex.constData();
    const std::pair<QByteArray, NetworkBytes> cases[] = {
        {"IPAddress", sampleNetwork().ipAddress(octets)},
        {"SubnetMask", sampleNetwork().subnetMask(octets)},
        {"DefaultGateway", sampleNetwork().defaultGateway(octets)},
        {"DNS", sampleNetwork().dns(octets)}};
    for (const auto& [key, expected] : cases) {
        KVA_NETWORKINFO info = {};
        QVERIFY2(read(iniWith(key, value), info), key.constData());
        QCOMPARE(bytesOf(info).toHex(), expected.bytes().toHex());
    }
}

void TestNetworkIniRead::texts_data() {
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* name, const QByteArray& value, const QByteArray& text) {
        QTest::newRow(name) << value << text;
    };
    row("one byte", "a", "a");
    row("blanks around", "  a b\t", "a b");
    row("carriage return", "a\r", "a");
    row("blank before the carriage return", "abc \r", "abc ");
    row("signs", "=a=", "=a=");
    row("brackets", "[a]", "[a]");
    row("semicolon", ";a", ";a");
    row("high bytes", "\xE6\x97\xA5\xFF", "\xE6\x97\xA5\xFF");
    row("ends at a NUL byte", QByteArray("ab\0cd", 5), "ab");
    row("32 bytes", QByteArray(32, 'x'), QByteArray(32, 'x'));
}

void TestNetworkIniRead::texts() {
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, text);
    KVA_NETWORKINFO info = {};
    QVERIFY(read(iniWith("SSID", value), info));
    QCOMPARE(bytesOf(info).toHex(),
             sampleNetwork().ssid(QByteArray(33, '\0')).ssid(text).bytes().toHex());

    info = {};
    QVERIFY(read(iniWith("EncryptKey", value), info));
    QCOMPARE(bytesOf(info).toHex(),
             sampleNetwork().encryptKey(QByteArray(65, '\0')).encryptKey(text).bytes().toHex());
}

void TestNetworkIniRead::missingKey_data() {
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("content");
    for (const Field& field : fields) {
        const QByteArray key(field.key);
        const auto row = [&key](const char* name, const QByteArray& content) {
            QTest::addRow("%s %s", key.constData(), name) << key << content;
        };
        row("is missing", sampleNetworkIni().replace('\n' + key + '=', "\nX="));
        row("has no value", iniWith(key, ""));
        row("has a blank value", iniWith(key, " \t "));
        row("has a carriage return", iniWith(key, "\r"));
        row("has a NUL byte", iniWith(key, QByteArray("\0", 1)));
        row("has no sign", sampleNetworkIni().replace('\n' + key + '=', '\n' + key + ' '));
    }
}

/** The fields of the keys before it are filled, the others are not reached. */
void TestNetworkIniRead::missingKey() {
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, content);
    KVA_NETWORKINFO info = {};
    QVERIFY(!read(content, info));
    QCOMPARE(bytesOf(info).toHex(), readUpTo(key).toHex());
}

void TestNetworkIniRead::tooLong_data() {
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<int>("length");
    for (const int length : {33, 34, 64, 65, 511, 512, 513, 544, 577, 70000})
        QTest::addRow("SSID of %d bytes", length) << QByteArray("SSID") << length;
    for (const int length : {65, 66, 511, 512, 513, 576, 577, 70000})
        QTest::addRow("key of %d bytes", length) << QByteArray("EncryptKey") << length;
    for (const char* number :
         {"DHCPUse", "IPAddress", "SubnetMask", "DefaultGateway", "DNS", "APConnectUse"}) {
        for (const int length : {511, 512, 513, 600, 70000})
            QTest::addRow("%s of %d bytes", number, length) << QByteArray(number) << length;
    }
}

void TestNetworkIniRead::tooLong() {
    QFETCH(QByteArray, key);
    QFETCH(int, length);
    KVA_NETWORKINFO info = {};
    QVERIFY(!read(iniWith(key, QByteArray(length, 'x')), info));
    QCOMPARE(bytesOf(info).toHex(), readUpTo(key).toHex());
}

void TestNetworkIniRead::otherBytesStay() {
    auto info = patternedRecord<KVA_NETWORKINFO>();
    const QByteArray expected = NetworkBytes(info)
                                    .apConnectUse("01000000")
                                    .dhcpUse("00000000")
                                    .ipAddress("c0a8000a")
                                    .subnetMask("ffffff00")
                                    .defaultGateway("c0a80001")
                                    .dns("08080404")
                                    .ssid("Lab 5")
                                    .encryptKey("pass word=1")
                                    .bytes();
    QVERIFY(read(sampleNetworkIni(), info));
    QCOMPARE(bytesOf(info).toHex(), expected.toHex());
}

void TestNetworkIniRead::octetsWithoutAPieceStay() {
    auto info = patternedRecord<KVA_NETWORKINFO>();
    const QByteArray before = bytesOf(info);
    QVERIFY(read(iniWith("IPAddress", "10.1"), info));
    QCOMPARE(bytesOf(info).mid(8, 4).toHex(), "0a01" + before.mid(10, 2).toHex());
}

void TestNetworkIniRead::roundTrip_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("sample") << sampleNetwork().bytes();
    QTest::newRow("both flags on") << sampleNetwork().dhcpUse("01000000").bytes();
    QTest::newRow("both flags off") << sampleNetwork().apConnectUse("00000000").bytes();
    QTest::newRow("longest texts")
        << sampleNetwork().ssid(QByteArray(32, 's')).encryptKey(QByteArray(64, 'k')).bytes();
    QTest::newRow("all zero addresses") << sampleNetwork()
                                               .ipAddress("00000000")
                                               .subnetMask("00000000")
                                               .defaultGateway("00000000")
                                               .dns("00000000")
                                               .bytes();
    QTest::newRow("highest addresses") << sampleNetwork()
                                              .ipAddress("ffffffff")
                                              .subnetMask("ffffffff")
                                              .defaultGateway("ffffffff")
                                              .dns("ffffffff")
                                              .bytes();
    QTest::newRow("texts like lines")
        << sampleNetwork().ssid("DNS=1").encryptKey("[Other]").bytes();
    QTest::newRow("high bytes") << sampleNetwork().ssid("\xE6\x97\xA5").bytes();
}

void TestNetworkIniRead::roundTrip() {
    QFETCH(QByteArray, bytes);
    KVA_NETWORKINFO written = {};
    std::memcpy(&written, bytes.constData(), sizeof(written));
    const TestFolder folder;
    const QByteArray path = folder.path("net.ini");
    QVERIFY(CFileIO().WriteNetworkIni(path.constData(), &written));
    KVA_NETWORKINFO info = {};
    QVERIFY(CFileIO().ReadNetworkIni(path.constData(), &info));
    QCOMPARE(bytesOf(info).toHex(), bytes.toHex());
}

void TestNetworkIniRead::emptyTextDoesNotRoundTrip_data() {
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("SSID") << QByteArray("SSID");
    QTest::newRow("key") << QByteArray("EncryptKey");
}

void TestNetworkIniRead::emptyTextDoesNotRoundTrip() {
    QFETCH(QByteArray, key);
    KVA_NETWORKINFO written = sampleNetwork().record();
    (key == "SSID" ? written.SSID : written.EncryptKey)[0] = '\0';
    const TestFolder folder;
    const QByteArray path = folder.path("net.ini");
    QVERIFY(CFileIO().WriteNetworkIni(path.constData(), &written));
    QVERIFY(folder.read("net.ini").contains('\n' + key + "=\n"));
    KVA_NETWORKINFO info = {};
    QVERIFY(!CFileIO().ReadNetworkIni(path.constData(), &info));
    QCOMPARE(bytesOf(info).toHex(), readUpTo(key).toHex());
}

QTEST_GUILESS_MAIN(TestNetworkIniRead)

#include "tst_network_ini_read.moc"
