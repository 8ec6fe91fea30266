// Sequences of operations: what each of them answers, and which events come of them. Rules that
// make calls fail.

#include "SimulatorTest.h"
#include "tests/support/ResultNames.h"

#include <map>

using namespace simtest;

namespace {

struct ResultRow {
    QByteArray name;
    QByteArray result; ///< in the rule
    int code;
    QByteArray resultName; ///< in the log
};

// Which calls a rule is for, and which of six fail then.
const TextCase callsRows[] = {
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

// Rules, and the path of what is refused.
const NamedText refusedRows[] = {
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

struct SessionRow {
    const char* name;
    const char* operations;
    QByteArray answers;
    const char* rules = ""; ///< which the operation "rules" adds, as JSON
};

const SessionRow sessionRows[] = {
    {"connect twice", "connect connect connect-other info", "0 -9995 -9995 0/1000001"},
    {"connect after a lost connection",
     "connect unplug connect connect-other disconnect plug connect mode", "0 0 -9994 0 0 0 0 0/0"},
    {"disconnect ends the connection", "connect disconnect disconnect connect-other",
     "0 0 -9998 0"},
    {"the list follows the plug",
     "unplug list connect-other disconnect other-unplug list count plug list", "0 1 0 0 0 0 0 0 1"},
    {"commit without staged data", "connect commit stage commit commit", "0 -9985 0 0 -9985"},
    {"unplugging keeps staged data", "connect stage unplug plug connect commit", "0 0 0 0 0 0"},

    {"a negative result does nothing", "rules connect mode connect disconnect connect",
     "-9998 -9998 0 -9999 -9995",
     R"({"function": "KVA_Connect", "call": 1, "result": "KVA_ERROR_CONNECT"},
        {"function": "KVA_Disconnect", "times": 1, "result": "KVA_ERROR"})"},
    {"a warning performs the call", "connect rules set-mode mode disconnect", "0 2 2/3 2",
     R"({"function": "*", "result": "KVA_WARNING_BATTERY_EMPTY"})"},
    {"a warning does not hide a failure", "rules disconnect connect-null", "-9998 -9992",
     R"({"function": "*", "result": 1})"},
    {"any function is counted apart", "connect rules mode info mode info mode",
     "0 0/0 0/1000001 -9799 -9799 0/0",
     R"({"function": "*", "call": 2, "result": "KVA_ERROR_NAK"})"},
    {"serial number of a rule",
     "rules connect mode disconnect connect mode disconnect connect mode disconnect "
     "connect-other mode mode connect-other",
     "0 0/0 0 0 0/0 0 0 0/0 0 0 0/0 -9799 -9799",
     R"({"function": "*", "call": 2, "serialNumber": 1000002, "result": "KVA_ERROR_NAK"})"},
    {"the first result wins", "rules connect", "-9799",
     R"({"function": "KVA_Connect", "result": "KVA_ERROR_NAK"},
        {"function": "*", "result": "KVA_ERROR_NAV"})"},
    {"counted from adding", "connect mode rules mode", "0 0/0 -9799",
     R"({"function": "KVA_GetShutdownTime", "call": 1, "result": -9799})"},

    {"dropped connection", "connect rules disconnect mode disconnect connect disconnect",
     "0 0 0/0 0 0 -9998",
     R"({"function": "KVA_Disconnect", "dropped": true, "times": 1},
        {"function": "KVA_Connect", "dropped": true, "times": 1})"},
    {"stale ports", "other-unplug rules list clear list", "0 2 0 1",
     R"({"function": "KVA_GetDevicePortList", "stale": true})"},
    {"short list", "rules count list count", "2 1 1",
     R"({"function": "KVA_GetDevicePortList", "call": "2-3", "shortList": 1})"},
    {"short list for any function", "rules list", "0", R"({"function": "*", "shortList": 0})"},
    {"unplugged during connect", "rules connect events disconnect list", "-9990 [] -9998 1",
     R"({"function": "KVA_Connect", "unplug": "during", "times": 1})"},
    {"unplugged from the list", "connect rules list list", "0 2 1",
     R"({"function": "KVA_GetDevicePortList", "unplug": "after", "times": 1})"},
    {"another one unplugged from the list", "connect unplug rules list", "0 0 0",
     R"({"function": "KVA_GetDevicePortList", "unplug": "before", "instrument": 1000002})"},
};

// Operations, and the codes of the events that come of them.
const NamedText eventsRows[] = {
    {"", ""},
    {"connect disconnect", ""},
    {"plug", ""},
    {"unplug", ""},
    {"unplug plug", "0"},
    {"unplug plug plug", "0"},
    {"connect unplug", "6"},
    {"connect unplug unplug", "6"},
    {"connect unplug plug", "6 0"},
    {"connect unplug plug unplug", "6 0"},
    {"connect unplug plug connect unplug", "6 0 6"},
    {"connect disconnect unplug", ""},
    {"cycle", ""},
    {"unplug cycle", ""},
    {"connect cycle", "6 0"},
    {"connect cycle cycle", "6 0"},
    {"connect cycle connect cycle", "6 0 6 0"},
    {"connect unplug cycle", "6"},
    {"connect other-unplug other-cycle", ""},
    {"connect other-unplug other-plug", "0"},
    {"connect set-off", "6"},
    {"connect set-off set-on", "6 0"},
};

/** The result, and, unless it is negative, what was given with it. */
template <typename Number>
QByteArray answer(KVA_RESULT result, const Number& given) {
    const QByteArray text = QByteArray::number(result);
    return result < 0 ? text : text + '/' + QByteArray::number(given);
}

void addFaults(const json& rules) {
    for (const json& rule : rules)
        QVERIFY2(addFault(rule), KvaSim_LastError());
}

/** Performs these, each named by a word. @return what they answer, joined by blanks; 0: done */
QByteArray answersTo(const QByteArray& operations, const char* rules = "") {
    const std::map<QByteArray, std::function<int()>> numbers = {
        {"connect", [] { return connectTo(usbSerial); }},
        {"connect-other", [] { return connectTo(networkSerial); }},
        {"connect-null", [] { return KVA_Connect(nullptr, 10); }},
        {"disconnect", KVA_Disconnect},
        {"list", [] { return static_cast<int>(ports().size()); }},
        {"count", portCount},
        {"set-mode", [] { return send(KVA_SetShutdownTime, 3); }},
        {"stage", [] { return send(KVA_JIG_SetFactoryCalib_CALREFDATA); }},
        {"commit", KVA_JIG_SetFactoryCalib_WriteSector},
        {"plug", [] { return KvaSim_Plug(usbSerial) - 1; }},
        {"unplug", [] { return KvaSim_Unplug(usbSerial) - 1; }},
        {"cycle", [] { return KvaSim_PowerCycle(usbSerial) - 1; }},
        {"other-plug", [] { return KvaSim_Plug(networkSerial) - 1; }},
        {"other-unplug", [] { return KvaSim_Unplug(networkSerial) - 1; }},
        {"other-cycle", [] { return KvaSim_PowerCycle(networkSerial) - 1; }},
        {"set-off", [] { return KvaSim_Set(usbSerial, R"({"plugged": false})") - 1; }},
        {"set-on", [] { return KvaSim_Set(usbSerial, R"({"plugged": true})") - 1; }},
        {"clear", [] { return (KvaSim_ClearFaults(), 0); }},
    };
    QByteArrayList answers;
    KVA_DEVICEINFO info{};
    std::uint8_t mode = 99;
    for (const QByteArray& operation : operations.simplified().split(' ')) {
        if (operation == "rules")
            addFaults(json::parse(std::string("[") + rules + ']'));
        else if (operation == "info")
            answers += answer(KVA_GetDeviceInfo(&info), info.serialNumber);
        else if (operation == "mode")
            answers += answer(KVA_GetShutdownTime(&mode), mode);
        else if (operation == "events")
            answers += '[' + deliveredCodes() + ']';
        else if (!operation.isEmpty())
            answers += QByteArray::number(numbers.at(operation)());
    }
    return answers.join(' ');
}

} // namespace

class TestSimulatorSessions : public SimulatorTest {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        QVERIFY(loadJson(benchOf({usbSerial, networkSerial})));
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_SUCCESS);
    }

