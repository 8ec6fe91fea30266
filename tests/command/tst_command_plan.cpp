// A plan for many instruments: what is a mistake in it, and what is understood.
#include "ThreeInstruments.h"
#include "command/Plan.h"
#include "command/PlanCells.h"
#include "tests/support/TestMain.h"

#include <QDir>

using namespace ThreeInstruments;

namespace {

/** The faults as the user reads them, without the file's name. */
QStringList shown(const Faults& faults, const QString& path) {
    QStringList lines;
    for (const Fault& fault : faults)
        lines.append(fault.toString().remove(path + ", ").remove(QFileInfo(path).path() + '/'));
    return lines;
}

QString addressText(const std::optional<NetworkFields::Address>& address) {
    QStringList octets;
    for (int i = 0; address && i < 4; ++i)
        octets.append(QString::number((*address)[static_cast<std::size_t>(i)]));
    return octets.join('.');
}

/** All that the plan wants of an instrument; what it leaves as it is, is empty. */
QString shown(const PlanRow& row) {
    const auto flag = [](const std::optional<std::uint32_t>& value) {
        return value ? QString::number(*value) : QString();
    };
    const auto text = [](const std::optional<std::string>& value) {
        return value ? QString::fromStdString(*value) : QString();
    };
    const NetworkFields& network = row.network;
    QStringList cells = {QString::number(row.number),
                         QString::number(row.serialNumber),
                         flag(network.wireless),
                         text(network.ssid),
                         text(network.key),
                         flag(network.dhcp),
                         addressText(network.ip),
                         addressText(network.mask),
                         addressText(network.gateway),
                         addressText(network.dns),
                         row.powerOffMode ? QString::number(*row.powerOffMode) : QString()};
    for (const ValueFile& file : row.accessories)
        cells.append(QByteArray(reinterpret_cast<const char*>(file.serialNo), 4).toHex());
    return cells.join('|');
}

const QByteArray header = "serial,wireless,ssid,key,dhcp,ip,mask,gateway,dns,power_off,"
                          "white_plate,ambient_adapter\n";

} // namespace

class TestCommandPlan : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsMistakes_data();
    void findsMistakes();
    void understands_data();
    void understands();
    void readsSerialNumbers_data();
    void readsSerialNumbers();
    void masksKeysForTheJournal();
    void takesWhatIsNeeded_data();
    void takesWhatIsNeeded();

private:
    CommandRun m_run;
};

