// What the command checks before anything is connected: what it refuses, with each fault in its
// place, and that the tool's readers take what it accepts to the same bytes.
#include "command/InputFile.h"
#include "command/SettingsFile.h"
#include "command/ValueFile.h"
#include "files/CFileIO.h"
#include "tests/support/StandardOutput.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestMain.h"

#include <QFile>

#include <cstring>
#include <sys/stat.h>

namespace {

/** A folder whose paths are in the local 8-bit encoding, as the readers take them. */
class LocalFolder : public TestFolder {
public:
    QByteArray path(const QString& name) const { return localPath(name); }
    QByteArray write(const QString& name, const QByteArray& content) const {
        return QFile::encodeName(TestFolder::write(name, content));
    }
};

const CalibrationAccessory& plate = CalibrationAccessory::whitePlate;
const CalibrationAccessory& adapter = CalibrationAccessory::ambientAdapter;

QByteArray valueLine(const QByteArray& first, int count) {
    return first + QByteArray(",0.25").repeated(count - 1);
}

QByteArray valueFile(const QByteArray& serialNo, const QByteArray& values) {
    return "heading\nheading\n" + serialNo + '\n' + values + '\n';
}

QByteArray plateFile(const QByteArray& first) {
    return valueFile("12345678", valueLine(first, 38));
}

QByteArray settings(const QByteArray& from = {}, const QByteArray& to = {}) {
    QByteArray content = "[Network]\n"
                         "DHCPUse=0\n"
                         "IPAddress=192.168.10.25\n"
                         "SubnetMask=255.255.255.0\n"
                         "DefaultGateway=192.168.10.1\n"
                         "SSID=Lab\n"
                         "EncryptKey=correct-horse\n"
                         "DNS=192.168.10.1\n"
                         "APConnectUse=1\n";
    return from.isEmpty() ? content : content.replace(from, to);
}

/** "LINE:COLUMN: text" of each. */
QByteArrayList shown(const Faults& faults) {
    QByteArrayList result;
    for (const Fault& fault : faults)
        result += fault.toString().mid(fault.file.size() + 1).toUtf8();
    return result;
}

template <class Record>
Record patterned() {
    Record record;
    std::memset(&record, 0xA5, sizeof record);
    return record;
}

template <class Record>
QByteArray bytes(const Record& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

const char serialNoFault[] =
    "The serial number has to be eight digits, from 10000001 to 99999999, not \"%1\"";
const char adapterFault[] =
    "The serial number has to be eight digits, from 00010001 to 00099999, not \"%1\"";

} // namespace

class TestCommandFiles : public QObject {
    Q_OBJECT

private:
    LocalFolder m_folder;

private Q_SLOTS:
    void valueFiles_data();
    void valueFiles();
    void likelyAccessory_data();
    void likelyAccessory();
    void settingsFiles_data();
    void settingsFiles();
    void inputFiles_data();
    void inputFiles();
    void inputFileIsReadOnce();
    void texts_data();
    void texts();
};

void TestCommandFiles::valueFiles_data() {
    QTest::addColumn<bool>("isPlate");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArrayList>("faults");
    const auto row = [](const char* name, const QByteArray& content, const QByteArrayList& faults) {
        QTest::newRow(name) << true << content << faults;
    };
    const auto adapterRow = [](const char* name, const QByteArray& serialNo,
                               const QByteArrayList& faults) {
        QTest::newRow(name) << false << valueFile(serialNo, valueLine("0.5", 75)) << faults;
    };
    const QByteArray right = plateFile("92.465");
    row("right", right, {});
    row("CR LF", QByteArray(right).replace("\n", "\r\n"), {});
    row("more lines", right + "anything, \"quoted\"\ncut off", {});
    row("a byte-order mark in the heading", "\xEF\xBB\xBF" + right, {});
    row("lowest serial number", valueFile("10000001", valueLine("1", 38)), {});
    row("highest serial number", valueFile("99999999", valueLine("1", 38)), {});
    adapterRow("adapter", "00054321", {});
    adapterRow("lowest of an adapter", "00010001", {});
    adapterRow("highest of an adapter", "00099999", {});

    for (const char* number : {"0", "-0.0", "+1", "007.5", "1e2", "-2.5E-3", "3e+1", "1e-45",
                               "3.4028235e38", "0e999", "0.123456789012345678901234567890"})
        QTest::addRow("number %s", number) << true << plateFile(number) << QByteArrayList();
    for (const char* text :
         {"",     " 1",  "1 ",  "\t1",   "\"1\"", "'1'", "nan",         "inf",   "-infinity",
          "0x10", "1.",  ".5",  "1.2.3", "--1",   "1e",  "1e+",         "1e5.0", "1;2",
          "1 %",  "1_0", "one", "+",     ".",     "e5",  "\xEF\xBC\x91"}) {
        QByteArray wrong = "4:1: There is no value here";
        if (*text)
            wrong = "4:1: \"" + QByteArray(text).replace("\t", "\\x09") +
                    "\" is not a decimal number such as 92.465";
        QTest::addRow("no number \"%s\"", text) << true << plateFile(text) << QByteArrayList{wrong};
    }
    // Between two digits nothing else may stand than these.
    for (char c = ' '; c <= '~'; ++c) {
        const QByteArray text = QByteArray("1") + c + '5';
        if (!QByteArray("0123456789.eE,").contains(c))
            QTest::addRow("1%c5", c)
                << true << plateFile(text)
                << QByteArrayList{"4:1: \"" + text + "\" is not a decimal number such as 92.465"};
    }
    row("too large", plateFile("1e39"), {"4:1: \"1e39\" is too large for single precision"});
    row("too large, negative", plateFile("-3.5e38"),
        {"4:1: \"-3.5e38\" is too large for single precision"});
    row("too small", plateFile("1e-46"), {"4:1: \"1e-46\" is too small for single precision"});
    row("a long cell", plateFile(QByteArray(50, 'x')),
        {"4:1: \"" + QByteArray(40, 'x') + "...\" is not a decimal number such as 92.465"});
    row("NUL in a value", plateFile(QByteArray("1\0", 2)),
        {"4:2: There is a NUL byte in the line"});
    row("CR in a value", plateFile("1\r2"), {"4:2: There is a CR in the line, not at its end"});
    row("CR CR LF", "a\nb\n12345678\r\n" + valueLine("1", 38) + "\r\r\n",
        {"4:187: There is a CR in the line, not at its end"});

    row("a value too few", valueFile("12345678", valueLine("1", 37)),
        {"4:182: The line has 37 values instead of 38"});
    row("a value too many", valueFile("12345678", valueLine("1", 39)),
        {"4:188: The line has 39 values instead of 38"});
    row("a comma at the end", valueFile("12345678", valueLine("1", 38) + ','),
        {"4:188: The line has 39 values instead of 38"});
    row("an empty line of values", valueFile("12345678", ""),
        {"4:1: The line has 0 values instead of 38"});
    row("semicolons", valueFile("12345678", "1;2;3"),
        {"4:1: \"1;2;3\" is not a decimal number such as 92.465",
         "4:6: The line has 1 values instead of 38"});

    for (const char* serialNo : {"", "1234567", "123456789", "10000000", "00000000", "ABCDEFGH",
                                 "1234567a", " 12345678", "12345678 ", "12345678,", "+1234567"})
        QTest::addRow("serial number \"%s\"", serialNo)
            << true << valueFile(serialNo, valueLine("1", 38))
            << QByteArrayList{"3:1: " + QByteArray(serialNoFault).replace("%1", serialNo)};
    for (const char* serialNo : {"", "54321", "00010000", "00100000", "10000001", "0005432A"})
        adapterRow(serialNo, serialNo,
                   {"3:1: " + QByteArray(adapterFault).replace("%1", serialNo)});
    row("NUL in the serial number", valueFile(QByteArray("1234\000678", 8), valueLine("1", 38)),
        {"3:5: There is a NUL byte in the line"});
    row("CR in the serial number", valueFile("1234\r678", valueLine("1", 38)),
        {"3:5: There is a CR in the line, not at its end"});

    const QByteArray tooShort = "The file ends before its fourth line: two headings, the serial "
                                "number and the values have to be there";
    row("empty", "", {"1:1: " + tooShort});
    row("two lines", "a\nb\n", {"3:1: " + tooShort});
    row("three lines", "a\nb\n12345678\n", {"4:1: " + tooShort});
    row("cut off in the last number", right.left(right.size() - 2),
        {"4:191: The line of the values has no line end: the file may have been cut off here"});
    row("CR alone", QByteArray(right).replace("\n", "\r"),
        {"1:8: The lines end in CR alone: save the file with LF or CR LF"});
    const QByteArrayList utf16 = {"1:1: The file is UTF-16 text: save it as plain text or UTF-8"};
    row("UTF-16", QByteArray("\xFF\xFEh\0\n\0", 6), utf16);
    row("UTF-16, the other way", QByteArray("\xFE\xFF\0h\0\n", 6), utf16);
    row("all at once", "a\nb\n1234\n1,,x" + QByteArray(",2").repeated(34) + ",3",
        {"3:1: " + QByteArray(serialNoFault).replace("%1", "1234"), "4:3: There is no value here",
         "4:4: \"x\" is not a decimal number such as 92.465",
         "4:75: The line of the values has no line end: the file may have been cut off here"});
}

void TestCommandFiles::valueFiles() {
    QFETCH(bool, isPlate);
    QFETCH(QByteArray, content);
    QFETCH(QByteArrayList, faults);
    const CalibrationAccessory& accessory = isPlate ? plate : adapter;
    const QByteArray path = m_folder.write("values.csv", content);
    Faults found;
    const auto file = InputFile::read(QFile::decodeName(path), found);
    QVERIFY(file);
    const auto values = ValueFile::check(*file, accessory, found);
    QCOMPARE(shown(found), faults);
    QCOMPARE(values.has_value(), faults.isEmpty());
    if (!values)
        return;

    auto merged = patterned<KVA_JIG_CALREFDATA>();
    values->mergeInto(merged);
    auto read = patterned<KVA_JIG_CALREFDATA>();
    QVERIFY((CFileIO().*accessory.readFile)(path, &read));
    QCOMPARE(bytes(merged), bytes(read));
    QVERIFY(accessory.isValid(accessory.serialNoIn(read)));
}

void TestCommandFiles::likelyAccessory_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isPlate");
    QTest::newRow("38 values") << valueFile("00054321", valueLine("1", 38)) << true;
    QTest::newRow("75 values") << valueFile("12345678", valueLine("1", 75)) << false;
    QTest::newRow("a plate's number") << valueFile("12345678", valueLine("1", 74)) << true;
    QTest::newRow("an adapter's number") << valueFile("00054321", valueLine("1", 37)) << false;
    QTest::newRow("an adapter's number alone") << QByteArray("a\nb\n00054321") << false;
    QTest::newRow("empty") << QByteArray() << true;
}

