#include "tests/dialogs/settings/SettingsFixture.h"

#include <QtTest>

#include <cstring>

/** The network tab's button "Write To Body". */
class TestNetworkWriteBody : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesThePage();
    void writesTheSwitches_data();
    void writesTheSwitches();
    void keepsSwitchesWithoutAButton();
    void sendsZerosWithDhcp_data();
    void sendsZerosWithDhcp();
    void validAddresses_data();
    void validAddresses();
    void invalidAddresses_data();
    void invalidAddresses();
    void texts_data();
    void texts();
    void failingWrite();
    void warningIsSuccess();
    void boxClosedByItsWindow();
};

namespace {

const QString button = QStringLiteral("writeBodyPushBtn");
const QString writeCall = QStringLiteral("KVA_SetNetworkInfo");
const QString success =
    QStringLiteral("information: Write successful. To reflect, after [Disconnect], turn the power "
                   "supply of the measuring instrument OFF -> ON.");
const QString invalid = QStringLiteral("error: The input value is invalid.");

const QStringList sixteenOctets = {
    QStringLiteral("1"),   QStringLiteral("22"),  QStringLiteral("3"),   QStringLiteral("0"),
    QStringLiteral("255"), QStringLiteral("254"), QStringLiteral("128"), QStringLiteral("7"),
    QStringLiteral("8"),   QStringLiteral("9"),   QStringLiteral("10"),  QStringLiteral("11"),
    QStringLiteral("12"),  QStringLiteral("13"),  QStringLiteral("14"),  QStringLiteral("15")};

/** The tab's four buttons among the names of disabled ones. */
QStringList tabButtons(const QStringList& names) {
    QStringList found;
    for (const char* name :
         {"readToFilePushBtn", "writeFilePushBtn", "readBodyPushBtn", "writeBodyPushBtn"}) {
        if (names.contains(QLatin1String(name)))
            found.append(QLatin1String(name));
    }
    return found;
}

QJsonObject networkOf(const QJsonObject& instrument, const char* which) {
    return instrument[QStringLiteral("network")].toObject()[QLatin1String(which)].toObject();
}

/** Bytes as the bench writes a text field that is no clean text. */
QJsonObject hexField(const QByteArray& bytes) {
    return {{QStringLiteral("hex"), QString::fromLatin1(bytes.toHex())}};
}

} // namespace

void TestNetworkWriteBody::writesThePage() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QJsonObject expected = SettingsFixture::state();
    QJsonObject pending = networkOf(expected, "active");
    pending[QStringLiteral("IPAddress")] = QStringLiteral("1.22.3.0");
    pending[QStringLiteral("SubnetMask")] = QStringLiteral("255.254.128.7");
    pending[QStringLiteral("DefaultGateway")] = QStringLiteral("8.9.10.11");
    pending[QStringLiteral("DNS")] = QStringLiteral("12.13.14.15");
    pending[QStringLiteral("SSID")] = QStringLiteral("typed name");
    pending[QStringLiteral("EncryptKey")] = QStringLiteral("typed key");
    pending[QStringLiteral("APConnectUse")] = 0;
    QJsonObject network = expected[QStringLiteral("network")].toObject();
    network[QStringLiteral("pending")] = pending;
    expected[QStringLiteral("network")] = network;

    f.setOctets(sixteenOctets);
    f.child<QLineEdit>(QStringLiteral("SSIDlineEdit")).setText(QStringLiteral("typed name"));
    f.child<QLineEdit>(QStringLiteral("passwdlineEdit")).setText(QStringLiteral("typed key"));
    f.click(QStringLiteral("disableRadioBtn"));
    const QStringList before = f.everything();
    QStringList duringBox;
    f.answers.onBox = [&](QMessageBox&) { duringBox = tabButtons(f.disabled()); };
    f.click(button);

    QCOMPARE(f.boxes(), QStringList(success));
    QCOMPARE(f.calls(), QStringList(writeCall));
    QCOMPARE(f.lines(), SettingsFixture::digitLines(sixteenOctets));
    QCOMPARE(SettingsFixture::state(), expected);
    QCOMPARE(duringBox.size(), 4);
    QCOMPARE(f.everything(), before);
}

void TestNetworkWriteBody::writesTheSwitches_data() {
    QTest::addColumn<QString>("wireless");
    QTest::addColumn<int>("APConnectUse");
    QTest::addColumn<QString>("dhcp");
    QTest::addColumn<int>("DHCPUse");
    for (const int use : {0, 1}) {
        const QString wireless =
            use == 1 ? QStringLiteral("enableRadioBtn") : QStringLiteral("disableRadioBtn");
        QTest::addRow("wireless %d, DHCP on", use)
            << wireless << use << QStringLiteral("dhcpOnRadioBtn") << 1;
        QTest::addRow("wireless %d, DHCP off", use)
            << wireless << use << QStringLiteral("dhcpOffRadioBtn") << 0;
    }
}

