#include "tests/unit/files/FileFixture.h"
#include "tests/unit/instrument/ControllerFixture.h"

#include <optional>

namespace {

using TestBench::checkLines;

const QByteArray settings = iniSetting("DHCPUse", "1")
                                .replace("192.168.0.10", "10.0.100.255")
                                .replace("255.255.255.0", "255.255.0.0")
                                .replace("192.168.0.1\n", "10.0.0.1\n")
                                .replace("Lab 5", "hall 2")
                                .replace("pass word=1", "secret")
                                .replace("8.8.4.4", "1.2.3.4")
                                .replace("APConnectUse=1", "APConnectUse=0");

QByteArray settingsWith(const QByteArray& before, const QByteArray& after) {
    return QByteArray(settings).replace(before, after);
}

const QString failedToRead = "Failed to read networkInfo parameter data. \n";

/** A file that is refused. */
struct RefusedRow {
    const char* name;
    QByteArray content;                 ///< null: there is no file
    QStringList lines = {failedToRead}; ///< logged
    /** What the record keeps when only the flags are wrong. */
    quint32 apConnectUse = 0;
    quint32 dhcpUse = 0;
};

const RefusedRow refusedFiles[] = {
    {"no file", {}},
    {"empty file", ""},
    {"no section", settingsWith("[Network]\n", "")},
    {"last key missing", settingsWith("APConnectUse=0\n", "")},
    {"empty SSID", settingsWith("SSID=hall 2\n", "SSID=\n")},
    {"empty key", settingsWith("EncryptKey=secret\n", "EncryptKey=\n")},
    {"SSID of 33 bytes", settingsWith("hall 2", QByteArray(33, 's'))},
    {"key of 65 bytes", settingsWith("secret", QByteArray(65, 'k'))},
    {"APConnectUse 2", settingsWith("APConnectUse=0", "APConnectUse=2"), {}, 2, 1},
    {"APConnectUse -1", settingsWith("APConnectUse=0", "APConnectUse=-1"), {}, 4294967295, 1},
    {"APConnectUse 256", settingsWith("APConnectUse=0", "APConnectUse=256"), {}, 256, 1},
    {"DHCPUse 2", settingsWith("DHCPUse=1", "DHCPUse=2"), {}, 0, 2},
    {"DHCPUse -1", settingsWith("DHCPUse=1", "DHCPUse=-1"), {}, 0, 4294967295},
};

QStringList zeros(int count) {
    return QVector<QString>(count, "0.000000").toList();
}

/** A value file and what comes of a check. */
struct FileRow {
    QByteArray name;
    Accessory accessory;
    QByteArray content; ///< null: there is no file
    QString text;       ///< of the serial number, afterwards
    QStringList lines;  ///< empty: the file cannot be read
    QByteArray output;  ///< on the standard output
    bool isValid;       ///< what the check returns
};

const QString textBefore = "77777777";

FileRow serialRow(const Accessory& accessory, const QByteArray& serialLine, int value,
                  const QString& text, const QByteArray& output = {}) {
    return {QByteArray(accessory.name) + ", \"" + serialLine + '"',
            accessory,
            TestBench::valueFile(serialLine, accessory.valueCount),
            text,
            checkLines(value, TestBench::valueTexts(accessory.valueCount)),
            output,
            !text.isEmpty()};
}

QVector<FileRow> serialRows() {
    return {
        serialRow(whitePlate, "12345678", 12345678, "12345678"),
        serialRow(whitePlate, "10000001", 10000001, "10000001"),
        serialRow(whitePlate, "99999999", 99999999, "99999999"),
        serialRow(whitePlate, "10000000", 10000000, ""),
        serialRow(whitePlate, "09999999", 9999999, ""),
        serialRow(whitePlate, "00000000", 0, ""),
        serialRow(whitePlate, "", 0, ""),
        serialRow(whitePlate, "5", 5, ""),
        serialRow(whitePlate, "123", 123, ""),
        serialRow(whitePlate, "1234567", 1234567, ""),
        // Digits that are not decimal count as their value, pairs that are no byte as 0xFF.
        serialRow(whitePlate, "ABCDEFGH", 112345665, "112345665"),
        serialRow(adapter, "00010000", 10000, ""),
        serialRow(adapter, "00010001", 10001, "00010001"),
        serialRow(adapter, "00012345", 12345, "00012345"),
        serialRow(adapter, "00099999", 99999, "00099999"),
        serialRow(adapter, "00100000", 100000, ""),
        serialRow(adapter, "00000000", 0, ""),
        serialRow(adapter, "12345678", 12345678, ""),
        // Another length than eight is said, leaves the number zero, and is then refused.
        serialRow(adapter, "10001", 0, "", "incorrect data. 10001\n"),
        serialRow(adapter, "000010001", 0, "", "incorrect data. 000010001\n"),
        serialRow(adapter, "", 0, "", "incorrect data. \n"),
    };
}

QVector<FileRow> unreadableRows() {
    const auto file = TestBench::valueFile;
    const auto row = [](const char* name, const Accessory& accessory, const QByteArray& content,
                        const QByteArray& output = {}) {
        return FileRow{name, accessory, content, textBefore, {}, output, false};
    };
    return {
        row("white, 37 values", whitePlate, file("12345678", 37)),
        row("white, 39 values", whitePlate, file("12345678", 39)),
        row("white, adapter's file", whitePlate, file("00012345", 75)),
        row("white, nine digits", whitePlate, file("123456789", 38), "incorrect data. 123456789\n"),
        row("adapter, 74 values", adapter, file("00012345", 74)),
        row("adapter, 76 values", adapter, file("00012345", 76)),
        row("adapter, plate's file", adapter, file("12345678", 38)),
        row("white, no file", whitePlate, {}),
        row("adapter, no file", adapter, {}),
    };
}

/** Fewer lines than four are no error: the values are zero, and without a third line so is the
    serial number. */
QVector<FileRow> shortRows() {
    const QByteArray headings = "heading\nheading\n";
    QVector<FileRow> rows;
    for (const Accessory& a : accessories) {
        const QByteArray name = a.name;
        const QByteArray number = a.valueCount == 38 ? "12345678" : "00012345";
        const QStringList all = checkLines(number.toInt(), zeros(a.valueCount));
        rows.append({name, a, headings + number + '\n', number, all, {}, true});
        rows.append({name + ", no line end", a, headings + number, number, all, {}, true});
        const QStringList lines = checkLines(0, zeros(a.valueCount));
        rows.append({name + ", empty", a, "", "", lines, {}, false});
        rows.append({name + ", one line", a, "heading\n", "", lines, {}, false});
        rows.append({name + ", two lines", a, headings, "", lines, {}, false});
    }
    return rows;
}

/** Each value to six places. The sixth is the nearest one of single precision. */
FileRow notationsRow() {
    const QByteArray values = "-1.5, 2.5,1e3,abc,0.0000004,85.1234567";
    return {"white, notations of values",
            whitePlate,
            "a\nb\n12345678\n" + values + QByteArray(",0").repeated(32) + '\n',
            "12345678",
            checkLines(12345678, QStringList({"-1.500000", "2.500000", "1000.000000", "0.000000",
                                              "0.000000", "85.123459"}) +
                                     zeros(32)),
            {},
            true};
}

struct SerialNumbersRow {
    const char* name; ///< white plate and adapter, the bytes in hexadecimal
    QString white;
    QString adapter;
};

const SerialNumbersRow heldNumbers[] = {
    {"12345678, 00012345", "12345678", "00012345"},
    {"00000000, 00000000", "00000000", "00000000"},
    {"00000007, 99999999", "00000007", "99999999"},
    {"10203040, 01020304", "10203040", "01020304"},
    // Not checked, and not decimal either.
    {"ffffffff, 0000000a", "166666665", "00000010"},
    {"000000a0, 0a000000", "00000100", "10000000"},
};

} // namespace

