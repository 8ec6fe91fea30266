#include "tests/support/DebugLog.h"
#include "tests/unit/instrument/InstrumentBench.h"

#include <QtTest>

namespace {

/** What `InstrumentBench::load` puts into the instrument. */
const QString ssid = QStringLiteral("press-hall");

} // namespace

class TestControllerNetwork : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void startsEmpty();
    void readsSettings();
    void readsOctets();
    void readsFlags_data();
    void readsFlags();
    void readsTexts_data();
    void readsTexts();
    void readsAgainWithoutGrowing();
    void failedReadEmptiesTexts_data();
    void failedReadEmptiesTexts();
    void sendsTheRecord();
    void sendsNothingOnFailure();
    void setsAddresses();
    void setsSsid_data();
    void setsSsid();
    void setsEncryptKey_data();
    void setsEncryptKey();
    void settersTouchNothingElse();
    void queriesWifiModule_data();
    void queriesWifiModule();
    void failedWifiQueryReadsAsNone();
};

void TestControllerNetwork::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
}

void TestControllerNetwork::startsEmpty() {
    const CKvaSdk_Ctrl controller;
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
    QVERIFY(!controller.m_apConnectUse);
    QVERIFY(!controller.m_dhcpUse);
    QCOMPARE(controller.m_ssid, QString());
    QCOMPARE(controller.m_encryptKey, QString());
    QCOMPARE(controller.m_ipAddress, QStringList());
    QCOMPARE(controller.m_subnetMask, QStringList());
    QCOMPARE(controller.m_defaultGateway, QStringList());
    QCOMPARE(controller.m_dns, QStringList());
}

void TestControllerNetwork::readsSettings() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const DebugLog log;
    QVERIFY(controller.GetNetworkInfo());
    const QByteArray expected =
        QByteArray::fromHex("0100000000000000c0a8000affffff00c0a8000108080400") +
        QByteArray("press-hall").leftJustified(33, '\0') +
        QByteArray("spectral-key").leftJustified(67, '\0');
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo), expected);
    QVERIFY(controller.m_apConnectUse);
    QVERIFY(!controller.m_dhcpUse);
    QCOMPARE(controller.m_ssid, ssid);
    QCOMPARE(controller.m_encryptKey, QStringLiteral("spectral-key"));
    QCOMPARE(controller.m_ipAddress.join(u'|'), QStringLiteral("192|168|0|10"));
    QCOMPARE(controller.m_subnetMask.join(u'|'), QStringLiteral("255|255|255|0"));
    QCOMPARE(controller.m_defaultGateway.join(u'|'), QStringLiteral("192|168|0|1"));
    QCOMPARE(controller.m_dns.join(u'|'), QStringLiteral("8|8|4|0"));
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::detailedCalls(),
             QStringList(QStringLiteral("KVA_GetNetworkInfo {} 0")));
}

void TestControllerNetwork::readsOctets() {
    // Each value of an octet, in each of the four lists.
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    for (int first = 0; first < 256; first += 4) {
        QStringList texts;
        for (int i = 0; i < 4; ++i)
            texts.append(QString::number(first + i));
        const QByteArray address = texts.join(u'.').toLatin1();
        QVERIFY2(InstrumentBench::set(R"({"network": {"active": {"IPAddress": ")" + address +
                                      R"(", "SubnetMask": ")" + address +
                                      R"(", "DefaultGateway": ")" + address + R"(", "DNS": ")" +
                                      address + R"("}}})"),
                 KvaSim_LastError());
        QVERIFY(controller.GetNetworkInfo());
        QCOMPARE(controller.m_ipAddress, texts);
        QCOMPARE(controller.m_subnetMask, texts);
        QCOMPARE(controller.m_defaultGateway, texts);
        QCOMPARE(controller.m_dns, texts);
    }
}

void TestControllerNetwork::readsFlags_data() {
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("isOn");
    QTest::newRow("0") << QByteArray("0") << false;
    QTest::newRow("1") << QByteArray("1") << true;
    QTest::newRow("2") << QByteArray("2") << true;
    QTest::newRow("256") << QByteArray("256") << true;
    QTest::newRow("highest") << QByteArray("4294967295") << true;
}