void TestCommandFiles::likelyAccessory() {
    QFETCH(QByteArray, content);
    QFETCH(bool, isPlate);
    QCOMPARE(&ValueFile::likelyAccessory({QString(), content}), isPlate ? &plate : &adapter);
}

void TestCommandFiles::settingsFiles_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArrayList>("faults");
    const auto row = [](const char* name, const QByteArray& content,
                        const QByteArrayList& faults = {}) {
        QTest::newRow(name) << content << faults;
    };
    row("right", settings());
    row("CR LF", settings("\n", "\r\n"));
    row("tolerated names", settings("DHCPUse=", "; remark\n\n dhcpuse \t= "));
    row("a later section's key", settings("DNS=", "[Other]\nDNS="));
    row("the first of two", settings("DNS=", "SSID=Other\nDNS="));
    row("a key without anything, then with a value", settings("SSID=", "SSID=\nSSID="));
    row("no line end", settings().chopped(1));
    row("a blank kept by CR LF", settings("Lab\n", "Lab \r\n"));
    for (const char* flag : {"1", "+1", "001", "1 ; on", "1.5", "-0", "0x1"})
        QTest::addRow("flag %s", flag)
            << settings("DHCPUse=0", QByteArray("DHCPUse=") + flag) << QByteArrayList();
    for (const char* flag : {"2", "-1", "10", "yes", "x1", "4294967297", "99999999999999999999",
                             "-99999999999999999999"})
        QTest::addRow("no flag %s", flag)
            << settings("DHCPUse=0", QByteArray("DHCPUse=") + flag)
            << QByteArrayList{"2:9: DHCPUse has to be 0 or 1, not \"" + QByteArray(flag) + '"'};
    row("addresses at their ends", settings("192.168.10.25", "0.000.255.7"));
    const QByteArray wrongAddress =
        ": IPAddress has to be four numbers from 0 to 255, such as 192.168.0.10, not \"%1\"";
    const QList<QPair<const char*, int>> addresses = {
        {"256.0.0.1", 11}, {"1.2.3", 16},     {"1.2.3.4.5", 17}, {"1..2.3", 13},
        {"1.2.3.", 17},    {"1.2.3.-4", 17},  {"1.2. 3.4", 15},  {"1.2.3.4 x", 17},
        {"a.b.c.d", 11},   {"1.2.3.0004", 17}};
    for (const auto& [address, column] : addresses)
        QTest::addRow("no address %s", address)
            << settings("192.168.10.25", address)
            << QByteArrayList{"3:" + QByteArray::number(column) +
                              QByteArray(wrongAddress).replace("%1", address)};

    row("texts of the greatest size",
        settings("Lab", QByteArray(32, 's')).replace("correct-horse", QByteArray(64, 'k')));
    row("texts too long",
        settings("Lab", QByteArray(33, 's')).replace("correct-horse", QByteArray(65, 'k')),
        {"6:6: SSID has 33 bytes, at most 32 are allowed",
         "7:12: EncryptKey has 65 bytes, at most 64 are allowed"});
    row("a value of 510 bytes", settings("DHCPUse=0", "DHCPUse=" + QByteArray(509, '0') + '1'));
    row("a value of 511 bytes", settings("DHCPUse=0", "DHCPUse=" + QByteArray(510, '0') + '1'),
        {"2:9: The value of DHCPUse is too long"});
    row("a line of 64 KiB", settings("Lab", "Lab" + QByteArray(65536 - 8, ' ')));
    row("a longer line", settings("Lab", "Lab" + QByteArray(65536 - 7, ' ')),
        {"6:6: The value of SSID is too long"});
    row("NUL in a value", settings("Lab", QByteArray("La\0b", 4)),
        {"6:8: There is a NUL byte in the line"});
    row("CR in a value", settings("Lab\n", "Lab\r\r\n"),
        {"6:9: There is a CR in the line, not at its end"});
    row("the key is not told", settings("correct-horse", QByteArray("correct\0", 8)),
        {"7:19: There is a NUL byte in the line"});

    row("missing, empty, blank",
        settings("DNS=192.168.10.1\n", "").replace("Lab", "").replace("192.168.10.25", "  "),
        {"1:1: The section has no SSID with a value", "1:1: The section has no DNS with a value",
         "3:1: IPAddress has no value"});
    row("only before the section", "DNS=1.2.3.4\n" + settings("DNS=192.168.10.1\n", ""),
        {"2:1: The section has no DNS with a value"});
    const QByteArrayList noSection = {
        "1:1: The file has no line that is [Network] alone, without blanks or comments"};
    row("empty", "", noSection);
    row("no section", settings("[Network]\n", ""), noSection);
    row("a blank behind the section", settings("[Network]", "[Network] "), noSection);
    row("a longer section", settings("[Network]", "[Networks]"), noSection);
    row("a byte-order mark", "\xEF\xBB\xBF" + settings(),
        {"1:1: A byte-order mark stands before [Network]: save the file without it"});
    row("CR alone", settings("\n", "\r"),
        {"1:10: The lines end in CR alone: save the file with LF or CR LF"});
    row("UTF-16", QByteArray("\xFF\xFE[\0", 4),
        {"1:1: The file is UTF-16 text: save it as plain text or UTF-8"});
}

