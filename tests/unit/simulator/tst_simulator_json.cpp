// The bench as JSON: exact for every byte, with defaults for what is left out.

#include "SimulatorTest.h"
#include "tests/support/MadeLocale.h"

#include <QRandomGenerator>

#include <clocale>

using namespace simtest;

namespace {

void fillRandomly(void* target, std::size_t size) {
    auto* bytes = static_cast<unsigned char*>(target);
    for (std::size_t index = 0; index < size; ++index)
        bytes[index] = static_cast<unsigned char>(QRandomGenerator::global()->generate());
}

/** Hands the bench through its JSON and connects to the instrument again. */
bool reload() {
    return KvaSim_LoadJson(stateText().c_str()) && connectTo(usbSerial) == KVA_SUCCESS;
}

/** The record that comes back after a passage through JSON. */
template <typename Record>
Record reloaded(KVA_RESULT (*set)(const Record*), KVA_RESULT (*get)(Record*),
                const Record& record) {
    if (set(&record) != KVA_SUCCESS || !reload())
        giveUp("the record did not pass");
    return held(get);
}

bool passes(const KVA_JIG_CALREFDATA& data) {
    return sameBytes(
        reloaded(KVA_JIG_SetFactoryCalib_CALREFDATA, KVA_JIG_GetFactoryCalib_CALREFDATA, data),
        data);
}

bool passes(const KVA_NETWORKINFO& network) {
    return sameBytes(reloaded(KVA_SetNetworkInfo, KVA_GetNetworkInfo, network), network);
}

json staged() {
    return instrument(usbSerial)["calibration"]["staged"];
}

/** The bits of a value, and its form in the bench where that is looked at. */
using FloatCase = Case<std::uint32_t, QByteArray>;

const FloatCase floatForms[] = {
    {"zero", 0x00000000U, "0.0"},
    {"tenth", 0x3DCCCCCDU, "0.1"},
    {"half", 0x3F000000U, "0.5"},
    {"plate value", 0x42BDEB85U, "94.96"},
    {"negative zero", 0x80000000U, "\"0x80000000\""},
    {"subnormal", 0x00000001U, "\"0x00000001\""},
    {"infinity", 0x7F800000U, "\"0x7f800000\""},
    {"payload", 0x7FC00001U, "\"0x7fc00001\""},
};

/** Bytes, and whether the bench has them as a string. */
using BytesCase = Case<QByteArray, bool>;

const BytesCase texts[] = {
    {"empty", "", true},
    {"ascii", "press-hall", true},
    {"quote and backslash", "a\"b\\c", true},
    {"control characters", "a\x01\n\x1F\x7F", true},
    {"two bytes", "\xC3\xA4", true},
    {"three bytes", "\xE6\xB8\xAC\xE8\x89\xB2", true},
    {"four bytes", "\xF0\x9F\x8C\x88", true},
    {"last code point", "\xF4\x8F\xBF\xBF", true},
    {"whole field", QByteArray(33, 'x'), true},
    {"lone continuation", "\x80", false},
    {"cut sequence", "a\xE6\xB8", false},
    {"overlong of two", "\xC0\x80", false},
    {"overlong of three", "\xE0\x80\x80", false},
    {"overlong of four", "\xF0\x80\x80\x80", false},
    {"surrogate", "\xED\xA0\x80", false},
    {"beyond the last code point", "\xF4\x90\x80\x80", false},
    {"no such lead", "\xF8\x88\x80\x80\x80", false},
    {"wrong continuation", "\xC3\x28", false},
    {"behind the end", QByteArray("ab\0c", 4), false},
};

struct BytesRow {
    const char* name;
    QByteArray form;
    int first;
    int last;
};

const BytesRow reservedBytes[] = {
    {"hex",
     QByteArray("{\"hex\": \"" + QByteArray(2047, 'x').toHex().replace("78", "a1") + "0F\"}"), 0xA1,
     0x0F},
    {"fill", "{\"fill\": 200}", 200, 200},
    {"seed", "{\"seed\": 0}", 0xAF, -1},
};

} // namespace

