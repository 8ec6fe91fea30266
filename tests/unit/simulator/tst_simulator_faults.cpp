// Rules that make calls fail.

#include "SimulatorTest.h"

using namespace simtest;

class TestSimulatorFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void results_data();
    void results();
    void whichCall_data();
    void whichCall();
    void everyFunction_data();
    void everyFunction();
    void negativeResultDoesNothing();
    void warningPerformsTheCall();
    void warningDoesNotHideFailure();
    void anyFunctionIsCountedApart();
    void serialNumberOfRule();
    void usedUpRuleIsGone();
    void firstResultWins();
    void countedFromAdding();
    void clear();
    void refused_data();
    void refused();

private:
    QTemporaryDir m_folder;
};

void TestSimulatorFaults::init() {
    startClean(m_folder);
    QVERIFY(loadJson(benchOf({usbSerial, networkSerial})));
}

void TestSimulatorFaults::cleanup() {
    KVA_RegisterDeviceEventHandler(nullptr);
    KvaSim_ClearFaults();
}

void TestSimulatorFaults::results_data() {
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
    QTest::newRow("unknown bits") << QByteArray("10") << 10
                                  << QByteArray("KVA_WARNING_BATTERY_EMPTY");
}

void TestSimulatorFaults::results() {
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

void TestSimulatorFaults::whichCall_data() {
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<QByteArray>("failing"); // of six calls
    QTest::newRow("left out") << QByteArray() << QByteArray("xxxxxx");
    QTest::newRow("every") << QByteArray("\"every\"") << QByteArray("xxxxxx");
    QTest::newRow("first") << QByteArray("1") << QByteArray("x-----");
    QTest::newRow("third") << QByteArray("3") << QByteArray("--x---");
    QTest::newRow("third as text") << QByteArray("\"3\"") << QByteArray("--x---");
    QTest::newRow("range") << QByteArray("\"2-5\"") << QByteArray("-xxxx-");
    QTest::newRow("range of one") << QByteArray("\"4-4\"") << QByteArray("---x--");
    QTest::newRow("late range") << QByteArray("\"5-999999999\"") << QByteArray("----xx");
    QTest::newRow("never reached") << QByteArray("7") << QByteArray("------");
    QTest::newRow("two times") << QByteArray("\"every\", \"times\": 2") << QByteArray("xx----");
    QTest::newRow("range and times") << QByteArray("\"3-6\", \"times\": 1") << QByteArray("--x---");
}

void TestSimulatorFaults::whichCall() {
    QFETCH(QByteArray, call);
    QFETCH(QByteArray, failing);
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    const QByteArray rule = R"({"function": "KVA_GetShutdownTime", "result": -9799)" +
                            (call.isEmpty() ? call : ", \"call\": " + call) + '}';
    QVERIFY2(KvaSim_AddFault(rule.constData()), KvaSim_LastError());
    QByteArray failed;
    for (int round = 0; round < 6; ++round) {
        std::uint8_t mode = 0;
        failed += KVA_GetShutdownTime(&mode) == KVA_ERROR_NAK ? 'x' : '-';
        KVA_DEVICEINFO info{};
        QCOMPARE(KVA_GetDeviceInfo(&info), KVA_RESULT{KVA_SUCCESS});
    }
    QCOMPARE(failed, failing);
}

void TestSimulatorFaults::everyFunction_data() {
    addConnectionCallRows();
    QTest::newRow("KVA_RegisterDeviceEventHandler") << -1;
    QTest::newRow("KVA_GetDevicePortList") << -2;
    QTest::newRow("KVA_Connect") << -3;
}

void TestSimulatorFaults::everyFunction() {
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

void TestSimulatorFaults::negativeResultDoesNothing() {
    QVERIFY(addFault({{"function", "KVA_Connect"}, {"call", 1}, {"result", "KVA_ERROR_CONNECT"}}));
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

void TestSimulatorFaults::warningPerformsTheCall() {
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    QVERIFY(addFault({{"function", "*"}, {"result", "KVA_WARNING_BATTERY_EMPTY"}}));
    const std::uint8_t mode = 3;
    QCOMPARE(KVA_SetShutdownTime(&mode), KVA_RESULT{KVA_WARNING_BATTERY_EMPTY});
    std::uint8_t read = 0;
    QCOMPARE(KVA_GetShutdownTime(&read), KVA_RESULT{KVA_WARNING_BATTERY_EMPTY});
    QCOMPARE(int{read}, 3);
    QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_WARNING_BATTERY_EMPTY});
}

void TestSimulatorFaults::warningDoesNotHideFailure() {
    QVERIFY(addFault({{"function", "*"}, {"result", 1}}));
    QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_ERROR_CONNECT});
    QCOMPARE(KVA_Connect(nullptr, 10), KVA_RESULT{KVA_ERROR_ARGUMENT});
}