void TestCommandPlan::findsMistakes_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("faults");
    const auto row = [](const char* name, const QByteArray& content, const QStringList& faults) {
        QTest::newRow(name) << content << faults;
    };
    // Cells of a row with a serial number.
    const auto cells = [&](const char* name, const QByteArray& rest, const QStringList& faults) {
        row(name, header + "1000001," + rest + '\n', faults);
    };
    row("nothing", "", {"row 0, column A: The plan has no row"});
    row("a header alone", header, {"row 1, column A (serial): The plan has no row"});
    row("no serial column", "ip,mask\n",
        {"row 1, column A (ip): The header has no column "
         "\"serial\""});
    row("an unknown column", "serial,IP\n1,\n",
        {"row 1, column B (IP): A plan has no column \"IP\". A column of your own begins with "
         "\"#\"."});
    row("a doubled column", "serial,ip,serial\n1,,2\n",
        {"row 1, column C (serial): There is a column \"serial\" already"});
    row("a cell beyond the header", "serial,\n1,,x\n2,y\n",
        {"row 2, column C: \"x\" stands in a column without a name",
         "row 3, column B: \"y\" stands in a column without a name"});
    row("UTF-16", "\xFF\xFEs", {"row"});
    row("Latin-1", "serial,ssid,# n\n1,B\xFCro,\xFC\n",
        {"row 2, column B (ssid): The text is not UTF-8: save the plan as \"CSV UTF-8\"",
         "row 2, column C (# n): The text is not UTF-8: save the plan as \"CSV UTF-8\""});
    row("cut off", "serial,key\n1,secr",
        {"row 2, column A (serial): The last line has no line end: the file may have been cut off "
         "here"});
    row("an open quote", "serial,ssid\n1,\"a\n2,b\n",
        {"row 2, column A (serial): A cell in quotes is not closed"});
    row("a quote within a cell", "serial,ssid\n\n1,a\"b\n",
        {"row 3, column A (serial): There is a quote within a cell: the whole cell has to be in "
         "quotes, and the quote in it doubled"});
    row("blanks before a quote", "serial,ssid\n1, \"a\"\n",
        {"row 2, column A (serial): There is a quote within a cell: the whole cell has to be in "
         "quotes, and the quote in it doubled"});
    row("a CR in a line", "serial,ssid\n1,a\r2,b\n",
        {"row 2, column A (serial): There is a CR in the line, not at its end"});
    row("no serial number", "ssid,serial\na,\n",
        {"row 2, column B (serial): The row has no serial number"});
    row("the same instrument twice", "serial\n1000001\n2\n01000001\n1000001.0\n",
        {"row 4, column A (serial): Instrument 01000001 is in row 2 as well",
         "row 5, column A (serial): Instrument 01000001 is in row 2 as well"});
    row("one address for two", "serial,dhcp,ip\n1,on,10.0.0.1\n2,,10.0.0.1\n",
        {"row 3, column C (ip): The address 10.0.0.1 is in row 2 as well"});
    row("one plate for two", "serial,white_plate\n1,plate.csv\n2,sub/../plate.csv\n",
        {"row 3, column B (white_plate): White plate 12345679 is in row 2 as well"});
    row("one adapter for two", "serial,ambient_adapter\n1,adapter.csv\n2,adapter.csv\n",
        {"row 3, column B (ambient_adapter): Ambient adapter 00012346 is in row 2 as well"});
    cells("a switch", "1,,,yes",
          {"row 2, column B (wireless): It has to be \"on\" or \"off\", not \"1\"",
           "row 2, column E (dhcp): It has to be \"on\" or \"off\", not \"yes\""});
    cells("a power-off time", ",,,,,,,,45",
          {"row 2, column J (power_off): It has to be off, 15, 30 or 60, not \"45\""});
    const QString address = "It has to be four numbers from 0 to 255, such as 192.168.0.10, not ";
    cells("addresses", ",,,,10.0.0.256,255.255.255,a,1.2.3.4.5",
          {"row 2, column F (ip): " + address + "\"10.0.0.256\"",
           "row 2, column G (mask): " + address + "\"255.255.255\"",
           "row 2, column H (gateway): " + address + "\"a\"",
           "row 2, column I (dns): " + address + "\"1.2.3.4.5\""});
    cells("no mask", ",,,,10.0.0.1,255.0.255.0",
          {"row 2, column G (mask): 255.0.255.0 is no network mask such as 255.255.255.0."});
    cells("a mask of ones", ",,,,,255.255.255.255",
          {"row 2, column G (mask): 255.255.255.255 is no network mask such as 255.255.255.0."});
    cells("outside its network", ",,,off,10.0.1.5,255.255.255.0,10.0.0.1",
          {"row 2, column F (ip): 10.0.1.5 is outside the network that mask 255.255.255.0 and "
           "gateway 10.0.0.1 make."});
    cells("equal to its gateway", ",,,,10.0.0.1,,10.0.0.1",
          {"row 2, column F (ip): 10.0.0.1 is the address of the gateway as well."});
    const QString nobody = " is no address that an instrument can have.";
    cells("the network's address", ",,,,10.0.0.0,255.255.255.0",
          {"row 2, column F (ip): 10.0.0.0" + nobody});
    cells("everybody's address", ",,,,10.0.0.255,255.255.255.0",
          {"row 2, column F (ip): 10.0.0.255" + nobody});
    cells("a loopback address", ",,,,127.0.0.1", {"row 2, column F (ip): 127.0.0.1" + nobody});
    cells("a long SSID", QByteArray(1, ',') + QByteArray(33, 'x'),
          {"row 2, column C (ssid): The text has 33 bytes, at most 32 are allowed"});
    cells("a long key", ",," + QByteArray(65, 'x'),
          {"row 2, column D (key): The text has 65 bytes, at most 64 are allowed"});
    cells("a line end in an SSID", ",\"a\nb\"",
          {"row 2, column C (ssid): The text has a line end, a tab or another control character"});
    cells("a key that a spreadsheet shortened", ",,1.23457E+15",
          {"row 2, column D (key): The text looks like a number that a spreadsheet has shortened, "
           "such as 1.23E+15: give the column the format \"text\", and type it anew"});
    cells("a missing file", ",,,,,,,,,none.csv",
          {"row 2, column K (white_plate): The file \"none.csv\" cannot be used:",
           "none.csv: The file cannot be opened: No such file or directory"});
    cells("the other accessory's file", ",,,,,,,,,adapter.csv",
          {"row 2, column K (white_plate): The file \"adapter.csv\" cannot be used:",
           "adapter.csv:3:1: The serial number has to be eight digits, from 10000001 to 99999999, "
           "not \"00012346\"",
           "adapter.csv:4:267: The line has 75 values instead of 38"});
    row("all at once", "key,ip,serial,colour\nx,1,2,\ny,,x,\n,,2,\n",
        {"row 1, column D (colour): A plan has no column \"colour\". A column of your own begins "
         "with \"#\".",
         "row 2, column B (ip): " + address + "\"1\"",
         "row 3, column C (serial): \"x\" is not a serial number.",
         "row 4, column C (serial): Instrument 00000002 is in row 2 as well"});
}

