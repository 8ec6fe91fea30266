// The bench as JSON: exact for every byte, with defaults for what is left out.

#include "SimulatorTest.h"

#include <QProcess>
#include <QRandomGenerator>

#include <clocale>
#include <cstdint>

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
KVA_JIG_CALREFDATA reloaded(const KVA_JIG_CALREFDATA& data) {
    KVA_JIG_CALREFDATA read{};
    if (KVA_JIG_SetFactoryCalib_CALREFDATA(&data) != KVA_SUCCESS || !reload() ||
        KVA_JIG_GetFactoryCalib_CALREFDATA(&read) != KVA_SUCCESS)
        qFatal("the record did not pass");
    return read;
}

KVA_NETWORKINFO reloaded(const KVA_NETWORKINFO& network) {
    KVA_NETWORKINFO read{};
    if (KVA_SetNetworkInfo(&network) != KVA_SUCCESS || !reload() ||
        KVA_GetNetworkInfo(&read) != KVA_SUCCESS)
        qFatal("the record did not pass");
    return read;
}

struct FloatFormsRow {
    const char* name;
    std::uint32_t bits;
    QByteArray form;
};

const FloatFormsRow floatFormsRows[] = {
    {"zero", 0x00000000U, "0.0"},
    {"tenth", 0x3DCCCCCDU, "0.1"},
    {"half", 0x3F000000U, "0.5"},
    {"plate value", 0x42BDEB85U, "94.96"},
    {"negative zero", 0x80000000U, "\"0x80000000\""},
    {"subnormal", 0x00000001U, "\"0x00000001\""},
    {"infinity", 0x7F800000U, "\"0x7f800000\""},
    {"payload", 0x7FC00001U, "\"0x7fc00001\""},
};

struct TextFormsRow {
    const char* name;
    QByteArray bytes;
    bool isString;
};

const TextFormsRow textFormsRows[] = {
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

struct BytesFormsRow {
    const char* name;
    QByteArray form;
    int first;
    int last;
};

const BytesFormsRow bytesFormsRows[] = {
    {"hex",
     QByteArray("{\"hex\": \"" + QByteArray(2047, 'x').toHex().replace("78", "a1") + "0F\"}"), 0xA1,
     0x0F},
    {"fill", "{\"fill\": 200}", 200, 200},
    {"seed", "{\"seed\": 0}", 0xAF, -1},
};

} // namespace