    void sessions_data() { addRows(sessionRows); }
    void sessions() {
        const auto row = rowOf<SessionRow>();
        QCOMPARE(answersTo(row.operations, row.rules), row.answers);
    }

    void eventsOfOperations_data() { addRows(eventsRows); }
    void eventsOfOperations() {
        const auto row = rowOf<NamedText>();
        const QByteArray answers = answersTo(row.name);
        QVERIFY2(!answers.contains('-'), answers.constData());
        QCOMPARE(deliveredCodes(), row.value);
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
        const auto row = rowOf<TextCase>();
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        const QByteArray rule = R"({"function": "KVA_GetShutdownTime", "result": -9799)" +
                                (row.given.isEmpty() ? row.given : ", \"call\": " + row.given) +
                                '}';
        QVERIFY2(KvaSim_AddFault(rule.constData()), KvaSim_LastError());
        QByteArray failed;
        for (int round = 0; round < 6; ++round) {
            std::uint8_t mode = 0;
            failed += KVA_GetShutdownTime(&mode) == KVA_ERROR_NAK ? 'x' : '-';
            KVA_DEVICEINFO info{};
            QCOMPARE(KVA_GetDeviceInfo(&info), KVA_SUCCESS);
        }
        QCOMPARE(failed, row.expected);
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

    void refused_data() { addRows(refusedRows); }
    void refused() {
        const auto row = rowOf<NamedText>();
        QVERIFY(!KvaSim_AddFault(row.name.constData()));
        QVERIFY2(wasRefusedFor(row.value), KvaSim_LastError());
        QVERIFY(faults() == json::array());
    }
};

TEST_CLASS(TestSimulatorSessions)
#include "tst_simulator_sessions.moc"