void TestControllerNetwork::readsFlags() {
    QFETCH(QByteArray, value);
    QFETCH(bool, isOn);
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(InstrumentBench::set(R"({"network": {"active": {"DHCPUse": 0, "APConnectUse": )" +
                                 value + "}}}"));
    QVERIFY(controller.GetNetworkInfo());
    QCOMPARE(controller.m_apConnectUse, isOn);
    QCOMPARE(controller.m_dhcpUse, false);
    QCOMPARE(controller.m_networkInfo.APConnectUse, value.toUInt());
    QVERIFY(InstrumentBench::set(R"({"network": {"active": {"APConnectUse": 0, "DHCPUse": )" +
                                 value + "}}}"));
    QVERIFY(controller.GetNetworkInfo());
    QCOMPARE(controller.m_apConnectUse, false);
    QCOMPARE(controller.m_dhcpUse, isOn);
    QCOMPARE(controller.m_networkInfo.DHCPUse, value.toUInt());
}

void TestControllerNetwork::readsTexts_data() {
    QTest::addColumn<QByteArray>("ssidJson");
    QTest::addColumn<QByteArray>("keyJson");
    QTest::addColumn<QString>("ssidText");
    QTest::addColumn<QString>("keyText");
    const auto quoted = [](const QByteArray& text) -> QByteArray { return '"' + text + '"'; };
    QTest::newRow("empty") << quoted("") << quoted("") << QString() << QString();
    QTest::newRow("32 and 64 bytes") << quoted(QByteArray(32, 's')) << quoted(QByteArray(64, 'k'))
                                     << QString(32, u's') << QString(64, u'k');
    QTest::newRow("UTF-8") << quoted("\xe6\x9d\xb1\xe4\xba\xac") << quoted("\xc3\xbc")
                           << QStringLiteral("\u6771\u4eac") << QStringLiteral("\u00fc");
    QTest::newRow("blanks and per cent") << quoted(" a %s %1 ") << quoted("%d%n  ")
                                         << QStringLiteral(" a %s %1 ") << QStringLiteral("%d%n  ");
    QTest::newRow("bytes behind the NUL")
        << R"({"hex":"6100)" + QByteArray("62").repeated(31) + R"("})"
        << R"({"hex":"6b00)" + QByteArray("6c").repeated(63) + R"("})" << QStringLiteral("a")
        << QStringLiteral("k");
    QTest::newRow("not UTF-8") << R"({"hex":"61ff)" + QByteArray("00").repeated(31) + R"("})"
                               << quoted("k") << QStringLiteral("a\ufffd") << QStringLiteral("k");
    // No NUL at all: the text ends with its field, not with the next one.
    QTest::newRow("fields without NUL") << R"({"hex":")" + QByteArray("73").repeated(33) + R"("})"
                                        << R"({"hex":")" + QByteArray("6b").repeated(65) + R"("})"
                                        << QString(33, u's') << QString(65, u'k');
}

void TestControllerNetwork::readsTexts() {
    QFETCH(QByteArray, ssidJson);
    QFETCH(QByteArray, keyJson);
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY2(InstrumentBench::set(R"({"network": {"active": {"SSID": )" + ssidJson +
                                  R"(, "EncryptKey": )" + keyJson + "}}}"),
             KvaSim_LastError());
    QVERIFY(controller.GetNetworkInfo());
    QTEST(controller.m_ssid, "ssidText");
    QTEST(controller.m_encryptKey, "keyText");
}

void TestControllerNetwork::readsAgainWithoutGrowing() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(controller.GetNetworkInfo());
    QVERIFY(controller.GetNetworkInfo());
    QCOMPARE(controller.m_ipAddress.size(), 4);
    QCOMPARE(controller.m_subnetMask.size(), 4);
    QCOMPARE(controller.m_defaultGateway.size(), 4);
    QCOMPARE(controller.m_dns.size(), 4);
    QCOMPARE(controller.m_ssid, ssid);
}

void TestControllerNetwork::failedReadEmptiesTexts_data() {
    QTest::addColumn<int>("result");
    QTest::newRow("error") << -9999;
    QTest::newRow("no data") << -9985;
    QTest::newRow("not equal") << -9794;
    QTest::newRow("-1") << -1;
}

