// Answers that no honest instrument gives. This program defines some functions of the library
// itself: they pass each call on to the simulated library and then alter its answer.

#include "instrument/InstrumentAccess.h"
#include "tests/unit/instrument/ControllerFixture.h"

#include <climits>
#include <dlfcn.h>

namespace {

/** What becomes of the answers; returns the result that the caller gets. Empty: nothing. */
struct Alterations {
    std::function<KVA_RESULT(KVA_RESULT result, const KVA_PORTINFO* list, int32_t* count)> portList;
    /** Of all calls that fill a record. @param bytes of the record */
    std::function<KVA_RESULT(KVA_RESULT result, const QByteArray& symbol, uint8_t* bytes)> record;
} alterations;

int unfilled = 0; ///< so many calls that fill a record or a list succeed and leave it as it is

class NoObserver : public CallObserver {
public:
    void callBegins(const char* /*function*/) override {}
    void callEnded(const CallResult& /*result*/) override {}
};

template <typename Function>
Function simulated(const char* symbol) {
    auto* const address = dlsym(RTLD_NEXT, symbol);
    if (!address)
        giveUp(QString(symbol) + " is not in the simulated library");
    return reinterpret_cast<Function>(address);
}

template <typename Record>
KVA_RESULT pass(const char* symbol, Record* record) {
    static const auto function = simulated<KVA_RESULT (*)(Record*)>(symbol);
    if (unfilled > 0) {
        --unfilled;
        return KVA_SUCCESS;
    }
    const KVA_RESULT result = function(record);
    return alterations.record
               ? alterations.record(result, symbol, reinterpret_cast<uint8_t*>(record))
               : result;
}

/** What the two calls of an enumeration store as the count, and how many entries are listed. */
struct CountRow {
    const char* name;
    int queried;
    int filled;
    int listed;
};

const CountRow counts[] = {
    {"101 filled", 1, 101, 100},
    {"105 attached and filled", 105, 105, 100},
    {"highest", INT_MAX, INT_MAX, 100},
    {"100", 100, 100, 100},
    {"fewer attached than filled", 0, 2, 2},
    {"none filled", 1, 0, 0},
    {"-1", -1, -1, 0},
    {"-1 attached", -1, 1, 1},
    {"lowest", INT_MIN, INT_MIN, 0},
};

/** A registration whose read-back is not what was sent. */
struct ReadBackRow {
    QByteArray name;
    Accessory accessory;
    QByteArray content; ///< of the file
    int offset;         ///< of the byte that differs
    unsigned char bits; ///< that differ in it
};

QVector<ReadBackRow> readBacks() {
    const QByteArray zeros = "a\nb\n12345678\n0" + QByteArray(",0").repeated(37) + '\n';
    QVector<ReadBackRow> rows = {{"white plate, sign of zero", whitePlate, zeros, 35, 0x80}};
    for (const Accessory& accessory : accessories) {
        for (const int offset : {0, 3, 4, 155, 156, 159, 160, 459, 460, 461, 1500, 2506, 2507}) {
            const QString name = QString("%1, byte %2").arg(accessory.name).arg(offset);
            rows.append({name.toLatin1(), accessory, accessory.file(), offset, 1});
        }
    }
    return rows;
}

} // namespace

KVA_RESULT KVA_GetDevicePortList(KVA_PORTINFO* list, int32_t* count, int32_t maxEntries) {
    static const auto function =
        simulated<decltype(&KVA_GetDevicePortList)>("KVA_GetDevicePortList");
    if (list && unfilled > 0) {
        --unfilled;
        return KVA_SUCCESS;
    }
    const KVA_RESULT result = function(list, count, maxEntries);
    return alterations.portList ? alterations.portList(result, list, count) : result;
}

KVA_RESULT KVA_GetDeviceInfo(KVA_DEVICEINFO* info) {
    return pass("KVA_GetDeviceInfo", info);
}

KVA_RESULT KVA_GetNetworkInfo(KVA_NETWORKINFO* info) {
    return pass("KVA_GetNetworkInfo", info);
}