void TestCommandPlan::findsMistakes() {
    QFETCH(QByteArray, content);
    QFETCH(QStringList, faults);
    QDir(m_run.path("")).mkdir("sub");
    const QString path = m_run.path("plan.csv");
    Faults found;
    QVERIFY(!Plan::check({path, content}, {}, found));
    if (faults == QStringList{"row"}) // told at its line, before there are rows
        QVERIFY(found.size() == 1 && found[0].toString().contains("UTF-16"));
    else
        QCOMPARE(shown(found, path), faults);
}

void TestCommandPlan::understands_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<int>("notes");
    const auto row = [](const char* name, const QByteArray& content, const QStringList& rows,
                        int notes = 0) { QTest::newRow(name) << content << rows << notes; };
    const QString all = "2|1000001|1|Room, \"1\"|k;y|0|10.0.0.9|255.255.255.0|10.0.0.1|10.0.0.2|2|"
                        "12345679|00012346";
    row("all columns",
        header + "01000001,on,\"Room, \"\"1\"\"\",k;y,off,10.0.0.9,255.255.255.0,10.0.0.1,10.0.0.2,"
                 "30,plate.csv,adapter.csv\n",
        {all});
    row("a byte-order mark, semicolons, CR LF, blanks, capitals, another order",
        "\xEF\xBB\xBFmask;gateway ;ip;dhcp;key; ssid;wireless;serial;dns;power_off;ambient_adapter;"
        "white_plate\r\n255.255.255.0; 10.0.0.1;10.0.0.9 ;OFF;\"k;y\";\"Room, \"\"1\"\"\";On; "
        "1000001 ;10.0.0.2;30;adapter.csv;plate.csv\r\n",
        {"2|1000001|1|Room, \"1\"|k;y|0|10.0.0.9|255.255.255.0|10.0.0.1|10.0.0.2|2|00012346|"
         "12345679"});
    row("empty cells, lines and rows, comments and columns without a name",
        "serial,# a,ip,\n\n2,\"x\n\ny\",,\n,,,\n1\n", {"3|2|||||||||", "5|1|||||||||"});
    row("blanks that belong to a text", "serial,ssid,key\n1, a,\" b \"\n", {"2|1|| a| b ||||||"},
        2);
    row("keys of digits, told of once", "serial,ssid,key\n1,7,12345678\n2,,12345678\n",
        {"2|1||7|12345678||||||", "3|2|||12345678||||||"}, 1);
    row("a semicolon in a heading", "serial,# a;b,ssid\n1,;,c;d\n", {"2|1||c;d|||||||"});
    row("apostrophes and formulas are texts", "serial,ssid,key\n1,'',=1+1\n",
        {"2|1||''|=1+1||||||"});
    row("other scripts", "serial,ssid\n1,\xE6\xB8\xAC\xE5\xAE\x9A\n", {"2|1||測定|||||||"});
    row("the longest texts",
        "serial,ssid,key\n1," + QByteArray(32, 's') + ',' + QByteArray(64, 'k') + '\n',
        {"2|1||" + QString(32, 's') + '|' + QString(64, 'k') + "||||||"});
    row("addresses that are not used", "serial,dhcp,ip,mask\n1,on,0.0.0.0,0.0.0.0\n",
        {"2|1||||1|0.0.0.0|0.0.0.0|||"});
    row("no gateway", "serial,ip,mask,gateway\n1,10.0.0.9,255.255.255.0,0.0.0.0\n",
        {"2|1|||||10.0.0.9|255.255.255.0|0.0.0.0||"});
    row("two in a network", "serial,ip,mask,gateway\n1,10.0.0.1,255.255.255.254,10.0.0.0\n",
        {"2|1|||||10.0.0.1|255.255.255.254|10.0.0.0||"});
}

void TestCommandPlan::understands() {
    QFETCH(QByteArray, content);
    QFETCH(QStringList, rows);
    QFETCH(int, notes);
    const QString path = m_run.path("plan.csv");
    Faults faults;
    const auto plan = Plan::check({path, content}, {}, faults);
    QCOMPARE(shown(faults, path), QStringList());
    QVERIFY(plan);
    QStringList found;
    for (const PlanRow& row : plan->rows)
        found.append(shown(row));
    QCOMPARE(found, rows);
    QCOMPARE(int(plan->notes.size()), notes);
}