void TestSimulatorFaults::anyFunctionIsCountedApart() {
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

void TestSimulatorFaults::serialNumberOfRule() {
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

void TestSimulatorFaults::usedUpRuleIsGone() {
    QVERIFY(addFault({{"function", "KVA_Connect"}, {"times", 2}, {"result", -9999}}));
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR});
    QVERIFY(faults()[0]["times"] == 1);
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR});
    QVERIFY(faults() == json::array());
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
}

void TestSimulatorFaults::firstResultWins() {
    QVERIFY(addFault({{"function", "KVA_Connect"}, {"result", "KVA_ERROR_NAK"}}));
    QVERIFY(addFault({{"function", "*"}, {"result", "KVA_ERROR_NAV"}}));
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_NAK});
}

void TestSimulatorFaults::countedFromAdding() {
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    std::uint8_t mode = 0;
    QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
    QVERIFY(addFault({{"function", "KVA_GetShutdownTime"}, {"call", 1}, {"result", -9799}}));
    QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_ERROR_NAK});
}

void TestSimulatorFaults::clear() {
    json bench = benchOf({usbSerial});
    bench["faults"].push_back({{"function", "KVA_Connect"}, {"result", "KVA_ERROR_NAK"}});
    QVERIFY(loadJson(bench));
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_NAK});
    KvaSim_ClearFaults();
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
}

void TestSimulatorFaults::refused_data() {
    QTest::addColumn<QByteArray>("rule");
    QTest::addColumn<QByteArray>("path");
    const auto row = [](const char* rule, const char* path) {
        QTest::newRow(rule) << QByteArray(rule) << QByteArray(path);
    };
    row("5", "the document");
    row(R"({"result": 0})", "function");
    row(R"({"function": "KVA_Connect"})", "result");
    row(R"({"function": "Connect", "result": 0})", "function");
    row(R"({"function": 1, "result": 0})", "function");
    row(R"({"function": "*", "result": "KVA_OOPS"})", "result");
    row(R"({"function": "*", "result": "KVA_WARNING_BATTERY_EMPTY/"})", "result");
    row(R"({"function": "*", "result": 1.5})", "result");
    row(R"({"function": "*", "result": 2147483648})", "result");
    row(R"({"function": "*", "result": null})", "result");
    row(R"({"function": "*", "result": 0, "call": 0})", "call");
    row(R"({"function": "*", "result": 0, "call": -1})", "call");
    row(R"({"function": "*", "result": 0, "call": ""})", "call");
    row(R"({"function": "*", "result": 0, "call": "0-2"})", "call");
    row(R"({"function": "*", "result": 0, "call": "5-2"})", "call");
    row(R"({"function": "*", "result": 0, "call": "2-"})", "call");
    row(R"({"function": "*", "result": 0, "call": "2-3-4"})", "call");
    row(R"({"function": "*", "result": 0, "call": "9999999999"})", "call");
    row(R"({"function": "*", "result": 0, "call": 4294967295})", "call");
    row(R"({"function": "*", "result": 0, "call": true})", "call");
    row(R"({"function": "*", "result": 0, "times": 0})", "times");
    row(R"({"function": "*", "result": 0, "serialNumber": "1"})", "serialNumber");
    row(R"({"function": "*", "result": 0, "delay": 1})", "delay");
}

void TestSimulatorFaults::refused() {
    QFETCH(QByteArray, rule);
    QFETCH(QByteArray, path);
    QVERIFY(!KvaSim_AddFault(rule.constData()));
    QVERIFY2(lastError().startsWith(path + ": "), KvaSim_LastError());
    QVERIFY(faults() == json::array());
}

QTEST_GUILESS_MAIN(TestSimulatorFaults)
#include "tst_simulator_faults.moc"
