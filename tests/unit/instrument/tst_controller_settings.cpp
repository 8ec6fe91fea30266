#include "tests/unit/instrument/ControllerFixture.h"

#include <climits>

namespace {

/** Changes active settings of the instrument. */
void setNetwork(const QByteArray& fields) {
    TestBench::set(R"({"network": {"active": {)" + fields + "}}}");
}

const NumberRow flags[] = {{"0", 0}, {"1", 1}, {"2", 2}, {"256", 256}, {"highest", UINT_MAX}};
const NumberRow bytes[] = {{"0", 0}, {"1", 1}, {"2", 2}, {"128", 128}, {"255", 255}};
const NumberRow modes[] = {{"0", 0}, {"1", 1},     {"2", 2},     {"3", 3},
                           {"4", 4}, {"127", 127}, {"128", 128}, {"255", 255}};

struct TextsRow {
    const char* name;
    QByteArray ssidJson;
    QByteArray keyJson;
    QString ssid;
    QString key;
};

QByteArray quoted(const QByteArray& text) {
    return '"' + text + '"';
}

QByteArray bytesJson(const QByteArray& hex) {
    return R"({"hex":")" + hex + R"("})";
}

const TextsRow texts[] = {
    {"empty", quoted(""), quoted(""), "", ""},
    {"32 and 64 bytes", quoted(QByteArray(32, 's')), quoted(QByteArray(64, 'k')), QString(32, 's'),
     QString(64, 'k')},
    {"UTF-8", quoted("\xe6\x9d\xb1\xe4\xba\xac"), quoted("\xc3\xbc"), u8"\u6771\u4eac", u8"\u00fc"},
    {"blanks and per cent", quoted(" a %s %1 "), quoted("%d%n  "), " a %s %1 ", "%d%n  "},
    {"bytes behind the NUL", bytesJson("6100" + QByteArray("62").repeated(31)),
     bytesJson("6b00" + QByteArray("6c").repeated(63)), "a", "k"},
    {"not UTF-8", bytesJson("61ff" + QByteArray("00").repeated(31)), quoted("k"), u8"a\ufffd", "k"},
    // No NUL at all: the text ends with its field, not with the next one.
    {"fields without NUL", bytesJson(QByteArray("73").repeated(33)),
     bytesJson(QByteArray("6b").repeated(65)), QString(33, 's'), QString(65, 'k')},
};

struct AddressRow {
    const char* name;
    void (CKvaSdk_Ctrl::*set)(const uint8_t octets[4]);
    int offset; ///< in the record
};

const AddressRow addressSetters[] = {{"IP address", &CKvaSdk_Ctrl::SetIPAddress, 8},
                                     {"subnet mask", &CKvaSdk_Ctrl::SetSubnetMask, 12},
                                     {"default gateway", &CKvaSdk_Ctrl::SetDefaultGateway, 16},
                                     {"DNS", &CKvaSdk_Ctrl::SetDNS, 20}};

/** A text for the SSID or the key, and as much of it as its field keeps. */
struct SetTextRow {
    QByteArray name;
    bool isKey;
    QByteArray text; ///< null: none at all
    QByteArray kept;
};

QVector<SetTextRow> setTexts() {
    QVector<SetTextRow> rows = {
        {"SSID, high bytes", false, QByteArray(16, '\xff'), QByteArray(16, '\xff')}};
    const auto add = [&](const QByteArray& name, const QByteArray& text) {
        rows.append({"SSID, " + name, false, text, text.left(32)});
        rows.append({"key, " + name, true, text, text.left(64)});
    };
    add("none", {});
    add("empty", "");
    add("one byte", "a");
    add("31 bytes", QByteArray(31, 'b'));
    add("32 bytes", QByteArray(32, 'c'));
    add("33 bytes", QByteArray(32, 'd') + 'X');
    add("64 bytes", QByteArray(64, 'e'));
    add("65 bytes", QByteArray(64, 'f') + 'X');
    add("200 bytes", QByteArray(200, 'g'));
    return rows;
}

} // namespace

