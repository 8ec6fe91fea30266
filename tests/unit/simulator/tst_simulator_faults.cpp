// Rules that make calls fail.

#include "SimulatorTest.h"
#include "tests/support/ResultNames.h"

using namespace simtest;

namespace {

struct ResultRow {
    QByteArray name;
    QByteArray result; ///< in the rule
    int code;
    QByteArray resultName; ///< in the log
};

struct CallsRow {
    const char* name;
    QByteArray call;
    QByteArray failing;
};

const CallsRow callsRows[] = {
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
        QVector<ResultRow> rows = {{"unknown bits", "10", 10, "KVA_WARNING_BATTERY_EMPTY"}};
        const auto add = [&rows](int code, const char* name) {
            rows.append({QByteArray::number(code), QByteArray::number(code), code, name});
        };
        for (const ResultName& named : resultNames) {
            add(named.code, named.text);
            rows.append({named.text, QByteArray("\"") + named.text + '"', named.code, named.text});
        }
        for (const int unnamed : {-9900, -1, 8, INT32_MIN})
            add(unnamed, "");
        addRows(rows);
    }
    void results() {
        const auto row = rowOf<ResultRow>();
        const QByteArray rule = R"({"function": "KVA_Connect", "result": )" + row.result + '}';
        QVERIFY2(KvaSim_AddFault(rule.constData()), KvaSim_LastError());
        QCOMPARE(connectTo(usbSerial), row.code);
        const json call = callLog().back();
        QVERIFY(call["result"] == row.code);
        QCOMPARE(call["resultName"].get<std::string>(), row.resultName.toStdString());
        const json listed = faults();
        QCOMPARE(listed.size(), std::size_t{1});
        KvaSim_ClearFaults();
        KVA_Disconnect();
        QVERIFY(addFault(listed[0]));
        QCOMPARE(connectTo(usbSerial), row.code);
    }

    void whichCall_data() { addRows(callsRows); }
    void whichCall() {
        const auto row = rowOf<CallsRow>();
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        const QByteArray rule = R"({"function": "KVA_GetShutdownTime", "result": -9799)" +
                                (row.call.isEmpty() ? row.call : ", \"call\": " + row.call) + '}';
        QVERIFY2(KvaSim_AddFault(rule.constData()), KvaSim_LastError());
        QByteArray failed;
        for (int round = 0; round < 6; ++round) {
            std::uint8_t mode = 0;
            failed += KVA_GetShutdownTime(&mode) == KVA_ERROR_NAK ? 'x' : '-';
            KVA_DEVICEINFO info{};
            QCOMPARE(KVA_GetDeviceInfo(&info), KVA_SUCCESS);
        }
        QCOMPARE(failed, row.failing);
    }

    void everyFunction_data() {
        std::vector<Call> calls = connectionCalls();
        calls.push_back({"KVA_RegisterDeviceEventHandler",
                         [] { return KVA_RegisterDeviceEventHandler(recordEvent); }});
        calls.push_back({"KVA_GetDevicePortList", [] { return std::min(portCount(), 0); }});
        calls.push_back({"KVA_Connect", [] { return connectTo(usbSerial); }});
        addRows(calls);
    }
    void everyFunction() {
        const auto row = rowOf<Call>();
        if (QByteArray(row.name) != "KVA_Connect")
            QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QVERIFY(addFaultOf(row.name, {{"call", 1}, {"result", "KVA_ERROR_NSP"}}));
        const json before = state();
        QCOMPARE(row.call(), KVA_ERROR_NSP);
        QVERIFY(state() == before);
        QCOMPARE(row.call(), firstAnswerOf(row));
    }

    void failedCallFillsNothing() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QVERIFY(addFaultOf("KVA_GetShutdownTime", {{"result", "KVA_ERROR"}}));
        std::uint8_t mode = 99;
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_ERROR);
        QCOMPARE(int{mode}, 99);
    }

    void usedUpRuleIsGone() {
        QVERIFY(addFaultOf("KVA_Connect", {{"times", 2}, {"result", -9999}}));
        QCOMPARE(connectTo(usbSerial), KVA_ERROR);
        QVERIFY(faults()[0]["times"] == 1);
        QCOMPARE(connectTo(usbSerial), KVA_ERROR);
        QVERIFY(faults() == json::array());
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
    }

    void clear() {
        json bench = benchOf({usbSerial});
        bench["faults"].push_back({{"function", "KVA_Connect"}, {"result", "KVA_ERROR_NAK"}});
        QVERIFY(loadJson(bench));
        QCOMPARE(connectTo(usbSerial), KVA_ERROR_NAK);
        KvaSim_ClearFaults();
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
    }

    void refused_data() { addRows(refusedRows); }
    void refused() {
        const auto row = rowOf<RefusedRow>();
        QVERIFY(!KvaSim_AddFault(row.name.constData()));
        QVERIFY2(wasRefusedFor(row.path), KvaSim_LastError());
        QVERIFY(faults() == json::array());
    }

private:
    TestFolder m_folder;
};

TEST_CLASS(TestSimulatorFaults)
#include "tst_simulator_faults.moc"