void TestNetworkWriteBody::writesTheSwitches() {
    QFETCH(QString, wireless);
    QFETCH(QString, dhcp);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.click(wireless);
    f.click(dhcp);
    f.setOctets(sixteenOctets);
    f.click(button);

    const QJsonObject pending = networkOf(SettingsFixture::state(), "pending");
    QTEST(pending[QStringLiteral("APConnectUse")].toInt(-1), "APConnectUse");
    QTEST(pending[QStringLiteral("DHCPUse")].toInt(-1), "DHCPUse");
}

void TestNetworkWriteBody::keepsSwitchesWithoutAButton() {
    SettingsFixture f;
    QVERIFY(f.set(R"({"network": {"active": {"APConnectUse": 2, "DHCPUse": 3}}})"));
    QVERIFY(f.connectFirst());
    for (const char* name :
         {"enableRadioBtn", "disableRadioBtn", "dhcpOnRadioBtn", "dhcpOffRadioBtn"})
        f.uncheck(QLatin1String(name));
    f.click(button);

    const QJsonObject pending = networkOf(SettingsFixture::state(), "pending");
    QCOMPARE(pending[QStringLiteral("APConnectUse")].toInt(), 2);
    QCOMPARE(pending[QStringLiteral("DHCPUse")].toInt(), 3);
    // Without "ON" checked the edits count.
    QCOMPARE(pending[QStringLiteral("IPAddress")].toString(), QStringLiteral("192.168.0.10"));
}

void TestNetworkWriteBody::sendsZerosWithDhcp_data() {
    QTest::addColumn<QStringList>("octets");
    QTest::newRow("valid edits") << sixteenOctets;
    QTest::newRow("empty edits") << QStringList();
    QTest::newRow("invalid edits") << QStringList{QStringLiteral("1a"), QStringLiteral("256")};
}

void TestNetworkWriteBody::sendsZerosWithDhcp() {
    QFETCH(QStringList, octets);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.setOctets(octets);
    f.click(QStringLiteral("dhcpOnRadioBtn"));
    const QStringList before = f.everything();
    f.click(button);

    QCOMPARE(f.boxes(), QStringList(success));
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.calls(), QStringList(writeCall));
    QCOMPARE(f.everything(), before);
    QJsonObject expected = networkOf(SettingsFixture::state(), "active");
    for (const char* address : {"IPAddress", "SubnetMask", "DefaultGateway", "DNS"})
        expected[QLatin1String(address)] = QStringLiteral("0.0.0.0");
    expected[QStringLiteral("DHCPUse")] = 1;
    QCOMPARE(networkOf(SettingsFixture::state(), "pending"), expected);
}

void TestNetworkWriteBody::validAddresses_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("octet");
    QTest::newRow("lowest") << QStringLiteral("0") << 0;
    QTest::newRow("highest") << QStringLiteral("255") << 255;
    QTest::newRow("leading zeros") << QStringLiteral("007") << 7;
    QTest::newRow("not octal") << QStringLiteral("010") << 10;
    QTest::newRow("zeros") << QStringLiteral("000") << 0;
}

// All of them alike: no rule but that of the octets themselves, so 0.0.0.0 is sent and a mask may
// have holes.
void TestNetworkWriteBody::validAddresses() {
    QFETCH(QString, text);
    QFETCH(int, octet);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.setOctets(QVector<QString>(16, text).toList());
    f.click(button);

    QCOMPARE(f.boxes(), QStringList(success));
    const QJsonObject pending = networkOf(SettingsFixture::state(), "pending");
    const QString address = QStringLiteral("%1.%1.%1.%1").arg(octet);
    for (const char* name : {"IPAddress", "SubnetMask", "DefaultGateway", "DNS"})
        QCOMPARE(pending[QLatin1String(name)].toString(), address);
}

void TestNetworkWriteBody::invalidAddresses_data() {
    QTest::addColumn<int>("edit");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("linesFromTheEnd"); // how many edits are not looked at
    for (int edit = 0; edit < 16; ++edit) {
        QTest::addRow("edit %d empty", edit) << edit << QString() << 15 - edit;
        QTest::addRow("edit %d too great", edit) << edit << QStringLiteral("256") << 0;
    }
    const QVector<QPair<const char*, QString>> texts = {
        {"letter", QStringLiteral("1a")},          {"greatest", QStringLiteral("999")},
        {"full-width", QString::fromUtf8("１２")}, {"plus", QStringLiteral("+1")},
        {"minus", QStringLiteral("-1")},           {"blank in front", QStringLiteral(" 1")},
        {"blank behind", QStringLiteral("1 ")},    {"blank", QStringLiteral(" ")},
    };
    for (const auto& text : texts)
        QTest::newRow(text.first) << 15 << text.second << 0;
}