/** The files of network settings and of calibration values. */
class TestControllerFiles : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { TestBench::load(); }

    void readsFile() {
        const QByteArray path = localFile(m_folder, settings);
        LoggedController controller;
        QVERIFY(controller.ReadNetworkInfoFile(path));
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo),
                 QByteArray::fromHex("00000000010000000a0064ffffff00000a00000101020304") +
                     QByteArray("hall 2").leftJustified(33, '\0') +
                     QByteArray("secret").leftJustified(67, '\0'));
        QVERIFY(!controller.m_apConnectUse);
        QVERIFY(controller.m_dhcpUse);
        QCOMPARE(controller.m_ssid, "hall 2");
        QCOMPARE(controller.m_encryptKey, "secret");
        QCOMPARE(addresses(controller),
                 QStringList({"10|0|100|255", "255|255|0|0", "10|0|0|1", "1|2|3|4"}));
        QCOMPARE(controller.left(), QStringList("4"));
    }

    void refusesFile_data() { addRows(refusedFiles); }
    void refusesFile() {
        const auto row = rowOf<RefusedRow>();
        const QByteArray path = localFile(m_folder, row.content);
        LoggedController controller;
        QVERIFY(!controller.ReadNetworkInfoFile(path));
        QVERIFY(hasNoNetwork(controller));
        if (row.lines.isEmpty()) {
            QCOMPARE(controller.m_networkInfo.APConnectUse, row.apConnectUse);
            QCOMPARE(controller.m_networkInfo.DHCPUse, row.dhcpUse);
            QCOMPARE(controller.m_networkInfo.SSID, "hall 2");
        }
        if (row.content.isNull())
            QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
        QCOMPARE(controller.left(), QStringList("4") + row.lines);
    }

    void failedReadReplacesTheInstrumentsSettings() {
        TestBench::set(R"({"network": {"active": {"DHCPUse": 1}}})");
        ConnectedController controller;
        QVERIFY(controller.GetNetworkInfo());
        QVERIFY(controller.m_apConnectUse && controller.m_dhcpUse);
        QVERIFY(!controller.ReadNetworkInfoFile(localFile(m_folder, {})));
        QVERIFY(hasNoNetwork(controller));
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
    }

    void writesFile() {
        ConnectedController controller;
        QVERIFY(controller.GetNetworkInfo());
        const QByteArray record = TestBench::bytesOf(controller.m_networkInfo);
        controller.forget();
        QVERIFY(controller.WriteNetworkInfoFile(m_folder.localPath("out.ini")));
        QCOMPARE(m_folder.read("out.ini"), benchNetworkIni());
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), record);
        QCOMPARE(controller.left(), QStringList("4"));
    }

    void failsToWriteFile() {
        LoggedController controller;
        controller.SetSSID("kept");
        QVERIFY(!controller.WriteNetworkInfoFile(m_folder.localPath("none/out.ini")));
        QCOMPARE(controller.m_networkInfo.SSID, "kept");
        QCOMPARE(controller.left(), QStringList({"4", "Failed to write network setting file. \n"}));
    }

    void readsWhatItWrote() {
        CKvaSdk_Ctrl controller;
        const uint8_t octets[] = {0, 9, 99, 255};
        controller.m_networkInfo.APConnectUse = 1;
        controller.m_networkInfo.DHCPUse = 1;
        controller.SetIPAddress(octets);
        controller.SetDNS(octets);
        controller.SetSSID(QByteArray(32, 's'));
        controller.SetEncryptKey(QByteArray(64, 'k'));
        const QByteArray record = TestBench::bytesOf(controller.m_networkInfo);
        QVERIFY(controller.WriteNetworkInfoFile(m_folder.localPath("out.ini")));
        CKvaSdk_Ctrl other;
        QVERIFY(other.ReadNetworkInfoFile(m_folder.localPath("out.ini")));
        QCOMPARE(TestBench::bytesOf(other.m_networkInfo), record);
        QCOMPARE(other.m_ssid, QString(32, 's'));
        QCOMPARE(other.m_encryptKey, QString(64, 'k'));
    }

    void startsWithoutSerialNumbers() {
        const CKvaSdk_Ctrl controller;
        QCOMPARE(serialNumbers(controller), QStringList({"", "", "", ""}));
    }

    void readsTheInstrumentsSerialNumbers_data() { addRows(heldNumbers); }
    void readsTheInstrumentsSerialNumbers() {
        const auto row = rowOf<SerialNumbersRow>();
        const QByteArray name = row.name;
        ConnectedController controller;
        TestBench::set(R"({"calibration": {"committed": {"white": {"serialNumber": {"hex": ")" +
                       name.left(8) + R"("}}, "ambientAdapter": {"serialNumber": {"hex": ")" +
                       name.right(8) + R"("}}}}})");
        QVERIFY(controller.GetCalRefSerialNo());
        QCOMPARE(serialNumbers(controller), QStringList({row.white, row.adapter, "", ""}));
        QCOMPARE(controller.left(), QStringList({"0", "KVA_JIG_GetFactoryCalib_CALREFDATA {} 0"}));
    }

    void failedReadEmptiesTheInstrumentsSerialNumbers() {
        ConnectedController controller;
        QVERIFY(controller.GetCalRefSerialNo());
        QCOMPARE(controller.m_curWCPSerialNo, "12345678");
        TestBench::answer("KVA_JIG_GetFactoryCalib_CALREFDATA", -9985);
        controller.forget();
        QVERIFY(!controller.GetCalRefSerialNo());
        QCOMPARE(serialNumbers(controller), QStringList({"", "", "", ""}));
        QCOMPARE(controller.left(),
                 QStringList({"-9985", "KVA_JIG_GetFactoryCalib_CALREFDATA {} -9985"}));
    }

    void checksFile_data() {
        addRows(serialRows() + unreadableRows() + shortRows() + QVector<FileRow>{notationsRow()});
    }

    void checksFile() {
        const auto row = rowOf<FileRow>();
        const QByteArray path = localFile(m_folder, row.content);
        LoggedController controller;
        controller.m_fileWCPSerialNo = controller.m_fileAmbAdpSerialNo = textBefore;
        std::optional<StandardOutput> output(std::in_place); // the test's own messages go there too
        const bool isValid = (controller.*row.accessory.read)(path);
        const QByteArray printed = output->take();
        output.reset();
        QCOMPARE(printed, row.output);
        QCOMPARE(isValid, row.isValid);
        QCOMPARE(controller.*row.accessory.fileSerialNo, row.text);
        const Accessory& other = row.accessory.valueCount == 38 ? adapter : whitePlate;
        QCOMPARE(controller.*other.fileSerialNo, textBefore);
        QCOMPARE(controller.left(), QStringList("4") + row.lines);
    }

private:
    TestFolder m_folder;
};

TEST_CLASS(TestControllerFiles)
#include "tst_controller_files.moc"
