#include "instrument/InstrumentAccess.h"
#include "tests/support/TestBench.h"
#include "tests/support/TestMain.h"

namespace {

using TestBench::serialNumber;

/** Whether each call began and ended, in this order, and which they were. */
class Calls : public CallObserver {
public:
    void callBegins(const char* function) override { open = function; }
    void callEnded(const CallResult& result) override {
        ended.append(open == result.function ? open : open + " ended as " + result.function);
        open.clear();
    }

    QString open;
    QStringList ended;
};

} // namespace

/** What the command reaches the instruments through. */
class TestInstrumentAccess : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestBench::load({TestBench::instrument(), TestBench::instrument(77)}); }

    void hasLostNothingAtFirst() { QVERIFY(!InstrumentAccess::isConnectionLost()); }

    void listsAll() {
        Calls calls;
        InstrumentAccess access(calls);
        QVERIFY(!access.registration().failed());
        std::vector<KVA_PORTINFO> ports(5);
        QCOMPARE(access.list(ports).code, KVA_SUCCESS);
        QCOMPARE(ports.size(), std::size_t{2});
        QCOMPARE(ports[1].serialNumber, 77);
        for (const int call : {1, 2}) {
            TestBench::answer("KVA_GetDevicePortList", KVA_ERROR_NAK, call);
            ports.resize(5);
            QCOMPARE(access.list(ports).code, KVA_ERROR_NAK);
            QVERIFY(ports.empty());
            TestBench::load();
        }
    }

    void tellsOfEachCall() {
        Calls calls;
        {
            InstrumentAccess access(calls);
            QCOMPARE(access.open(serialNumber).state, InstrumentAccess::Opening::Open);
            QVERIFY(access.isConnected());
            KVA_JIG_ACTIONOPTIONFACTORYDATA options = {};
            KVA_NETWORKINFO network = {};
            KVA_JIG_CALREFDATA record = {};
            std::uint8_t mode = 0;
            for (const CallResult& result :
                 {access.read(options), access.read(network), access.readPowerOffMode(mode),
                  access.read(record), access.write(network), access.writePowerOffMode(mode),
                  access.stage(record), access.commit()})
                QCOMPARE(result.code, KVA_SUCCESS);
        }
        const QStringList made = {"KVA_RegisterDeviceEventHandler",
                                  "KVA_GetDevicePortList",
                                  "KVA_GetDevicePortList",
                                  "KVA_Connect",
                                  "KVA_GetDeviceInfo",
                                  "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA",
                                  "KVA_GetNetworkInfo",
                                  "KVA_GetShutdownTime",
                                  "KVA_JIG_GetFactoryCalib_CALREFDATA",
                                  "KVA_SetNetworkInfo",
                                  "KVA_SetShutdownTime",
                                  "KVA_JIG_SetFactoryCalib_CALREFDATA",
                                  "KVA_JIG_SetFactoryCalib_WriteSector",
                                  "KVA_Disconnect",
                                  "KVA_RegisterDeviceEventHandler"};
        QCOMPARE(calls.ended, made);
        QCOMPARE(TestBench::calls(), made);
    }

    void disconnectsOnce() {
        Calls calls;
        {
            InstrumentAccess access(calls);
            QCOMPARE(access.open(77).state, InstrumentAccess::Opening::Open);
            TestBench::answer("KVA_Disconnect", KVA_ERROR_NAK, 1);
            QCOMPARE(access.disconnect().code, KVA_ERROR_NAK);
            QVERIFY(access.isConnected());
            QCOMPARE(access.disconnect().code, KVA_SUCCESS);
            QVERIFY(!access.isConnected());
            QCOMPARE(access.open(5).state, InstrumentAccess::Opening::NotListed);
        }
        QCOMPARE(calls.ended.count("KVA_Disconnect"), 2);
    }

    void knowsALostConnection() {
        Calls calls;
        InstrumentAccess access(calls);
        access.open(serialNumber);
        TestBench::emitEvent(eEventCode_Standby);
        QVERIFY(!InstrumentAccess::isConnectionLost());
        TestBench::unplug();
        QVERIFY(InstrumentAccess::isConnectionLost());
        access.disconnect();
        access.open(77);
        QVERIFY(!InstrumentAccess::isConnectionLost());
    }
};

TEST_CLASS(TestInstrumentAccess)
#include "tst_instrument_access.moc"