class TestSimulatorJson : public SimulatorTest {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        QVERIFY(loadJson(benchOf({usbSerial})));
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
    }

    void floats_data() {
        const std::uint32_t patterns[] = {
            0x00000000, 0x80000000, 0x00000001, 0x80000001, 0x007FFFFF, 0x00800000, 0x80800000,
            0x3DCCCCCD, 0x3F800000, 0x3F800001, 0x3F7FFFFF, 0xBF800000, 0x42AE0000, 0x42BDEB85,
            0x4B7FFFFF, 0x4B800001, 0x7F7FFFFF, 0xFF7FFFFF, 0x7F7FFFFE, 0x7F800000, 0xFF800000,
            0x7FC00000, 0x7FC00001, 0xFFC00000, 0x7F800001, 0xFFFFFFFF, 0x7FBFFFFF, 0x15AE43FD};
        QVector<FloatCase> rows(std::begin(floatForms), std::end(floatForms));
        for (const std::uint32_t bits : patterns)
            rows.append({QByteArray::number(bits, 16), bits});
        addRows(rows);
    }
    void floats() {
        const auto row = rowOf<FloatCase>();
        KVA_JIG_CALREFDATA data{};
        for (float* value : {&data.rfWhite.spcData[0], &data.rfWhite.spcData[37],
                             &data.ambAdp.spcData[0], &data.ambAdp.spcData[74]})
            std::memcpy(value, &row.given, sizeof row.given);
        QVERIFY(passes(data));
        if (!row.expected.isEmpty())
            QCOMPARE(staged()["white"]["values"][37].dump(), row.expected.toStdString());
    }

    void randomRecords() {
        for (int round = 0; round < 60; ++round) {
            KVA_JIG_CALREFDATA data{};
            fillRandomly(&data, sizeof data);
            QVERIFY(passes(data));
            KVA_NETWORKINFO network{};
            fillRandomly(&network, sizeof network);
            std::memset(network.padding, 0, sizeof network.padding);
            QVERIFY(passes(network));
        }
    }

    void textOfEveryByte() {
        for (int value = 0; value < 256; ++value) {
            KVA_NETWORKINFO network{};
            network.SSID[32] = static_cast<char>(value);
            std::memset(network.EncryptKey, value, sizeof network.EncryptKey);
            QVERIFY2(passes(network), QByteArray::number(value).constData());
        }
    }

    void textForms_data() { addRows(texts); }
    void textForms() {
        const auto row = rowOf<BytesCase>();
        KVA_NETWORKINFO network{};
        std::memcpy(network.SSID, row.given.constData(),
                    static_cast<std::size_t>(row.given.size()));
        QVERIFY(passes(network));
        const json ssid = instrument(usbSerial)["network"]["pending"]["SSID"];
        QCOMPARE(ssid.is_string(), row.expected);
        if (row.expected)
            QCOMPARE(ssid.get<std::string>(), row.given.toStdString());
        else
            QCOMPARE(ssid["hex"].get<std::string>().size(), std::size_t{66});
    }

    void portNameWithoutNul() {
        for (const QByteArray& name :
             {QByteArray(36, 'n'), QByteArray(36, '\xFF'), QByteArray(36, '%'),
              QByteArray("ab\0cd", 5).leftJustified(36, '\0')}) {
            QVERIFY(set(usbSerial, {{"port", {{"name", {{"hex", name.toHex().toStdString()}}}}}}));
            QVERIFY(KvaSim_LoadJson(stateText().c_str()));
            const KVA_PORTINFO port = portOf(usbSerial);
            QCOMPARE(QByteArray(port.portName, sizeof port.portName), name);
        }
    }

    void serialDigitsOfEveryByte() {
        for (int value = 0; value < 256; value += 4) {
            KVA_JIG_CALREFDATA data{};
            for (int index = 0; index < 4; ++index) {
                data.whiteSerialNo[index] = static_cast<std::uint8_t>(value + index);
                data.ambAdpSerialNo[3 - index] = static_cast<std::uint8_t>(value + index);
            }
            QVERIFY2(passes(data), QByteArray::number(value).constData());
        }
        KVA_JIG_CALREFDATA data{};
        data.whiteSerialNo[0] = 0x12;
        data.ambAdpSerialNo[0] = 0x1A;
        QCOMPARE(send(KVA_JIG_SetFactoryCalib_CALREFDATA, data), KVA_SUCCESS);
        QVERIFY(staged()["white"]["serialNumber"] == "12000000");
        QVERIFY(staged()["ambientAdapter"]["serialNumber"] == json({{"hex", "1a000000"}}));
    }

    void bytesForms_data() { addRows(reservedBytes); }
    void bytesForms() {
        const auto row = rowOf<BytesRow>();
        const QByteArray patch =
            "{\"calibration\": {\"committed\": {\"reserved\": " + row.form + "}}}";
        QVERIFY2(KvaSim_Set(usbSerial, patch.constData()), KvaSim_LastError());
        KVA_JIG_CALREFDATA data = held(KVA_JIG_GetFactoryCalib_CALREFDATA);
        QCOMPARE(int{data.reserved[0]}, row.first);
        if (row.last >= 0)
            QCOMPARE(int{data.reserved[2047]}, row.last);
        QVERIFY(passes(data));
    }

    void wholeBenchIsExact() {
        KvaSim_Reset();
        QVERIFY(connectTo(usbSerial) == KVA_SUCCESS);
        for (const Call& call : connectionCalls())
            call.call();
        const std::string text = stateText();
        QVERIFY(!text.empty());
        QVERIFY(KvaSim_LoadJson(text.c_str()));
        QVERIFY(stateText() == text);
    }

    void decimalCommaLocale() {
        const char* const name = "de_DE.UTF-8";
        if (!std::setlocale(LC_ALL, name)) {
            QCOMPARE(makeLocale(m_folder.path(), name), "");
            qputenv("LOCPATH", m_folder.path().toLocal8Bit());
            QVERIFY(std::setlocale(LC_ALL, name));
        }
        QCOMPARE(std::localeconv()->decimal_point, ",");
        KVA_JIG_CALREFDATA data{};
        data.rfWhite.spcData[0] = 0.5F;
        data.rfWhite.spcData[1] = 94.96F;
        const bool hasPassed = passes(data);
        const json value = staged()["white"]["values"][1];
        std::setlocale(LC_ALL, "C");
        QVERIFY(hasPassed);
        QCOMPARE(value.dump(), std::string("94.96"));
    }

    void defaults() {
        json value = instrument(usbSerial);
        const json committed = value["calibration"]["committed"];
        QVERIFY(committed["white"]["serialNumber"] == "10000001");
        QVERIFY(committed["ambientAdapter"]["serialNumber"] == "00010001");
        value["calibration"].erase("committed");
        const json expected = json::parse(R"({
            "plugged": true,
            "port": {"type": 1, "name": "USB"},
            "wirelessModule": true,
            "network": {"active": {"APConnectUse": 0, "DHCPUse": 0, "IPAddress": "192.168.0.10",
                                   "SubnetMask": "255.255.255.0", "DefaultGateway": "192.168.0.1",
                                   "DNS": "192.168.0.1", "SSID": "", "EncryptKey": ""},
                        "pending": null},
            "powerOffMode": 0,
            "calibration": {"staged": null}})");
        for (const auto& [key, part] : expected.items())
            QVERIFY2(value[key] == part, key.c_str());
        const json device = value["device"];
        QVERIFY(device["serialNumber"] == usbSerial);
        QVERIFY(device["firmware"] == json({1, 0, 0}));
        QVERIFY(device["macAddress"] == "02:00:00:0f:42:41");
        QVERIFY(device["reserved1"] == json({{"fill", 0}}));
        QVERIFY(state()["faults"] == json::array());
    }

    void leftOutFieldsAreThoseInUse() {
        QVERIFY(set(usbSerial, {{"network",
                                 {{"active", {{"SSID", "one"}, {"DNS", "1.2.3.4"}}},
                                  {"pending", {{"SSID", "two"}}}}}}));
        const json pending = instrument(usbSerial)["network"]["pending"];
        QVERIFY(pending["SSID"] == "two");
        QVERIFY(pending["DNS"] == "1.2.3.4");

        const json staged = {{"white", {{"serialNumber", "55555555"}}}};
        QVERIFY(set(usbSerial, {{"calibration", {{"staged", staged}}}}));
        const json calibration = instrument(usbSerial)["calibration"];
        QVERIFY(calibration["staged"]["white"]["serialNumber"] == "55555555");
        QVERIFY(calibration["staged"]["white"]["values"] ==
                calibration["committed"]["white"]["values"]);
        QVERIFY(calibration["staged"]["reserved"] == calibration["committed"]["reserved"]);
    }
};

TEST_CLASS(TestSimulatorJson)
#include "tst_simulator_json.moc"