class TestSimulatorJson : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        QVERIFY(loadJson(benchOf({usbSerial})));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    }

    void floatPatterns_data() {
        QTest::addColumn<std::uint32_t>("bits");
        const std::uint32_t patterns[] = {
            0x00000000, 0x80000000, 0x00000001, 0x80000001, 0x007FFFFF, 0x00800000, 0x80800000,
            0x3DCCCCCD, 0x3F800000, 0x3F800001, 0x3F7FFFFF, 0xBF800000, 0x42AE0000, 0x42BDEB85,
            0x4B7FFFFF, 0x4B800001, 0x7F7FFFFF, 0xFF7FFFFF, 0x7F7FFFFE, 0x7F800000, 0xFF800000,
            0x7FC00000, 0x7FC00001, 0xFFC00000, 0x7F800001, 0xFFFFFFFF, 0x7FBFFFFF, 0x15AE43FD};
        for (const std::uint32_t bits : patterns)
            QTest::newRow(QByteArray::number(bits, 16).constData()) << bits;
    }

    void floatPatterns() {
        QFETCH(std::uint32_t, bits);
        KVA_JIG_CALREFDATA data{};
        std::memcpy(&data.rfWhite.spcData[0], &bits, sizeof bits);
        std::memcpy(&data.rfWhite.spcData[37], &bits, sizeof bits);
        std::memcpy(&data.ambAdp.spcData[0], &bits, sizeof bits);
        std::memcpy(&data.ambAdp.spcData[74], &bits, sizeof bits);
        QVERIFY(sameBytes(reloaded(data), data));
    }

    void floatForms_data() { addRows(floatFormsRows); }

    void floatForms() {
        const FloatFormsRow& given = rowOf(floatFormsRows);
        KVA_JIG_CALREFDATA data{};
        std::memcpy(&data.rfWhite.spcData[5], &given.bits, sizeof given.bits);
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        const json value = instrument(usbSerial)["calibration"]["staged"]["white"]["values"][5];
        QCOMPARE(QByteArray::fromStdString(value.dump()), given.form);
    }

    void randomRecords() {
        for (int round = 0; round < 60; ++round) {
            KVA_JIG_CALREFDATA data{};
            fillRandomly(&data, sizeof data);
            QVERIFY(sameBytes(reloaded(data), data));
            KVA_NETWORKINFO network{};
            fillRandomly(&network, sizeof network);
            std::memset(network.padding, 0, sizeof network.padding);
            QVERIFY(sameBytes(reloaded(network), network));
        }
    }

    void textOfEveryByte() {
        for (int value = 0; value < 256; ++value) {
            KVA_NETWORKINFO network{};
            network.SSID[32] = static_cast<char>(value);
            std::memset(network.EncryptKey, value, sizeof network.EncryptKey);
            QVERIFY2(sameBytes(reloaded(network), network), QByteArray::number(value).constData());
        }
    }

    void textForms_data() { addRows(textFormsRows); }

    void textForms() {
        const TextFormsRow& given = rowOf(textFormsRows);
        KVA_NETWORKINFO network{};
        std::memcpy(network.SSID, given.bytes.constData(),
                    static_cast<std::size_t>(given.bytes.size()));
        QVERIFY(sameBytes(reloaded(network), network));
        const json ssid = instrument(usbSerial)["network"]["pending"]["SSID"];
        QCOMPARE(ssid.is_string(), given.isString);
        if (given.isString)
            QCOMPARE(QByteArray::fromStdString(ssid.get<std::string>()), given.bytes);
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
            QVERIFY2(sameBytes(reloaded(data), data), QByteArray::number(value).constData());
        }
        KVA_JIG_CALREFDATA data{};
        data.whiteSerialNo[0] = 0x12;
        data.ambAdpSerialNo[0] = 0x1A;
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        const json staged = instrument(usbSerial)["calibration"]["staged"];
        QVERIFY(staged["white"]["serialNumber"] == "12000000");
        QVERIFY(staged["ambientAdapter"]["serialNumber"] == json({{"hex", "1a000000"}}));
    }

    void bytesForms_data() { addRows(bytesFormsRows); }

    void bytesForms() {
        const BytesFormsRow& given = rowOf(bytesFormsRows);
        const QByteArray patch =
            "{\"calibration\": {\"committed\": {\"reserved\": " + given.form + "}}}";
        QVERIFY2(KvaSim_Set(usbSerial, patch.constData()), KvaSim_LastError());
        KVA_JIG_CALREFDATA data{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(int{data.reserved[0]}, given.first);
        if (given.last >= 0)
            QCOMPARE(int{data.reserved[2047]}, given.last);
        QVERIFY(sameBytes(reloaded(data), data));
    }

    void wholeBenchIsExact() {
        KvaSim_Reset();
        QVERIFY(connectTo(usbSerial) == KVA_SUCCESS);
        for (const ConnectionCall& call : connectionCalls())
            call.call();
        const std::string text = stateText();
        QVERIFY(!text.empty());
        QVERIFY(KvaSim_LoadJson(text.c_str()));
        QCOMPARE(QByteArray::fromStdString(stateText()), QByteArray::fromStdString(text));
    }

    void decimalCommaLocale() {
        const QByteArray locale = "de_DE.UTF-8";
        if (std::setlocale(LC_ALL, locale.constData()) == nullptr) {
            QCOMPARE(
                QProcess::execute("localedef", {"-i", "de_DE", "-f", "UTF-8",
                                                m_folder.filePath(QString::fromLatin1(locale))}),
                0);
            qputenv("LOCPATH", m_folder.path().toLocal8Bit());
            QVERIFY(std::setlocale(LC_ALL, locale.constData()) != nullptr);
        }
        QCOMPARE(std::localeconv()->decimal_point, ",");
        KVA_JIG_CALREFDATA data{};
        data.rfWhite.spcData[0] = 0.5F;
        data.rfWhite.spcData[1] = 94.96F;
        const KVA_JIG_CALREFDATA read = reloaded(data);
        const json value = instrument(usbSerial)["calibration"]["staged"]["white"]["values"][1];
        std::setlocale(LC_ALL, "C");
        QVERIFY(sameBytes(read, data));
        QCOMPARE(QByteArray::fromStdString(value.dump()), QByteArray("94.96"));
    }

    void defaults() {
        const json value = instrument(usbSerial);
        QVERIFY(value["plugged"] == true);
        QVERIFY(value["port"] == json({{"type", 1}, {"name", "USB"}}));
        QVERIFY(value["device"]["serialNumber"] == usbSerial);
        QVERIFY(value["device"]["firmware"] == json({1, 0, 0}));
        QVERIFY(value["device"]["macAddress"] == "02:00:00:0f:42:41");
        QVERIFY(value["device"]["reserved1"] == json({{"fill", 0}}));
        QVERIFY(value["wirelessModule"] == true);
        QVERIFY(value["network"]["active"] == json({{"APConnectUse", 0},
                                                    {"DHCPUse", 0},
                                                    {"IPAddress", "192.168.0.10"},
                                                    {"SubnetMask", "255.255.255.0"},
                                                    {"DefaultGateway", "192.168.0.1"},
                                                    {"DNS", "192.168.0.1"},
                                                    {"SSID", ""},
                                                    {"EncryptKey", ""}}));
        QVERIFY(value["network"]["pending"].is_null());
        QVERIFY(value["powerOffMode"] == 0);
        const json committed = value["calibration"]["committed"];
        QVERIFY(committed["white"]["serialNumber"] == "10000001");
        QVERIFY(committed["ambientAdapter"]["serialNumber"] == "00010001");
        QVERIFY(value["calibration"]["staged"].is_null());
        QVERIFY(state()["faults"] == json::array());
    }

    void pendingTakesLeftOutFieldsOfActive() {
        QVERIFY(set(usbSerial, {{"network",
                                 {{"active", {{"SSID", "one"}, {"DNS", "1.2.3.4"}}},
                                  {"pending", {{"SSID", "two"}}}}}}));
        const json pending = instrument(usbSerial)["network"]["pending"];
        QVERIFY(pending["SSID"] == "two");
        QVERIFY(pending["DNS"] == "1.2.3.4");
    }

    void stagedTakesLeftOutFieldsOfCommitted() {
        const json staged = {{"white", {{"serialNumber", "55555555"}}}};
        QVERIFY(set(usbSerial, {{"calibration", {{"staged", staged}}}}));
        const json calibration = instrument(usbSerial)["calibration"];
        QVERIFY(calibration["staged"]["white"]["serialNumber"] == "55555555");
        QVERIFY(calibration["staged"]["white"]["values"] ==
                calibration["committed"]["white"]["values"]);
        QVERIFY(calibration["staged"]["reserved"] == calibration["committed"]["reserved"]);
    }

private:
    QTemporaryDir m_folder;
};

static const bool isAdded = simtest::addTest<TestSimulatorJson>();
#include "tst_simulator_json.moc"