void TestNetworkWriteBody::invalidAddresses() {
    QFETCH(int, edit);
    QFETCH(QString, text);
    QFETCH(int, linesFromTheEnd);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QJsonObject state = SettingsFixture::state();
    const KVA_NETWORKINFO record = f.controller->m_networkInfo;
    QStringList octets = sixteenOctets;
    octets[edit] = text;
    f.setOctets(octets);
    f.click(QStringLiteral("disableRadioBtn"));
    const QStringList before = f.everything();
    QStringList duringBox;
    f.answers.onBox = [&](QMessageBox&) { duringBox = tabButtons(f.disabled()); };
    f.click(button);

    QCOMPARE(f.boxes(), QStringList(invalid));
    QCOMPARE(f.calls(), QStringList());
    const QStringList lines = f.lines();
    QCOMPARE(lines.filter(QStringLiteral("length:")).size(), 16 - linesFromTheEnd);
    QCOMPARE(SettingsFixture::state(), state);
    QCOMPARE(std::memcmp(&f.controller->m_networkInfo, &record, sizeof record), 0);
    QCOMPARE(duringBox.size(), 4);
    QCOMPARE(f.everything(), before);
}

void TestNetworkWriteBody::texts_data() {
    QTest::addColumn<QString>("ssid");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("sentSsid");
    QTest::addColumn<QJsonValue>("sentKey");
    const QString ssid(32, QLatin1Char('s'));
    const QString key(64, QLatin1Char('k'));
    QTest::newRow("empty") << QString() << QString() << QJsonValue(QString())
                           << QJsonValue(QString());
    QTest::newRow("longest") << ssid << key << QJsonValue(ssid) << QJsonValue(key);
    const QString tokyo = QString::fromUtf8("東京 1階");
    QTest::newRow("Japanese") << tokyo << tokyo << QJsonValue(tokyo) << QJsonValue(tokyo);
    const QString kanji = QString::fromUtf8("京");
    QTest::newRow("more bytes than room")
        << kanji.repeated(32) << kanji.repeated(64)
        << QJsonValue(hexField(kanji.repeated(11).toUtf8().left(32) + '\0'))
        << QJsonValue(hexField(kanji.repeated(22).toUtf8().left(64) + '\0'));
    QTest::newRow("cut between two characters")
        << QStringLiteral("ab") + kanji.repeated(30) << QStringLiteral("a") + kanji.repeated(63)
        << QJsonValue(QStringLiteral("ab") + kanji.repeated(10))
        << QJsonValue(QStringLiteral("a") + kanji.repeated(21));
}

void TestNetworkWriteBody::texts() {
    QFETCH(QString, ssid);
    QFETCH(QString, key);
    QFETCH(QJsonValue, sentSsid);
    QFETCH(QJsonValue, sentKey);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    auto& ssidEdit = f.child<QLineEdit>(QStringLiteral("SSIDlineEdit"));
    auto& keyEdit = f.child<QLineEdit>(QStringLiteral("passwdlineEdit"));
    ssidEdit.setText(ssid);
    keyEdit.setText(key);
    f.click(button);

    QCOMPARE(f.boxes(), QStringList(success));
    QCOMPARE(ssidEdit.text(), ssid);
    QCOMPARE(keyEdit.text(), key);
    const QJsonObject pending = networkOf(SettingsFixture::state(), "pending");
    QCOMPARE(pending[QStringLiteral("SSID")], sentSsid);
    QCOMPARE(pending[QStringLiteral("EncryptKey")], sentKey);
}

void TestNetworkWriteBody::failingWrite() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QVERIFY(f.answer(writeCall, KVA_ERROR_COMMUNICATION_SEND));
    const QJsonObject state = SettingsFixture::state();
    f.setOctets(sixteenOctets);
    const QStringList before = f.everything();
    QStringList duringBox;
    f.answers.onBox = [&](QMessageBox&) { duringBox = tabButtons(f.disabled()); };
    f.click(button);

    QCOMPARE(f.boxes(),
             QStringList(QStringLiteral("error: Failed to write Network Infomation data.")));
    QCOMPARE(f.calls(), QStringList(writeCall));
    QCOMPARE(f.lines(), SettingsFixture::digitLines(sixteenOctets)
                            << QStringLiteral("Failed to KVA_SetNetworkInfo(). \n"));
    QCOMPARE(SettingsFixture::state(), state);
    QCOMPARE(duringBox.size(), 4);
    QCOMPARE(f.everything(), before);
}

void TestNetworkWriteBody::warningIsSuccess() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QVERIFY(f.answer(writeCall, KVA_WARNING_BATTERY_EMPTY));
    f.click(button);
    QCOMPARE(f.boxes(), QStringList(success));
}

void TestNetworkWriteBody::boxClosedByItsWindow() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.answers.closesBoxes = true;
    f.click(button);
    QCOMPARE(f.boxes(), QStringList(success));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
}

QTEST_MAIN(TestNetworkWriteBody)
#include "tst_network_write_body.moc"