void TestCommandPlan::readsSerialNumbers_data() {
    QTest::addColumn<QByteArray>("cell");
    QTest::addColumn<int>("number"); // -1: no number, -2: digits may be lost
    const std::pair<const char*, int> cells[] = {{"01000001", 1000001},
                                                 {"1000001", 1000001},
                                                 {"0", 0},
                                                 {"2147483647", 2147483647},
                                                 {"2147483648", -1},
                                                 {"1000001.0", 1000001},
                                                 {"1000001.00", 1000001},
                                                 {"1.000", -1},
                                                 {"1000001.5", -1},
                                                 {"1000001,0", -1},
                                                 {"1 000 001", -1},
                                                 {"+1", -1},
                                                 {"-1", -1},
                                                 {".0", -1},
                                                 {"1.000001E+06", 1000001},
                                                 {"1.000001e6", 1000001},
                                                 {"1,000001E+06", 1000001},
                                                 {"1.00000100E6", 1000001},
                                                 {"1.0000011E+06", -1},
                                                 {"1.0E+06", -2},
                                                 {"1.00000E+06", -2},
                                                 {"1E6", -2},
                                                 {"1E0", 1},
                                                 {"1.E+06", -1},
                                                 {"10.0E+05", -1},
                                                 {"1.0E-06", -1},
                                                 {"1.5E+0", -1},
                                                 {"E6", -1},
                                                 {"1E", -1},
                                                 {"1.0E+006", -1},
                                                 {"'01000001", -1},
                                                 {"0x10", -1}};
    for (const auto& [cell, number] : cells)
        QTest::newRow(cell) << QByteArray(cell) << number;
}

void TestCommandPlan::readsSerialNumbers() {
    QFETCH(QByteArray, cell);
    QFETCH(int, number);
    std::int32_t found = 0;
    const auto fault = PlanCells::parseSerial({cell.constData(), std::size_t(cell.size())}, found);
    if (number >= 0) {
        QVERIFY(fault == PlanCells::SerialFault::None);
        QCOMPARE(found, number);
    } else {
        QVERIFY(fault == (number == -2 ? PlanCells::SerialFault::Inexact
                                       : PlanCells::SerialFault::NoNumber));
    }
}

void TestCommandPlan::masksKeysForTheJournal() {
    const QByteArray content = "\xEF\xBB\xBF# key;key ;serial\r\nmine;secret;1\r\n;;2\n";
    const JournalInput input = Plan::journalInput({"plan.csv", content});
    QCOMPARE(input.content,
             QByteArray("\"# key\";\"key \";\"serial\"\n\"mine\";\"********\";\"1\"\n"
                        "\"\";\"\";\"2\"\n"));
    QVERIFY(input.isMasked);
    QCOMPARE(input.sha256, InputFile({"", content}).sha256());
}

void TestCommandPlan::takesWhatIsNeeded_data() {
    using Serials = std::vector<std::int32_t>;
    QTest::addColumn<Serials>("attached");
    QTest::addColumn<Serials>("only");
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QStringList>("faults");
    const QStringList none;
    QTest::newRow("all") << Serials{3, 1, 2} << Serials{} << QStringList{"2", "3", "1"} << none;
    QTest::newRow("some") << Serials{3, 1} << Serials{3, 1} << QStringList{"3", "1"} << none;
    QTest::newRow("missing") << Serials{3, 2} << Serials{} << none
                             << QStringList{"row 4, column A (serial): Instrument 00000001 is not "
                                            "attached."};
    QTest::newRow("not planned") << Serials{3, 4, 2} << Serials{4, 2, 0} << none
                                 << QStringList{"--only: Instrument 00000004 is not in the plan",
                                                "--only: Instrument 00000000 is not in the plan"};
}

void TestCommandPlan::takesWhatIsNeeded() {
    QFETCH(std::vector<std::int32_t>, attached);
    QFETCH(std::vector<std::int32_t>, only);
    const InputFile file = {"plan.csv", "serial,ip\n2,\n3,\n1,\n"};
    Faults faults;
    const auto plan = Plan::check(file, {attached, only}, faults);
    QTEST(shown(faults, file.path), "faults");
    QStringList taken;
    for (const PlanRow& row : plan ? plan->rows : std::vector<PlanRow>())
        taken.append(QString::number(row.serialNumber));
    QTEST(taken, "taken");
}

TEST_CLASS(TestCommandPlan)
#include "tst_command_plan.moc"