KVA_RESULT KVA_GetShutdownTime(uint8_t* mode) {
    return pass("KVA_GetShutdownTime", mode);
}

KVA_RESULT KVA_JIG_GetFactoryCalib_CALREFDATA(KVA_JIG_CALREFDATA* data) {
    return pass("_Z34KVA_JIG_GetFactoryCalib_CALREFDATAP18KVA_JIG_CALREFDATA", data);
}

KVA_RESULT KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(KVA_JIG_ACTIONOPTIONFACTORYDATA* data) {
    return pass("_Z40KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATAP31KVA_JIG_ACTIONOPTIONFACTORYDATA",
                data);
}

class TestControllerDishonestAnswers : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { TestBench::load(); }

    void cleanup() {
        alterations = {};
        unfilled = 0;
    }

    void boundsTheCount_data() { addRows(counts); }
    void boundsTheCount() {
        const auto row = rowOf<CountRow>();
        alterations.portList = [&](KVA_RESULT result, const KVA_PORTINFO* list, int32_t* count) {
            *count = list ? row.filled : row.queried;
            return result;
        };
        CKvaSdk_Ctrl controller;
        const DebugLog log;
        QVERIFY(controller.GetDevicePortList());
        QCOMPARE(controller.m_portCount, row.filled);
        QCOMPARE(controller.m_deviceCount, row.listed);
        QCOMPARE(controller.m_ports.size(), static_cast<std::size_t>(row.listed));
        QCOMPARE(controller.m_deviceNameList.size(), row.listed);
        QCOMPARE(log.lines(), QStringList(QString("port count[%1] \n").arg(row.queried)));
        if (row.listed > 0)
            QCOMPARE(controller.m_deviceNameList.first(), "VARNE-1(USB,Serial#01234567)");
        if (row.listed > 1)
            QCOMPARE(controller.m_deviceNameList.last(), "VARNE-1(,Serial#00000000)");
        QVERIFY(!controller.Connect(row.listed, 10));
        QCOMPARE(log.lines().last(), "conect error \n");
    }

    void unfilledList() {
        NoObserver observer;
        InstrumentAccess access(observer);
        std::vector<KVA_PORTINFO> ports;
        unfilled = 1;
        QCOMPARE(access.list(ports).code, KVA_SUCCESS);
        QCOMPARE(unfilled, 0);
        QVERIFY(ports.empty());
    }

    void negativeCountBeforeFailure() {
        alterations.portList = [](KVA_RESULT, const KVA_PORTINFO*, int32_t* count) {
            *count = -7;
            return KVA_ERROR;
        };
        CKvaSdk_Ctrl controller;
        const DebugLog log;
        QVERIFY(!controller.GetDevicePortList());
        QCOMPARE(controller.m_deviceCount, 0);
        QVERIFY(controller.m_deviceNameList.isEmpty());
        QCOMPARE(log.lines(), QStringList("port count[-7] \n"));
    }

    /** Each call fills its record and fails: the texts stay empty. */
    void filledByFailedCall() {
        const QHash<QByteArray, KVA_RESULT> results = {{"KVA_GetNetworkInfo", KVA_ERROR_NAV},
                                                       {"KVA_GetShutdownTime", KVA_ERROR_NDT}};
        alterations.record = [&results](KVA_RESULT, const QByteArray& symbol, uint8_t* bytes) {
            if (symbol == "KVA_GetShutdownTime")
                *bytes = 200;
            return results.value(symbol, KVA_ERROR);
        };
        ConnectedController controller;
        QVERIFY(!controller.IsWifiModuleEnabled());
        QCOMPARE(controller.m_lastResult, 4);
        QVERIFY(!controller.GetDeviceInfo());
        QCOMPARE(controller.m_lastResult, -9999);
        QCOMPARE(controller.m_serialNo + controller.m_firmVersion + controller.m_macAddress, "");
        QVERIFY(!controller.GetNetworkInfo());
        QCOMPARE(controller.m_lastResult, -9798);
        QVERIFY(hasNoNetwork(controller));
        // The record holds what the library left.
        QCOMPARE(controller.m_networkInfo.SSID, "press-hall");
        QVERIFY(!controller.GetCalRefSerialNo());
        QCOMPARE(controller.m_lastResult, -9999);
        QCOMPARE(controller.m_curWCPSerialNo + controller.m_curAmbAdpSerialNo, "");
        uint8_t mode = 255;
        QVERIFY(!controller.GetShutdownTime(mode));
        QCOMPARE(controller.m_lastResult, -9795);
        QCOMPARE(int{mode}, 200);
        QCOMPARE(controller.log.lines(),
                 QStringList({"Failed to read Firm data. \n", "Failed to KVA_GetNetworkInfo(). \n",
                              "KVA_GetShutdownTime() failed[mode:200].\n"}));
    }

    /** A call that fills nothing leaves nothing of an earlier one. */
    void recordsAreZeroBeforeTheCall() {
        ConnectedController controller;
        QVERIFY(controller.GetDeviceInfo());
        QVERIFY(controller.GetNetworkInfo());
        unfilled = 4;
        QVERIFY(controller.GetDeviceInfo());
        QVERIFY(controller.GetNetworkInfo());
        QVERIFY(controller.GetCalRefSerialNo());
        QVERIFY(!controller.IsWifiModuleEnabled());
        QCOMPARE(TestBench::bytesOf(controller.m_deviceInfo), QByteArray(40, '\0'));
        QCOMPARE(controller.m_serialNo, "00000000");
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
        QCOMPARE(controller.m_ipAddress.join('.'), "0.0.0.0");
        QCOMPARE(controller.m_curWCPSerialNo, "00000000");
        QCOMPARE(controller.m_curAmbAdpSerialNo, "00000000");
    }

    void readBackDiffers_data() { addRows(readBacks()); }
    void readBackDiffers() {
        const auto row = rowOf<ReadBackRow>();
        const QByteArray path = localFile(m_folder, row.content);
        ConnectedController controller;
        int reads = 0;
        alterations.record = [&](KVA_RESULT result, const QByteArray& symbol, uint8_t* bytes) {
            if (symbol.contains("CALREFDATA") && ++reads == 2)
                bytes[row.offset] ^= row.bits;
            return result;
        };
        QVERIFY(!(controller.*row.accessory.write)(path));
        QCOMPARE(reads, 2);
        QCOMPARE(controller.m_lastResult, 0);
        QCOMPARE(controller.log.lines(), QStringList("CALREFDATA is incorrect.\n"));
        // The same without the difference goes well.
        QVERIFY((controller.*row.accessory.write)(path));
    }

    void fetchFillsNothing_data() { addRows(accessories); }

    /** What the fetch leaves out is registered as zero, never as what was on the stack. The
        registration succeeds, since that is what is read back. */
    void fetchFillsNothing() {
        const auto row = rowOf<Accessory>();
        ConnectedController controller;
        unfilled = 1;
        QVERIFY((controller.*row.write)(localFile(m_folder, row.file())));
        QCOMPARE(unfilled, 0);
        QCOMPARE(controller.log.lines(), QStringList());
        controller.powerCycle();
        QCOMPARE(calibrationRecord(), row.registeredIn(QByteArray(2508, '\0')));
    }

    void noFetchFillsAnything_data() { addRows(accessories); }
    void noFetchFillsAnything() {
        const auto row = rowOf<Accessory>();
        ConnectedController controller;
        unfilled = 2;
        QVERIFY(!(controller.*row.write)(localFile(m_folder, row.file())));
        QCOMPARE(controller.m_lastResult, 0);
        QCOMPARE(controller.log.lines(), QStringList("CALREFDATA is incorrect.\n"));
    }

private:
    TestFolder m_folder;
};

TEST_CLASS(TestControllerDishonestAnswers)
#include "tst_controller_dishonest_answers.moc"
