#include "tests/support/ResultNames.h"
#include "tests/unit/instrument/ControllerFixture.h"

#include <climits>

namespace {

using Run = bool (*)(CKvaSdk_Ctrl& controller);

/** An operation that calls the library. */
struct Operation {
    const char* name;
    Run run;
    QString successLine; ///< logged; empty: none
    QString failureLine;
    bool isConnected = true;
    bool keepsLastResult = true; ///< in m_lastResult
};

const QString portLine = "port count[1] \n";
const QString getFailed = "KVA_JIG_GetFactoryCalib_CALREFDATA() failed.\n";

template <bool (CKvaSdk_Ctrl::*method)()>
bool runs(CKvaSdk_Ctrl& controller) {
    return (controller.*method)();
}

bool connects(CKvaSdk_Ctrl& controller) {
    return controller.Connect(0, 10);
}

/** @tparam index  of the accessory, whose file is in the working directory */
template <int index>
bool registers(CKvaSdk_Ctrl& controller) {
    return (controller.*accessories[index].write)(accessories[index].name);
}

bool readsPowerOff(CKvaSdk_Ctrl& controller) {
    uint8_t mode = 9;
    return controller.GetShutdownTime(mode);
}

bool writesPowerOff(CKvaSdk_Ctrl& controller) {
    return controller.SetShutdownTime(3);
}

/** All of them. */
const Operation operations[] = {
    {"GetDevicePortList", runs<&C::GetDevicePortList>, portLine, portLine},
    {"Connect", connects, "", "conect error \n", false},
    {"Disconnect", runs<&C::Disconnect>, "", "diconect error \n"},
    {"GetDeviceInfo", runs<&C::GetDeviceInfo>, "", "Failed to read Firm data. \n"},
    {"GetNetworkInfo", runs<&C::GetNetworkInfo>, "", "Failed to KVA_GetNetworkInfo(). \n"},
    {"SetNetworkInfo", runs<&C::SetNetworkInfo>, "", "Failed to KVA_SetNetworkInfo(). \n"},
    {"IsWifiModuleEnabled", runs<&C::IsWifiModuleEnabled>, "  wifiModuleEnable :      1\n", "",
     true, false},
    {"GetCalRefSerialNo", runs<&C::GetCalRefSerialNo>, "", ""},
    {"WriteWCPData", registers<0>, "", getFailed},
    {"WriteAmbAdpData", registers<1>, "", getFailed},
    {"GetShutdownTime", readsPowerOff, "KVA_GetShutdownTime() success[mode:2].\n",
     "KVA_GetShutdownTime() failed[mode:9].\n"},
    {"SetShutdownTime", writesPowerOff, "KVA_SetShutdownTime() success[mode:3].\n",
     "KVA_SetShutdownTime() failed[mode:3].\n"},
};

/** Where a result comes from. */
enum Cause { Answered, Lost, NotConnected };

struct ResultRow {
    QByteArray name;
    Operation operation;
    int result; ///< of the library
    Cause cause = Answered;
};

/** Each operation with warnings, with negative results, on a lost connection and without one. */
QVector<ResultRow> results() {
    QVector<ResultRow> rows;
    for (const Operation& operation : operations) {
        for (const int result : {1, 2, 3, 4, 5, 6, 7, 8, INT_MAX, -9999, -9995, -9985, -9900, -9799,
                                 -9794, -1, INT_MIN})
            rows.append({operation.name + QByteArray(", ") + QByteArray::number(result), operation,
                         result});
        if (operation.run != operations[0].run) // the enumeration needs no connection
            rows.append({operation.name, operation, -9994, Lost});
        // Without a connection Connect makes one and Disconnect does not ask the library.
        if (operation.isConnected && rows.last().cause == Lost && rows.last().name != "Disconnect")
            rows.append(
                {operation.name + QByteArray(", not connected"), operation, -9998, NotConnected});
    }
    return rows;
}

/** Enumerates, and connects where the operation needs it. */
bool prepare(CKvaSdk_Ctrl& controller, const ResultRow& row) {
    const bool isConnected = row.operation.isConnected && row.cause != NotConnected;
    controller.m_lastResult = 77;
    return controller.GetDevicePortList() && (!isConnected || connects(controller));
}

/** A result code and its text. */
using NameRow = Case<int, QString>;

QVector<NameRow> nameRows() {
    QVector<NameRow> rows;
    const auto add = [&](int code, const char* text) {
        rows.append({QByteArray::number(code), code, text});
    };
    for (const ResultName& named : resultNames) {
        add(named.code, named.text);
        if (named.code > 0) // higher bits do not count
            add(named.code + 8, named.text);
    }
    add(INT_MAX, std::end(resultNames)[-1].text);
    for (const int code : {8, 16, 1 << 30, INT_MAX - 7})
        add(code, "");
    return rows;
}

} // namespace

class TestControllerResults : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() {
        for (const Accessory& accessory : accessories)
            m_folder.write(accessory.name, accessory.file());
    }

    void init() { TestBench::load(); }
    void passesResultOn_data() { addRows(results()); }

    /** A warning is success. A negative result is failure and ends the operation at once. */
    void passesResultOn() {
        const auto row = rowOf<ResultRow>();
        const bool isSuccess = row.result >= 0;
        CKvaSdk_Ctrl controller;
        QVERIFY(prepare(controller, row));
        if (row.cause == Lost)
            TestBench::unplug();
        if (row.cause == Answered)
            TestBench::answer("*", row.result);
        TestBench::clearCalls();
        const DebugLog log;
        QCOMPARE(row.operation.run(controller), isSuccess);
        QCOMPARE(controller.m_lastResult, row.operation.keepsLastResult ? row.result : 0);
        QCOMPARE(log.lines().join('|'),
                 isSuccess ? row.operation.successLine : row.operation.failureLine);
        if (!isSuccess)
            QCOMPARE(TestBench::calls().size(), 1);
    }

    void namesCode_data() { addRows(nameRows()); }
    void namesCode() {
        const auto row = rowOf<NameRow>();
        const DebugLog log;
        QCOMPARE(ResultCodeToString(row.given), row.expected);
        QCOMPARE(log.lines(), QStringList());
    }

    /** Of all other values around the two runs, every one. */
    void namesNothingElse() {
        for (int code = -10100; code < 0; ++code) {
            const bool isNamed =
                (code >= -9999 && code <= -9985) || (code >= -9799 && code <= -9794);
            QVERIFY2(ResultCodeToString(code).isEmpty() != isNamed, QByteArray::number(code));
        }
        QCOMPARE(ResultCodeToString(INT_MIN), "");
    }

private:
    TestFolder m_folder;
};

TEST_CLASS(TestControllerResults)
#include "tst_controller_results.moc"
