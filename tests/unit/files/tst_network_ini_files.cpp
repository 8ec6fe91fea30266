#include "tests/support/DebugLog.h"
#include "tests/support/StandardOutput.h"
#include "tests/unit/files/NetworkFixture.h"
#include "tests/unit/files/UnopenableFile.h"

#include <algorithm>

/** Network settings files that a person, another program or an accident made. */
class TestNetworkIniFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void accepted_data();
    void accepted();
    void refused_data();
    void refused();
    void valueOfALaterSection();
    void agreesWithTheLookup();
    void saysNothing();
    void cannotBeOpened_data();
    void cannotBeOpened();
    void nullArguments();
};

void TestNetworkIniFiles::accepted_data() {
    QTest::addColumn<QByteArray>("content");
    const QByteArray file = sampleNetworkIni();
    const auto with = [&file](const char* before, const QByteArray& after) {
        return QByteArray(file).replace(before, after);
    };
    QByteArrayList lines = file.split('\n');
    lines.removeAll({});
    lines.removeFirst();
    std::reverse(lines.begin(), lines.end());
    const QByteArray reversed = lines.join('\n');
    const auto row = [](const char* name, const QByteArray& content) {
        QTest::newRow(name) << content;
    };
    row("as written", file);
    row("CR LF", with("\n", "\r\n"));
    row("no final line feed", file.chopped(1));
    row("no final line feed, carriage return", file.chopped(1) + '\r');
    row("header in lower case", with("[Network]", "[network]"));
    row("header in upper case", with("[Network]", "[NETWORK]"));
    row("keys in lower case", file.toLower().replace("lab 5", "Lab 5"));
    row("keys in upper case",
        file.toUpper().replace("LAB 5", "Lab 5").replace("PASS WORD=1", "pass word=1"));
    row("blanks around the signs", QByteArray(file)
                                       .replace("DHCPUse=", "dhcpuse = ")
                                       .replace("SSID=", "\tSSID\t=\t")
                                       .replace("DNS=", "  DNS  ="));
    row("keys in another order", "[Network]\n" + reversed);
    row("extra keys", with("SSID=", "Extra=1\nSSID2=x\nNoSign\nSSID="));
    row("empty lines", with("\n", "\n\n"));
    row("no comments", QByteArray(file)
                           .replace("; 0:eDHCP_OFF, 1:eDHCP_ON\n", "")
                           .replace("; 0:eAPConnect_OFF, 1:eAPConnect_ON\n", ""));
    row("comments like keys", with("[Network]\n", "[Network]\n;SSID=x\n; DHCPUse=1\n#DNS=1\n"));
    row("later section repeats them", file + "[Other]\nDHCPUse=1\nSSID=x\nDNS=1.1.1.1\n");
    row("a key stands twice", file + "SSID=x\n");
    row("earlier section", "[Other]\nDHCPUse=1\nSSID=x\n" + file);
    row("keys before the section", "DHCPUse=1\nSSID=x\n" + file);
    row("part of them in a later section", with("SSID=", "[Wireless]\nSSID="));
    row("byte order mark in its own line", "\xEF\xBB\xBF\n" + file);
    row("NUL bytes between", with("SSID=", QByteArray("\0\0\nSSID=", 8)));
    row("a long line between", with("SSID=", QByteArray(200000, ';') + "SSID=x\nSSID="));
    row("an endless line behind", file + QByteArray(3 << 20, '='));
}

void TestNetworkIniFiles::accepted() {
    QFETCH(QByteArray, content);
    const TestFolder folder;
    const QByteArray path = folder.write("net.ini", content);
    KVA_NETWORKINFO info = {};
    QVERIFY(CFileIO().ReadNetworkIni(path.constData(), &info));
    QCOMPARE(bytesOf(info).toHex(), sampleNetwork().bytes().toHex());
}