/** The network settings, the wireless module and the automatic power-off of an instrument. */
class TestControllerSettings : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { TestBench::load(); }

    void startsEmpty() {
        const CKvaSdk_Ctrl controller;
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
        QVERIFY(!controller.m_apConnectUse);
        QVERIFY(!controller.m_dhcpUse);
        QVERIFY(hasNoNetwork(controller));
    }

    void readsSettings() {
        ConnectedController controller;
        QVERIFY(controller.GetNetworkInfo());
        controller.forget();
        QVERIFY(controller.GetNetworkInfo()); // again: it adds nothing to what was read
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo),
                 QByteArray::fromHex("0100000000000000c0a8000affffff00c0a8000108080400") +
                     QByteArray("press-hall").leftJustified(33, '\0') +
                     QByteArray("spectral-key").leftJustified(67, '\0'));
        QVERIFY(controller.m_apConnectUse);
        QVERIFY(!controller.m_dhcpUse);
        QCOMPARE(controller.m_ssid, "press-hall");
        QCOMPARE(controller.m_encryptKey, "spectral-key");
        QCOMPARE(addresses(controller),
                 QStringList({"192|168|0|10", "255|255|255|0", "192|168|0|1", "8|8|4|0"}));
        QCOMPARE(controller.left(), QStringList({"0", "KVA_GetNetworkInfo {} 0"}));
    }

    /** Each value of an octet, in each of the four lists. */
    void readsOctets() {
        ConnectedController controller;
        for (int first = 0; first < 256; first += 4) {
            QStringList octets;
            for (int i = 0; i < 4; ++i)
                octets.append(QString::number(first + i));
            const QByteArray address = quoted(octets.join('.').toLatin1());
            setNetwork(R"("IPAddress": )" + address + R"(, "SubnetMask": )" + address +
                       R"(, "DefaultGateway": )" + address + R"(, "DNS": )" + address);
            QVERIFY(controller.GetNetworkInfo());
            const QString text = octets.join('|');
            QCOMPARE(addresses(controller), QStringList({text, text, text, text}));
        }
    }

    void readsFlags_data() { addRows(flags); }
    void readsFlags() {
        const auto row = rowOf<NumberRow>();
        const QByteArray value = QByteArray::number(row.value);
        const bool isOn = row.value != 0;
        ConnectedController controller;
        setNetwork(R"("DHCPUse": 0, "APConnectUse": )" + value);
        QVERIFY(controller.GetNetworkInfo());
        QCOMPARE(controller.m_apConnectUse, isOn);
        QCOMPARE(controller.m_dhcpUse, false);
        QCOMPARE(controller.m_networkInfo.APConnectUse, value.toUInt());
        setNetwork(R"("APConnectUse": 0, "DHCPUse": )" + value);
        QVERIFY(controller.GetNetworkInfo());
        QCOMPARE(controller.m_apConnectUse, false);
        QCOMPARE(controller.m_dhcpUse, isOn);
        QCOMPARE(controller.m_networkInfo.DHCPUse, value.toUInt());
    }

    void readsTexts_data() { addRows(texts); }
    void readsTexts() {
        const auto row = rowOf<TextsRow>();
        ConnectedController controller;
        setNetwork(R"("SSID": )" + row.ssidJson + R"(, "EncryptKey": )" + row.keyJson);
        QVERIFY(controller.GetNetworkInfo());
        QCOMPARE(controller.m_ssid, row.ssid);
        QCOMPARE(controller.m_encryptKey, row.key);
    }
    void failedReadEmptiesTexts() {
        ConnectedController controller;
        QVERIFY(controller.GetNetworkInfo());
        TestBench::answer("KVA_GetNetworkInfo");
        QVERIFY(!controller.GetNetworkInfo());
        QVERIFY(hasNoNetwork(controller));
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
    }

    void sendsTheRecord() {
        ConnectedController controller;
        const uint8_t octets[4][4] = {
            {10, 20, 30, 40}, {255, 0, 0, 0}, {10, 0, 0, 1}, {9, 8, 7, 6}};
        controller.m_networkInfo.APConnectUse = 1;
        controller.m_networkInfo.DHCPUse = 1;
        for (int i = 0; i < 4; ++i)
            (controller.*addressSetters[i].set)(octets[i]);
        controller.SetSSID("measuring-room");
        controller.SetEncryptKey("a key");
        const QByteArray sent = TestBench::bytesOf(controller.m_networkInfo);
        QVERIFY(controller.SetNetworkInfo());
        const QString call =
            R"(KVA_SetNetworkInfo {"network":{"APConnectUse":1,"DHCPUse":1,"DNS":"9.8.7.6",)"
            R"("DefaultGateway":"10.0.0.1","EncryptKey":{"length":5},"IPAddress":"10.20.30.40",)"
            R"("SSID":"measuring-room","SubnetMask":"255.0.0.0"}} 0)";
        QCOMPARE(controller.left(), QStringList({"0", call}));
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), sent);
        QCOMPARE(TestBench::bytesOf(TestBench::held(KVA_GetNetworkInfo)), sent);
        controller.powerCycle();
        QVERIFY(controller.GetNetworkInfo());
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), sent);
        QCOMPARE(addresses(controller).first(), "10|20|30|40");
        QCOMPARE(controller.m_encryptKey, "a key");
    }

    void sendsNothingOnFailure() {
        ConnectedController controller;
        QVERIFY(controller.GetNetworkInfo());
        const QByteArray before = TestBench::bytesOf(controller.m_networkInfo);
        controller.SetSSID("other");
        const QByteArray changed = TestBench::bytesOf(controller.m_networkInfo);
        TestBench::answer("KVA_SetNetworkInfo", -9991);
        QVERIFY(!controller.SetNetworkInfo());
        QCOMPARE(controller.m_lastResult, -9991);
        QCOMPARE(controller.log.lines(), QStringList("Failed to KVA_SetNetworkInfo(). \n"));
        // Nothing in the controller changes: neither the record nor the texts of the last read.
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), changed);
        QCOMPARE(controller.m_ssid, "press-hall");
        QCOMPARE(controller.m_ipAddress.size(), 4);
        QCOMPARE(TestBench::bytesOf(TestBench::held(KVA_GetNetworkInfo)), before);
    }

    void setsAddresses_data() { addRows(addressSetters); }
    void setsAddresses() {
        const auto row = rowOf<AddressRow>();
        CKvaSdk_Ctrl controller;
        const uint8_t octets[] = {1, 0, 254, 255};
        (controller.*row.set)(octets);
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo),
                 QByteArray(124, '\0').replace(row.offset, 4, QByteArray::fromHex("0100feff")));
    }

    void setsText_data() { addRows(setTexts()); }
    void setsText() {
        const auto row = rowOf<SetTextRow>();
        CKvaSdk_Ctrl controller;
        KVA_NETWORKINFO& info = controller.m_networkInfo;
        std::memset(info.SSID, '#', sizeof info.SSID);
        std::memset(info.EncryptKey, '#', sizeof info.EncryptKey);
        const char* const text = row.text.isNull() ? nullptr : row.text.constData();
        if (row.isKey) {
            controller.SetEncryptKey(text);
            QCOMPARE(TestBench::bytesOf(info.EncryptKey), row.kept.leftJustified(65, '\0'));
            QCOMPARE(TestBench::bytesOf(info.SSID), QByteArray(33, '#'));
        } else {
            controller.SetSSID(text);
            QCOMPARE(TestBench::bytesOf(info.SSID), row.kept.leftJustified(33, '\0'));
            QCOMPARE(TestBench::bytesOf(info.EncryptKey), QByteArray(65, '#'));
        }
    }

    void settersTouchNothingElse() {
        LoggedController controller;
        controller.SetSSID(QByteArray(40, 's'));
        controller.SetEncryptKey(QByteArray(80, 'k'));
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo),
                 QByteArray(24, '\0') + QByteArray(32, 's') + '\0' + QByteArray(64, 'k') +
                     QByteArray(3, '\0'));
        QCOMPARE(controller.m_ssid, "");
        QCOMPARE(controller.left(), QStringList("4"));
    }

    void queriesWifiModule_data() { addRows(bytes); }
    void queriesWifiModule() {
        const auto row = rowOf<NumberRow>();
        ConnectedController controller;
        // The other bytes of the record count for nothing.
        TestBench::set(R"({"factoryOptionsReserved": {"fill": 255}, "wirelessModule": )" +
                       row.name + '}');
        QCOMPARE(controller.IsWifiModuleEnabled(), row.value != 0);
        QCOMPARE(controller.left(),
                 QStringList({"4", QString("  wifiModuleEnable :      %1\n").arg(row.value),
                              "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA {} 0"}));
    }

    void readsMode_data() { addRows(modes); }
    void readsMode() {
        const auto row = rowOf<NumberRow>();
        ConnectedController controller;
        TestBench::set(R"({"powerOffMode": )" + row.name + '}');
        uint8_t mode = 77;
        QVERIFY(controller.GetShutdownTime(mode));
        QCOMPARE(qint64{mode}, row.value);
        const QString line = "KVA_GetShutdownTime() success[mode:%1].\n";
        QCOMPARE(controller.left(),
                 QStringList({"0", line.arg(row.value), "KVA_GetShutdownTime {} 0"}));
    }

    void writesMode_data() { addRows(modes); }
    void writesMode() {
        const auto row = rowOf<NumberRow>();
        ConnectedController controller;
        QVERIFY(controller.SetShutdownTime(static_cast<uint8_t>(row.value)));
        const QString line = "KVA_SetShutdownTime() success[mode:%1].\n";
        const QString call = R"(KVA_SetShutdownTime {"mode":%1} 0)";
        QCOMPARE(controller.left(), QStringList({"0", line.arg(row.value), call.arg(row.value)}));
        QCOMPARE(qint64{TestBench::held(KVA_GetShutdownTime)}, row.value);
    }
};

TEST_CLASS(TestControllerSettings)
#include "tst_controller_settings.moc"