void TestCommandFiles::settingsFiles() {
    QFETCH(QByteArray, content);
    QFETCH(QByteArrayList, faults);
    const QByteArray path = m_folder.write("network.ini", content);
    Faults found;
    const auto file = InputFile::read(QFile::decodeName(path), found);
    QVERIFY(file);
    const auto info = SettingsFile::check(*file, found);
    QCOMPARE(shown(found), faults);
    QCOMPARE(info.has_value(), faults.isEmpty());
    if (!info)
        return;
    KVA_NETWORKINFO read = {};
    QVERIFY(CFileIO().ReadNetworkIni(path, &read));
    QCOMPARE(bytes(*info), bytes(read));
}

void TestCommandFiles::inputFiles_data() {
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("fault");
    QTest::newRow("right") << m_folder.write("file", "abc") << QByteArray();
    QTest::newRow("the most") << m_folder.write("most", QByteArray(InputFile::maxSize, 'x'))
                              << QByteArray();
    QTest::newRow("too large") << m_folder.write("large", QByteArray(InputFile::maxSize + 1, 'x'))
                               << QByteArray("The file has more than 1048576 bytes");
    QTest::newRow("missing") << m_folder.path("missing")
                             << QByteArray("The file cannot be opened: No such file or directory");
    const QByteArray noFile = "This is not a file: only regular files are read";
    QTest::newRow("a folder") << m_folder.path(".") << noFile;
    QTest::newRow("a device") << QByteArray("/dev/zero") << noFile;
    QVERIFY(::mkfifo(m_folder.path("pipe"), 0600) == 0);
    QTest::newRow("a pipe") << m_folder.path("pipe") << noFile;
#ifdef Q_OS_LINUX
    QTest::newRow("a file that says it is empty") << QByteArray("/proc/version") << QByteArray();
    // A regular file whose first bytes are mapped by nobody.
    QTest::newRow("a failing read") << QByteArray("/proc/self/mem")
                                    << QByteArray("The file cannot be read: Input/output error");
#endif
}