void TestNetworkIniFiles::refused_data() {
    QTest::addColumn<QByteArray>("content");
    const QByteArray file = sampleNetworkIni();
    const auto with = [&file](const char* before, const QByteArray& after) {
        return QByteArray(file).replace(before, after);
    };
    QByteArray utf16Low("\xFF\xFE");
    QByteArray utf16High("\xFE\xFF");
    for (const char c : file) {
        utf16Low.append(c).append('\0');
        utf16High.append('\0').append(c);
    }
    const auto row = [](const char* name, const QByteArray& content) {
        QTest::newRow(name) << content;
    };
    row("empty", "");
    row("line feeds", "\n\n\n");
    row("NUL bytes", QByteArray(5000, '\0'));
    row("noise", QByteArray(5000, '\xFF'));
    row("only the header", "[Network]\n");
    row("no header", with("[Network]\n", ""));
    row("another header", with("[Network]", "[Net]"));
    row("header with a trailing blank", with("[Network]", "[Network] "));
    row("header with a comment", with("[Network]", "[Network];"));
    row("header behind the keys", file.mid(10) + "[Network]\n");
    row("carriage returns alone", with("\n", "\r"));
    row("byte order mark", "\xEF\xBB\xBF" + file);
    row("UTF-16, low byte first", utf16Low);
    row("UTF-16, high byte first", utf16High);
    row("one line", with("\n", " "));
    row("one endless line", "[Network]" + QByteArray(3 << 20, 'x'));
}

/** None of them has a first key, so the record stays as it was. */
void TestNetworkIniFiles::refused() {
    QFETCH(QByteArray, content);
    const TestFolder folder;
    const QByteArray path = folder.write("net.ini", content);
    auto info = patternedRecord<KVA_NETWORKINFO>();
    const QByteArray before = bytesOf(info);
    QVERIFY(!CFileIO().ReadNetworkIni(path.constData(), &info));
    QCOMPARE(bytesOf(info).toHex(), before.toHex());
}

void TestNetworkIniFiles::valueOfALaterSection() {
    const TestFolder folder;
    const QByteArray content =
        sampleNetworkIni().replace("DNS=8.8.4.4\n", "") + "[Other]\nDNS=1.1.1.1\n";
    const QByteArray path = folder.write("net.ini", content);
    KVA_NETWORKINFO info = {};
    QVERIFY(CFileIO().ReadNetworkIni(path.constData(), &info));
    QCOMPARE(bytesOf(info).toHex(), sampleNetwork().dns("01010101").bytes().toHex());
}

void TestNetworkIniFiles::agreesWithTheLookup() {
    const TestFolder folder;
    const QByteArray path = folder.write("net.ini", sampleNetworkIni());
    KVA_NETWORKINFO info = {};
    QVERIFY(CFileIO().ReadNetworkIni(path.constData(), &info));
    char value[CFileIO::profileValueSize] = {};
    QCOMPARE(CFileIO::ReadProfileString("Network", "EncryptKey", "", value, 0, path.constData()),
             11);
    QCOMPARE(QByteArray(info.EncryptKey), QByteArray(value));
    QCOMPARE(CFileIO::ReadProfileString("Network", "SSID", "", value, 0, path.constData()), 5);
    QCOMPARE(QByteArray(info.SSID), QByteArray(value));
}

void TestNetworkIniFiles::saysNothing() {
    const TestFolder folder;
    const QByteArray path = folder.write("net.ini", sampleNetworkIni());
    KVA_NETWORKINFO info = {};
    const DebugLog log;
    QByteArray printed;
    {
        StandardOutput output;
        CFileIO().ReadNetworkIni(path.constData(), &info);
        CFileIO().ReadNetworkIni(folder.path("missing").constData(), &info);
        CFileIO().ReadNetworkIni(folder.path("").constData(), &info);
        printed = output.take();
    }
    QCOMPARE(printed, QByteArray());
    QCOMPARE(log.lines() + log.others(), QStringList());
}

void TestNetworkIniFiles::cannotBeOpened_data() {
    UnopenableFile::addRows();
}

void TestNetworkIniFiles::cannotBeOpened() {
    QFETCH(QByteArray, kind);
    const UnopenableFile file(kind, sampleNetworkIni());
    QVERIFY(file.isMade());
    auto info = patternedRecord<KVA_NETWORKINFO>();
    const QByteArray before = bytesOf(info);
    QVERIFY(!CFileIO().ReadNetworkIni(file.path(), &info));
    QCOMPARE(bytesOf(info).toHex(), before.toHex());
}

void TestNetworkIniFiles::nullArguments() {
    const TestFolder folder;
    const QByteArray path = folder.write("net.ini", sampleNetworkIni());
    QVERIFY(!CFileIO().ReadNetworkIni(path.constData(), nullptr));
    auto info = patternedRecord<KVA_NETWORKINFO>();
    const QByteArray before = bytesOf(info);
    QVERIFY(!CFileIO().ReadNetworkIni(nullptr, &info));
    QCOMPARE(bytesOf(info).toHex(), before.toHex());
}

QTEST_GUILESS_MAIN(TestNetworkIniFiles)

#include "tst_network_ini_files.moc"
