// Rules that make calls fail.

#include "SimulatorTest.h"

using namespace simtest;

namespace {

struct WhichCallRow {
    const char* name;
    QByteArray call;
    QByteArray failing;
};

const WhichCallRow whichCallRows[] = {
    {"left out", "", "xxxxxx"},
    {"every", "\"every\"", "xxxxxx"},
    {"first", "1", "x-----"},
    {"third", "3", "--x---"},
    {"third as text", "\"3\"", "--x---"},
    {"range", "\"2-5\"", "-xxxx-"},
    {"range of one", "\"4-4\"", "---x--"},
    {"late range", "\"5-999999999\"", "----xx"},
    {"never reached", "7", "------"},
    {"two times", "\"every\", \"times\": 2", "xx----"},
    {"range and times", "\"3-6\", \"times\": 1", "--x---"},
};

struct RefusedRow {
    QByteArray name;
    QByteArray path;
};

const RefusedRow refusedRows[] = {
    {"5", "the document"},
    {R"({"result": 0})", "function"},
    {R"({"function": "KVA_Connect"})", "result"},
    {R"({"function": "Connect", "result": 0})", "function"},
    {R"({"function": 1, "result": 0})", "function"},
    {R"({"function": "*", "result": "KVA_OOPS"})", "result"},
    {R"({"function": "*", "result": "KVA_WARNING_BATTERY_EMPTY/"})", "result"},
    {R"({"function": "*", "result": 1.5})", "result"},
    {R"({"function": "*", "result": 2147483648})", "result"},
    {R"({"function": "*", "result": null})", "result"},
    {R"({"function": "*", "result": 0, "call": 0})", "call"},
    {R"({"function": "*", "result": 0, "call": -1})", "call"},
    {R"({"function": "*", "result": 0, "call": ""})", "call"},
    {R"({"function": "*", "result": 0, "call": "0-2"})", "call"},
    {R"({"function": "*", "result": 0, "call": "5-2"})", "call"},
    {R"({"function": "*", "result": 0, "call": "2-"})", "call"},
    {R"({"function": "*", "result": 0, "call": "2-3-4"})", "call"},
    {R"({"function": "*", "result": 0, "call": "9999999999"})", "call"},
    {R"({"function": "*", "result": 0, "call": 4294967295})", "call"},
    {R"({"function": "*", "result": 0, "call": true})", "call"},
    {R"({"function": "*", "result": 0, "times": 0})", "times"},
    {R"({"function": "*", "result": 0, "serialNumber": "1"})", "serialNumber"},
    {R"({"function": "*", "result": 0, "delay": 1})", "delay"},
};

} // namespace

class TestSimulatorFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        QVERIFY(loadJson(benchOf({usbSerial, networkSerial})));
    }

    void cleanup() {
        KVA_RegisterDeviceEventHandler(nullptr);
        KvaSim_ClearFaults();
    }

    void results_data() {
        QTest::addColumn<QByteArray>("given");
        QTest::addColumn<int>("result");
        QTest::addColumn<QByteArray>("name");
        const auto row = [](int result, const char* name) {
            QTest::newRow(name) << "\"" + QByteArray(name) + "\"" << result << QByteArray(name);
            QTest::newRow(QByteArray::number(result))
                << QByteArray::number(result) << result << QByteArray(name);
        };
        row(-9999, "KVA_ERROR");
        row(-9998, "KVA_ERROR_CONNECT");
        row(-9997, "KVA_ERROR_DISCONNECT");
        row(-9996, "KVA_ERROR_CONNECT_TIMEOUT");
        row(-9995, "KVA_ERROR_CONNECT_ALREADY");
        row(-9994, "KVA_ERROR_INSTRUMENT_UNAVAILABLE");
        row(-9993, "KVA_ERROR_INSTRUMENT_INFORMATION");
        row(-9992, "KVA_ERROR_ARGUMENT");
        row(-9991, "KVA_ERROR_COMMUNICATION_SEND");
        row(-9990, "KVA_ERROR_COMMUNICATION_RECEIVE");
        row(-9989, "KVA_ERROR_COMMUNICATION_CHECKSUM");
        row(-9988, "KVA_ERROR_COMMUNICATION_PARAM");
        row(-9987, "KVA_ERROR_COMMUNICATION_TIMEOUT");
        row(-9986, "KVA_ERROR_CANT_USED");
        row(-9985, "KVA_ERROR_NO_DATA");
        row(-9799, "KVA_ERROR_NAK");
        row(-9798, "KVA_ERROR_NAV");
        row(-9797, "KVA_ERROR_NSP");
        row(-9796, "KVA_ERROR_CNF");
        row(-9795, "KVA_ERROR_NDT");
        row(-9794, "KVA_ERROR_NEQ");
        row(0, "KVA_SUCCESS");
        row(1, "KVA_WARNING_WCALIB_TEMP");
        row(2, "KVA_WARNING_BATTERY_EMPTY");
        row(4, "KVA_WARNING_INITIALDATE_SETTING");
        row(5, "KVA_WARNING_WCALIB_TEMP/KVA_WARNING_INITIALDATE_SETTING");
        for (const int unnamed : {-9900, -1, 8, INT32_MIN})
            QTest::newRow(QByteArray::number(unnamed))
                << QByteArray::number(unnamed) << unnamed << QByteArray();
        QTest::newRow("unknown bits")
            << QByteArray("10") << 10 << QByteArray("KVA_WARNING_BATTERY_EMPTY");
    }

    void results() {
        QFETCH(QByteArray, given);
        QFETCH(int, result);
        QFETCH(QByteArray, name);
        const QByteArray rule = "{\"function\": \"KVA_Connect\", \"result\": " + given + '}';
        QVERIFY2(KvaSim_AddFault(rule.constData()), KvaSim_LastError());
        QCOMPARE(connectTo(usbSerial), result);
        const json call = callLog().back();
        QVERIFY(call["result"] == result);
        QCOMPARE(QByteArray::fromStdString(call["resultName"].get<std::string>()), name);
        const json listed = faults();
        QCOMPARE(listed.size(), std::size_t{1});
        KvaSim_ClearFaults();
        KVA_Disconnect();
        QVERIFY(addFault(listed[0]));
        QCOMPARE(connectTo(usbSerial), result);
    }

    void whichCall_data() { addRows(whichCallRows); }

    void whichCall() {
        const WhichCallRow& given = rowOf(whichCallRows);
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        const QByteArray rule = R"({"function": "KVA_GetShutdownTime", "result": -9799)" +
                                (given.call.isEmpty() ? given.call : ", \"call\": " + given.call) +
                                '}';
        QVERIFY2(KvaSim_AddFault(rule.constData()), KvaSim_LastError());
        QByteArray failed;
        for (int round = 0; round < 6; ++round) {
            std::uint8_t mode = 0;
            failed += KVA_GetShutdownTime(&mode) == KVA_ERROR_NAK ? 'x' : '-';
            KVA_DEVICEINFO info{};
            QCOMPARE(KVA_GetDeviceInfo(&info), KVA_RESULT{KVA_SUCCESS});
        }
        QCOMPARE(failed, given.failing);
    }

    void everyFunction_data() {
        addConnectionCallRows();
        QTest::newRow("KVA_RegisterDeviceEventHandler") << -1;
        QTest::newRow("KVA_GetDevicePortList") << -2;
        QTest::newRow("KVA_Connect") << -3;
    }

    void everyFunction() {
        QFETCH(int, index);
        const KVA_PORTINFO port = portOf(usbSerial);
        const auto call = [&]() -> KVA_RESULT {
            std::int32_t count = 0;
            if (index == -1)
                return KVA_RegisterDeviceEventHandler(recordEvent);
            if (index == -2)
                return KVA_GetDevicePortList(nullptr, &count, 0);
            if (index == -3)
                return KVA_Connect(&port, 10);
            return connectionCalls().at(static_cast<std::size_t>(index)).call();
        };
        if (index >= 0)
            QCOMPARE(KVA_Connect(&port, 10), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(addFault(
            {{"function", QTest::currentDataTag()}, {"call", 1}, {"result", "KVA_ERROR_NSP"}}));
        const json before = state();
        QCOMPARE(call(), KVA_RESULT{KVA_ERROR_NSP});
        QVERIFY(state() == before);
        const bool needsStagedData =
            QByteArray(QTest::currentDataTag()) == "KVA_JIG_SetFactoryCalib_WriteSector";
        QCOMPARE(call(), KVA_RESULT{needsStagedData ? KVA_ERROR_NO_DATA : KVA_SUCCESS});
    }

    void negativeResultDoesNothing() {
        QVERIFY(
            addFault({{"function", "KVA_Connect"}, {"call", 1}, {"result", "KVA_ERROR_CONNECT"}}));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_CONNECT});
        std::uint8_t mode = 99;
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_ERROR_CONNECT});
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(addFault({{"function", "KVA_Disconnect"}, {"times", 1}, {"result", "KVA_ERROR"}}));
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_ERROR});
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_CONNECT_ALREADY});
        QVERIFY(addFault({{"function", "KVA_GetShutdownTime"}, {"result", "KVA_ERROR"}}));
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_ERROR});
        QCOMPARE(int{mode}, 99);
    }

    void warningPerformsTheCall() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(addFault({{"function", "*"}, {"result", "KVA_WARNING_BATTERY_EMPTY"}}));
        const std::uint8_t mode = 3;
        QCOMPARE(KVA_SetShutdownTime(&mode), KVA_RESULT{KVA_WARNING_BATTERY_EMPTY});
        std::uint8_t read = 0;
        QCOMPARE(KVA_GetShutdownTime(&read), KVA_RESULT{KVA_WARNING_BATTERY_EMPTY});
        QCOMPARE(int{read}, 3);
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_WARNING_BATTERY_EMPTY});
    }

    void warningDoesNotHideFailure() {
        QVERIFY(addFault({{"function", "*"}, {"result", 1}}));
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_ERROR_CONNECT});
        QCOMPARE(KVA_Connect(nullptr, 10), KVA_RESULT{KVA_ERROR_ARGUMENT});
    }

    void anyFunctionIsCountedApart() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(addFault({{"function", "*"}, {"call", 2}, {"result", "KVA_ERROR_NAK"}}));
        std::uint8_t mode = 0;
        KVA_DEVICEINFO info{};
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_GetDeviceInfo(&info), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_ERROR_NAK});
        QCOMPARE(KVA_GetDeviceInfo(&info), KVA_RESULT{KVA_ERROR_NAK});
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
    }

    void serialNumberOfRule() {
        QVERIFY(addFault({{"function", "*"},
                          {"call", 2},
                          {"serialNumber", networkSerial},
                          {"result", "KVA_ERROR_NAK"}}));
        std::uint8_t mode = 0;
        for (int round = 0; round < 3; ++round) {
            QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
            QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
            QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
        }
        QCOMPARE(connectTo(networkSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_ERROR_NAK});
        QCOMPARE(connectTo(networkSerial), KVA_RESULT{KVA_ERROR_NAK});
    }

    void usedUpRuleIsGone() {
        QVERIFY(addFault({{"function", "KVA_Connect"}, {"times", 2}, {"result", -9999}}));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR});
        QVERIFY(faults()[0]["times"] == 1);
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR});
        QVERIFY(faults() == json::array());
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    }

    void firstResultWins() {
        QVERIFY(addFault({{"function", "KVA_Connect"}, {"result", "KVA_ERROR_NAK"}}));
        QVERIFY(addFault({{"function", "*"}, {"result", "KVA_ERROR_NAV"}}));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_NAK});
    }

    void countedFromAdding() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        std::uint8_t mode = 0;
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(addFault({{"function", "KVA_GetShutdownTime"}, {"call", 1}, {"result", -9799}}));
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_ERROR_NAK});
    }

    void clear() {
        json bench = benchOf({usbSerial});
        bench["faults"].push_back({{"function", "KVA_Connect"}, {"result", "KVA_ERROR_NAK"}});
        QVERIFY(loadJson(bench));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_NAK});
        KvaSim_ClearFaults();
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    }

    void refused_data() { addRows(refusedRows); }

    void refused() {
        const RefusedRow& given = rowOf(refusedRows);
        QVERIFY(!KvaSim_AddFault(given.name.constData()));
        QVERIFY2(lastError().startsWith(given.path + ": "), KvaSim_LastError());
        QVERIFY(faults() == json::array());
    }

private:
    QTemporaryDir m_folder;
};

static const bool isAdded = simtest::addTest<TestSimulatorFaults>();
#include "tst_simulator_faults.moc"
