#include "tests/unit/files/FileFixture.h"

#include <algorithm>

namespace {

QByteArray readContent(const QByteArray& content, const NetworkBytes& before = {}) {
    const TestFolder folder;
    folder.write("net.ini", content);
    return readNetwork("net.ini", before);
}

} // namespace

/** What is read from a network settings file: the tool's own, or one that a person, another program
    or an accident made. */
class TestNetworkIniRead : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void flags_data() {
        addRows(QVector<TextCase>{
            {"0", "0", "00000000"},
            {"1", "1", "01000000"},
            {"2 is not refused", "2", "02000000"},
            {"blanks around", " \t1 ", "01000000"},
            {"leading zeros", "01", "01000000"},
            {"text behind", "1 ; on", "01000000"},
            {"no digits", "on", "00000000"},
            {"minus one", "-1", "ffffffff"},
            {"33 bits", "4294967297", "01000000"},
            {"saturates", "99999999999999999999", "ffffffff"},
            {"saturates below", "-99999999999999999999", "00000000"},
            {"510 bytes", QByteArray(509, '0') + "7", "07000000"},
        });
    }
    void flags() { checkValue({"DHCPUse", "APConnectUse"}); }

    void addresses_data() {
        addRows(QVector<TextCase>{
            {"plain", "192.168.0.1", "c0a80001"},
            {"an empty piece", "192..168.0.1", "c0a80001"},
            {"leading dot", ".192.168.0.1", "c0a80001"},
            {"trailing dot", "192.168.0.1.", "c0a80001"},
            {"two pieces", "10.1", "0a010000"},
            {"one piece", "10", "0a000000"},
            {"no pieces", "...", "00000000"},
            {"five pieces", "1.2.3.4.5", "01020304"},
            {"five pieces, one of them empty", "1..2.3.4", "01020304"},
            {"256", "256.0.0.256", "00000000"},
            {"300", "300.1.1.1", "2c010101"},
            {"511 and 1000", "511.1000.0.0", "ffe80000"},
            {"negative", "-1.-2.-256.0", "fffe0000"},
            {"saturates", "99999999999999999999.-99999999999999999999.1.2", "ff000102"},
            {"leading zeros", "010.001.000.099", "0a010063"},
            {"blanks", " 1. 2 .\t3.4 ", "01020304"},
            {"no numbers", "a.b.c.d", "00000000"},
            {"text behind", "1a.2b.3c.4d", "01020304"},
            {"no dots", "host", "00000000"},
            {"other delimiter", "1,2,3,4", "01000000"},
            {"510 bytes", QByteArray(503, '0') + "1.2.3.4", "01020304"},
        });
    }
    void addresses() { checkValue({"IPAddress", "SubnetMask", "DefaultGateway", "DNS"}); }

    void texts_data() {
        addRows(QVector<TextCase>{
            {"one byte", "a", "a"},
            {"blanks around", "  a b\t", "a b"},
            {"carriage return", "a\r", "a"},
            {"blank before the carriage return", "abc \r", "abc "},
            {"signs", "=~a~=~", "=~a~=~"},
            {"brackets", "[a]", "[a]"},
            {"semicolon", ";a", ";a"},
            {"high bytes", "\xE6\x97\xA5\xFF", "\xE6\x97\xA5\xFF"},
            {"ends at a NUL byte", QByteArray("ab\0cd", 5), "ab"},
            {"32 bytes", QByteArray(32, 'x'), QByteArray(32, 'x')},
        });
    }
    void texts() { checkValue({"SSID", "EncryptKey"}); }

    void missingKey_data() {
        QVector<TextCase> rows;
        for (const NetworkField& field : networkFields) {
            const QByteArray key(field.key);
            const QByteArray assignment = '\n' + key + '=';
            rows += {
                {key + " is missing", iniWith(assignment, "\nX="), key},
                {key + " has no value", iniSetting(key, ""), key},
                {key + " has a blank value", iniSetting(key, " \t "), key},
                {key + " has a carriage return", iniSetting(key, "\r"), key},
                {key + " has a NUL byte", iniSetting(key, QByteArray(1, '\0')), key},
                {key + " has no sign", iniWith(assignment, '\n' + key + ' '), key},
            };
        }
        addRows(rows);
    }
    void missingKey() { checkRefused(); }

    void tooLong_data() {
        QVector<TextCase> rows;
        const auto add = [&rows](const QByteArray& key, const char* what,
                                 const QVector<int>& lengths) {
            for (const int length : lengths)
                rows.append({what + (" of " + QByteArray::number(length)) + " bytes",
                             iniSetting(key, QByteArray(length, 'x')), key});
        };
        add("SSID", "SSID", {33, 34, 64, 65, 511, 512, 513, 544, 577, 70000});
        add("EncryptKey", "key", {65, 66, 511, 512, 513, 576, 577, 70000});
        for (const char* number :
             {"DHCPUse", "IPAddress", "SubnetMask", "DefaultGateway", "DNS", "APConnectUse"})
            add(number, number, {511, 512, 513, 600, 70000});
        addRows(rows);
    }
    void tooLong() { checkRefused(); }

    void otherBytesStay() {
        QCOMPARE(readContent(sampleNetworkIni(), patternedNetwork()),
                 outcome(true, patternedNetwork().sample().bytes()));
    }

    void octetsWithoutAPieceStay() {
        const NetworkBytes before = patternedNetwork();
        const QByteArray octets = "\x0A\x01" + before.bytes().mid(10, 2);
        QCOMPARE(readContent(iniSetting("IPAddress", "10.1"), before),
                 outcome(true, NetworkBytes(before).sample().set("IPAddress", octets).bytes()));
    }

    void roundTrip_data() {
        const auto addresses = [](const char* hex) {
            return sampleNetwork()
                .setHex("IPAddress", hex)
                .setHex("SubnetMask", hex)
                .setHex("DefaultGateway", hex)
                .setHex("DNS", hex)
                .bytes();
        };
        addRows(QVector<TextCase>{
            {"sample", sampleNetwork().bytes()},
            {"both flags on", sampleNetwork().dhcpUse("01000000").bytes()},
            {"both flags off", sampleNetwork().setHex("APConnectUse", "00000000").bytes()},
            {"longest texts",
             sampleNetwork().ssid(QByteArray(32, 's')).encryptKey(QByteArray(64, 'k')).bytes()},
            {"all zero addresses", addresses("00000000")},
            {"highest addresses", addresses("ffffffff")},
            {"texts like lines", sampleNetwork().ssid("DNS=1").encryptKey("[Other]").bytes()},
            {"high bytes", sampleNetwork().ssid("\xE6\x97\xA5").bytes()},
            // An empty text is written, but not read.
            {"SSID", sampleNetwork().ssid(QByteArray(5, '\0')).bytes(), "SSID"},
            {"key", sampleNetwork().encryptKey(QByteArray(11, '\0')).bytes(), "EncryptKey"},
        });
    }
    void roundTrip() {
        const auto row = rowOf<TextCase>();
        KVA_NETWORKINFO written = {};
        std::memcpy(&written, row.given.constData(), sizeof(written));
        const TestFolder folder;
        QVERIFY(CFileIO().WriteNetworkIni("net.ini", &written));
        QCOMPARE(readNetwork("net.ini"),
                 row.expected.isEmpty()
                     ? outcome(true, row.given)
                     : outcome(false, sampleNetwork().clearFrom(row.expected).bytes()));
    }

    void accepted_data() {
        const QByteArray file = sampleNetworkIni();
        QByteArrayList lines = file.split('\n');
        lines.removeAll({});
        lines.removeFirst();
        std::reverse(lines.begin(), lines.end());
        addRows(QVector<TextCase>{
            {"as written", file},
            {"CR LF", iniWith("\n", "\r\n")},
            {"no final line feed", file.chopped(1)},
            {"no final line feed, carriage return", file.chopped(1) + '\r'},
            {"header in lower case", iniWith("[Network]", "[network]")},
            {"header in upper case", iniWith("[Network]", "[NETWORK]")},
            {"keys in lower case", file.toLower().replace("lab 5", "Lab 5")},
            {"keys in upper case",
             file.toUpper().replace("LAB 5", "Lab 5").replace("PASS WORD=1", "pass word=1")},
            {"blanks around the signs", QByteArray(file)
                                            .replace("DHCPUse=", "dhcpuse = ")
                                            .replace("SSID=", "\tSSID\t=\t")
                                            .replace("DNS=", "  DNS  =")},
            {"keys in another order", "[Network]\n" + lines.join('\n')},
            {"extra keys", iniWith("SSID=", "Extra=1\nSSID2=x\nNoSign\nSSID=")},
            {"empty lines", iniWith("\n", "\n\n")},
            {"no comments", QByteArray(file)
                                .replace("; 0:eDHCP_OFF, 1:eDHCP_ON\n", "")
                                .replace("; 0:eAPConnect_OFF, 1:eAPConnect_ON\n", "")},
            {"comments like keys",
             iniWith("[Network]\n", "[Network]\n;SSID=x\n; DHCPUse=1\n#DNS=1\n")},
            {"later section repeats them", file + "[Other]\nDHCPUse=1\nSSID=x\nDNS=1.1.1.1\n"},
            {"a key stands twice", file + "SSID=x\n"},
            {"earlier section", "[Other]\nDHCPUse=1\nSSID=x\n" + file},
            {"keys before the section", "DHCPUse=1\nSSID=x\n" + file},
            {"part of them in a later section", iniWith("SSID=", "[Wireless]\nSSID=")},
            {"byte order mark in its own line", "\xEF\xBB\xBF\n" + file},
            {"NUL bytes between", iniWith("SSID=", QByteArray("\0\0\nSSID=", 8))},
            {"a long line between", iniWith("SSID=", QByteArray(200000, ';') + "SSID=x\nSSID=")},
            {"an endless line behind", file + QByteArray(3 << 20, '=')},
        });
    }
    void accepted() {
        const auto row = rowOf<TextCase>();
        QCOMPARE(readContent(row.given), outcome(true, sampleNetwork().bytes()));
    }

    void refused_data() {
        const QByteArray file = sampleNetworkIni();
        addRows(QVector<TextCase>{
            {"empty", ""},
            {"line feeds", "\n\n\n"},
            {"NUL bytes", QByteArray(5000, '\0')},
            {"noise", QByteArray(5000, '\xFF')},
            {"only the header", "[Network]\n"},
            {"no header", iniWith("[Network]\n", "")},
            {"another header", iniWith("[Network]", "[Net]")},
            {"header with a trailing blank", iniWith("[Network]", "[Network] ")},
            {"header with a comment", iniWith("[Network]", "[Network];")},
            {"header behind the keys", file.mid(10) + "[Network]\n"},
            {"carriage returns alone", iniWith("\n", "\r")},
            {"byte order mark", "\xEF\xBB\xBF" + file},
            {"UTF-16, low byte first", "\xFF\xFE" + utf16(file, true)},
            {"UTF-16, high byte first", "\xFE\xFF" + utf16(file, false)},
            {"one line", iniWith("\n", " ")},
            {"one endless line", "[Network]" + QByteArray(3 << 20, 'x')},
        });
    }
    /** None of them has a first key, so the record stays as it was. */
    void refused() {
        const auto row = rowOf<TextCase>();
        QCOMPARE(readContent(row.given, patternedNetwork()),
                 outcome(false, patternedNetwork().bytes()));
    }

    void valueOfALaterSection() {
        QCOMPARE(readContent(iniWith("DNS=8.8.4.4\n", "") + "[Other]\nDNS=1.1.1.1\n"),
                 outcome(true, sampleNetwork().setHex("DNS", "01010101").bytes()));
    }

    void nullArguments() {
        const TestFolder folder;
        folder.write("net.ini", sampleNetworkIni());
        QVERIFY(!CFileIO().ReadNetworkIni("net.ini", nullptr));
        QCOMPARE(readNetwork(nullptr, patternedNetwork()),
                 outcome(false, patternedNetwork().bytes()));
    }

private:
    /** The row's value, given to each of the keys in turn, is read as these bytes: of a text, else
        in hexadecimal. */
    void checkValue(const QByteArrayList& keys) {
        const auto row = rowOf<TextCase>();
        for (const QByteArray& key : keys) {
            const bool isText = key == "SSID" || key == "EncryptKey";
            const QByteArray bytes = isText
                                         ? row.expected.leftJustified(key == "SSID" ? 33 : 65, '\0')
                                         : QByteArray::fromHex(row.expected);
            QCOMPARE(readContent(iniSetting(key, row.given)),
                     outcome(true, sampleNetwork().set(key, bytes).bytes()));
        }
    }

    /** The fields of the keys before the one that the row expects are filled, the others are not
        reached. */
    void checkRefused() {
        const auto row = rowOf<TextCase>();
        QCOMPARE(readContent(row.given),
                 outcome(false, sampleNetwork().clearFrom(row.expected).bytes()));
    }
};

TEST_CLASS(TestNetworkIniRead)

#include "tst_network_ini_read.moc"