void TestCommandFiles::inputFiles() {
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, fault);
    Faults faults;
    const auto file = InputFile::read(QFile::decodeName(path), faults);
    QCOMPARE(file.has_value(), fault.isEmpty());
    QCOMPARE(shown(faults).join('\n'), fault.isEmpty() ? QByteArray() : ' ' + fault);
    QFile expected(QFile::decodeName(path));
    if (file && expected.open(QIODevice::ReadOnly))
        QCOMPARE(file->content, expected.readAll());
    if (file) // a plan keeps all the files that it names
        QCOMPARE(file->content.capacity(), file->content.size());
}

void TestCommandFiles::inputFileIsReadOnce() {
    Faults faults;
    const QString path = QFile::decodeName(m_folder.write("changed", "abc"));
    const auto file = InputFile::read(path, faults);
    m_folder.write("changed", "something else");
    QCOMPARE(file->content, QByteArray("abc"));
    QCOMPARE(file->path, path);
    // The digest that FIPS 180 gives for this text.
    QCOMPARE(file->sha256(), QByteArray("ba7816bf8f01cfea414140de5dae2223"
                                        "b00361a396177a9cb410ff61f20015ad"));
}

void TestCommandFiles::texts_data() {
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<QByteArray>("english");
    QTest::newRow("no place") << QByteArray("100 %") << QByteArrayList{"x"} << QByteArray("100 %");
    QTest::newRow("places") << QByteArray("%2, %1, %2") << QByteArrayList{"a", "b"}
                            << QByteArray("b, a, b");
    QTest::newRow("a place in an argument")
        << QByteArray("%1 %2") << QByteArrayList{"%2", "b"} << QByteArray("%2 b");
    QTest::newRow("no argument") << QByteArray("%1 %0 %") << QByteArrayList()
                                 << QByteArray("%1 %0 %");
}

void TestCommandFiles::texts() {
    QFETCH(QByteArray, source);
    QFETCH(QByteArrayList, arguments);
    QFETCH(QByteArray, english);
    QStringList strings;
    for (const QByteArray& argument : arguments)
        strings += QString::fromUtf8(argument);
    const Text text(source.constData(), strings);
    QCOMPARE(text.english().toUtf8(), english);
    QCOMPARE(text.translated().toUtf8(), english);
    QVERIFY(!text.isEmpty());
    QVERIFY(Text().isEmpty());
}

TEST_CLASS(TestCommandFiles)
#include "tst_command_files.moc"