void TestControllerNetwork::failedReadEmptiesTexts() {
    QFETCH(int, result);
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(controller.GetNetworkInfo());
    QVERIFY(InstrumentBench::answer("KVA_GetNetworkInfo", result));
    const DebugLog log;
    QVERIFY(!controller.GetNetworkInfo());
    QCOMPARE(controller.m_ssid, QString());
    QCOMPARE(controller.m_encryptKey, QString());
    QCOMPARE(controller.m_ipAddress, QStringList());
    QCOMPARE(controller.m_subnetMask, QStringList());
    QCOMPARE(controller.m_defaultGateway, QStringList());
    QCOMPARE(controller.m_dns, QStringList());
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
    QCOMPARE(controller.m_lastResult, result);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("Failed to KVA_GetNetworkInfo(). \n")));
    QCOMPARE(log.others(), QStringList());
}

void TestControllerNetwork::sendsTheRecord() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const uint8_t ip[] = {10, 20, 30, 40};
    const uint8_t mask[] = {255, 0, 0, 0};
    const uint8_t gateway[] = {10, 0, 0, 1};
    const uint8_t dns[] = {9, 8, 7, 6};
    controller.m_networkInfo.APConnectUse = 1;
    controller.m_networkInfo.DHCPUse = 1;
    controller.SetIPAddress(ip);
    controller.SetSubnetMask(mask);
    controller.SetDefaultGateway(gateway);
    controller.SetDNS(dns);
    controller.SetSSID("measuring-room");
    controller.SetEncryptKey("a key");
    const QByteArray sent = InstrumentBench::bytesOf(controller.m_networkInfo);
    const DebugLog log;
    QVERIFY(controller.SetNetworkInfo());
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::detailedCalls(),
             QStringList(QStringLiteral(
                 R"(KVA_SetNetworkInfo {"network":{"APConnectUse":1,"DHCPUse":1,)"
                 R"("DNS":"9.8.7.6","DefaultGateway":"10.0.0.1","EncryptKey":{"length":5},)"
                 R"("IPAddress":"10.20.30.40","SSID":"measuring-room",)"
                 R"("SubnetMask":"255.0.0.0"}} 0)")));
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo), sent);
    QCOMPARE(InstrumentBench::bytesOf(InstrumentBench::networkRecord()), sent);
    QVERIFY(InstrumentBench::powerCycle(controller));
    QVERIFY(controller.GetNetworkInfo());
    QCOMPARE(controller.m_ipAddress.join(u'.'), QStringLiteral("10.20.30.40"));
    QCOMPARE(controller.m_encryptKey, QStringLiteral("a key"));
}

void TestControllerNetwork::sendsNothingOnFailure() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(controller.GetNetworkInfo());
    const QByteArray before = InstrumentBench::bytesOf(controller.m_networkInfo);
    controller.SetSSID("other");
    const QByteArray changed = InstrumentBench::bytesOf(controller.m_networkInfo);
    QVERIFY(InstrumentBench::answer("KVA_SetNetworkInfo", -9991));
    const DebugLog log;
    QVERIFY(!controller.SetNetworkInfo());
    QCOMPARE(controller.m_lastResult, -9991);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("Failed to KVA_SetNetworkInfo(). \n")));
    QCOMPARE(log.others(), QStringList());
    // Nothing in the controller changes: neither the record nor the texts of the last read.
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo), changed);
    QCOMPARE(controller.m_ssid, ssid);
    QCOMPARE(controller.m_ipAddress.size(), 4);
    QCOMPARE(InstrumentBench::bytesOf(InstrumentBench::networkRecord()), before);
}

void TestControllerNetwork::setsAddresses() {
    CKvaSdk_Ctrl controller;
    const uint8_t octets[] = {1, 0, 254, 255};
    controller.SetIPAddress(octets);
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo),
             QByteArray(8, '\0') + QByteArray::fromHex("0100feff") + QByteArray(112, '\0'));
    controller.m_networkInfo = {};
    controller.SetSubnetMask(octets);
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo),
             QByteArray(12, '\0') + QByteArray::fromHex("0100feff") + QByteArray(108, '\0'));
    controller.m_networkInfo = {};
    controller.SetDefaultGateway(octets);
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo),
             QByteArray(16, '\0') + QByteArray::fromHex("0100feff") + QByteArray(104, '\0'));
    controller.m_networkInfo = {};
    controller.SetDNS(octets);
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo),
             QByteArray(20, '\0') + QByteArray::fromHex("0100feff") + QByteArray(100, '\0'));
}

void TestControllerNetwork::setsSsid_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("kept");
    QTest::newRow("none") << QByteArray() << QByteArray();
    QTest::newRow("empty") << QByteArray("") << QByteArray();
    QTest::newRow("one byte") << QByteArray("a") << QByteArray("a");
    QTest::newRow("31 bytes") << QByteArray(31, 'b') << QByteArray(31, 'b');
    QTest::newRow("32 bytes") << QByteArray(32, 'c') << QByteArray(32, 'c');
    QTest::newRow("33 bytes") << QByteArray(32, 'd') + 'X' << QByteArray(32, 'd');
    QTest::newRow("64 bytes") << QByteArray(64, 'e') << QByteArray(32, 'e');
    QTest::newRow("65 bytes") << QByteArray(65, 'f') << QByteArray(32, 'f');
    QTest::newRow("high bytes") << QByteArray(16, '\xff') << QByteArray(16, '\xff');
}

void TestControllerNetwork::setsSsid() {
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, kept);
    CKvaSdk_Ctrl controller;
    std::fill(std::begin(controller.m_networkInfo.SSID), std::end(controller.m_networkInfo.SSID),
              '#');
    controller.SetSSID(text.isNull() ? nullptr : text.constData());
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo.SSID), kept.leftJustified(33, '\0'));
}

void TestControllerNetwork::setsEncryptKey_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("kept");
    QTest::newRow("none") << QByteArray() << QByteArray();
    QTest::newRow("empty") << QByteArray("") << QByteArray();
    QTest::newRow("one byte") << QByteArray("a") << QByteArray("a");
    QTest::newRow("32 bytes") << QByteArray(32, 'b') << QByteArray(32, 'b');
    QTest::newRow("33 bytes") << QByteArray(33, 'c') << QByteArray(33, 'c');
    QTest::newRow("64 bytes") << QByteArray(64, 'd') << QByteArray(64, 'd');
    QTest::newRow("65 bytes") << QByteArray(64, 'e') + 'X' << QByteArray(64, 'e');
    QTest::newRow("200 bytes") << QByteArray(200, 'f') << QByteArray(64, 'f');
}

void TestControllerNetwork::setsEncryptKey() {
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, kept);
    CKvaSdk_Ctrl controller;
    std::fill(std::begin(controller.m_networkInfo.EncryptKey),
              std::end(controller.m_networkInfo.EncryptKey), '#');
    controller.SetEncryptKey(text.isNull() ? nullptr : text.constData());
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo.EncryptKey),
             kept.leftJustified(65, '\0'));
}

void TestControllerNetwork::settersTouchNothingElse() {
    CKvaSdk_Ctrl controller;
    controller.m_lastResult = 4;
    KvaSim_ClearCallLog();
    const DebugLog log;
    controller.SetSSID(QByteArray(40, 's').constData());
    controller.SetEncryptKey(QByteArray(80, 'k').constData());
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo),
             QByteArray(24, '\0') + QByteArray(32, 's') + '\0' + QByteArray(64, 'k') +
                 QByteArray(3, '\0'));
    QCOMPARE(controller.m_ssid, QString());
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(InstrumentBench::calls(), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TestControllerNetwork::queriesWifiModule_data() {
    QTest::addColumn<QByteArray>("flag");
    QTest::addColumn<bool>("isEnabled");
    QTest::newRow("0") << QByteArray("0") << false;
    QTest::newRow("1") << QByteArray("1") << true;
    QTest::newRow("2") << QByteArray("2") << true;
    QTest::newRow("128") << QByteArray("128") << true;
    QTest::newRow("255") << QByteArray("255") << true;
}

void TestControllerNetwork::queriesWifiModule() {
    QFETCH(QByteArray, flag);
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    // The other bytes of the record count for nothing.
    QVERIFY(InstrumentBench::set(R"({"factoryOptionsReserved": {"fill": 255}, "wirelessModule": )" +
                                 flag + '}'));
    controller.m_lastResult = 4;
    const DebugLog log;
    QTEST(controller.IsWifiModuleEnabled(), "isEnabled");
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(log.lines(),
             QStringList(
                 QStringLiteral("  wifiModuleEnable :      %1\n").arg(QString::fromLatin1(flag))));
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::detailedCalls(),
             QStringList(QStringLiteral("KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA {} 0")));
}

void TestControllerNetwork::failedWifiQueryReadsAsNone() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(InstrumentBench::answer("KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA", -9797));
    controller.m_lastResult = 4;
    const DebugLog log;
    QVERIFY(!controller.IsWifiModuleEnabled());
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
}

QTEST_GUILESS_MAIN(TestControllerNetwork)
#include "tst_controller_network.moc"
