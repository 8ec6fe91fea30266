// The ready benches, comments in a bench, and the time that an instrument needs to start.

#include "SimulatorTest.h"

#include <QElapsedTimer>

using namespace simtest;

namespace {

struct ReadyRow {
    const char* name;
    int usb;
    int network;
};

const ReadyRow readyRows[] = {
    {"usb", 1, 0},         {"usb-and-network", 1, 1}, {"none", 0, 0},          {"hundred", 4, 96},
    {"no-wireless", 1, 0}, {"faulty-cable", 1, 0},    {"factory-line", 0, 50},
};

} // namespace

class TestSimulatorBenches : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { startClean(m_folder); }

    void ready_data() { addRows(readyRows); }
    void ready() {
        const auto row = rowOf<ReadyRow>();
        const QByteArray path = m_folder.localPath("copy.json");
        QFile::remove("copy.json"); // of the row before
        QVERIFY(QFile::copy(QString(BENCHES "/%1.json").arg(row.name), "copy.json"));
        QVERIFY2(KvaSim_LoadFile(path), KvaSim_LastError());
        int ofUsb = 0;
        const auto list = ports();
        for (const KVA_PORTINFO& port : list)
            ofUsb += port.portType == ePortType_USB ? 1 : 0;
        QCOMPARE(ofUsb, row.usb);
        QCOMPARE(static_cast<int>(list.size()), row.usb + row.network);
        if (list.empty())
            return;
        QCOMPARE(KVA_Connect(&list.back(), 10), KVA_SUCCESS);
        QCOMPARE(held(KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA).wifiModuleEnable != 0,
                 QByteArray(row.name) != "no-wireless");
    }

    void faultyCableLosesConnections() {
        QFile file(BENCHES "/faulty-cable.json");
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY2(KvaSim_LoadJson(file.readAll().constData()), KvaSim_LastError());
        int lost = 0;
        for (int round = 0; round < 200; ++round) {
            QVERIFY(KvaSim_Plug(usbSerial));
            QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
            KVA_DEVICEINFO info{};
            const KVA_RESULT result = KVA_GetDeviceInfo(&info);
            QVERIFY(result == KVA_SUCCESS || result == KVA_ERROR_COMMUNICATION_RECEIVE);
            lost += result == KVA_SUCCESS ? 0 : 1;
            KVA_Disconnect();
        }
        QVERIFY2(lost > 1 && lost < 30, QByteArray::number(lost).constData());
    }

    void comments() {
        QVERIFY2(KvaSim_LoadJson("// a bench\n{\"version\": 1, /* none\n at all */\n"
                                 "\"instruments\": [] }"),
                 KvaSim_LastError());
        QVERIFY(!KvaSim_LoadJson("// a bench\n{\"version\": 1, /* none\n at all */\n,}"));
        QVERIFY2(lastError().startsWith("line 4, column 1: "), KvaSim_LastError());
    }

    void commentsAreNotForPatches() {
        QVERIFY(loadJson(benchOf({usbSerial})));
        QVERIFY(!KvaSim_Set(usbSerial, "{} // now"));
        QVERIFY(!KvaSim_AddFault(R"({"function": "*", "result": 0} // now)"));
    }

    void startUp() {
        QVERIFY(useWithStartUp(300));
        const KVA_PORTINFO port = portOf(usbSerial);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(powerCycle(usbSerial));
        QCOMPARE(deliveredCodes(), "6");
        QCOMPARE(ports().size(), std::size_t{1});
        QCOMPARE(KVA_Connect(&port, 10), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
        KvaSim_EmitEvent(3, 0, 0); // others are not held up
        QCOMPARE(deliveredCodes(), "6 3");
        while (timer.elapsed() < 300) {
            const bool isListed = ports().size() == 2;
            QVERIFY(!isListed || timer.elapsed() >= 300);
        }
        QTRY_COMPARE(deliveredCodes(), "6 3 0");
        QCOMPARE(KVA_Connect(&port, 10), KVA_SUCCESS);
    }

    void startUpEndsWithUnplugging() {
        QVERIFY(useWithStartUp(100));
        QVERIFY(powerCycle(usbSerial));
        QVERIFY(KvaSim_Unplug(usbSerial));
        QTest::qWait(250); // an event that comes in spite of it would be here by now
        QCOMPARE(deliveredCodes(), "6");
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(deliveredCodes(), "6 0");
        QCOMPARE(ports().size(), std::size_t{2});
    }

    void startUpEndsWithHandler() {
        QVERIFY(useWithStartUp(100));
        QVERIFY(powerCycle(usbSerial));
        QCOMPARE(KVA_RegisterDeviceEventHandler(nullptr), KVA_SUCCESS);
        forgetEvents();
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_SUCCESS);
        QTest::qWait(250);
        QCOMPARE(deliveredCodes(), "");
        QCOMPARE(ports().size(), std::size_t{2});
    }

    void cycleWhileStarting() {
        QVERIFY(useWithStartUp(200));
        for (int round = 0; round < 2; ++round)
            QVERIFY(powerCycle(usbSerial));
        QTRY_COMPARE(deliveredCodes(), "6 0");
        QTest::qWait(250);
        QCOMPARE(deliveredCodes(), "6 0");
    }

private:
    /** Connects to an instrument that takes so many milliseconds to start, beside another one, and
        records events. */
    static bool useWithStartUp(int startUpMs) {
        json bench = benchOf({usbSerial, networkSerial});
        bench["instruments"][0]["startUpMs"] = startUpMs;
        return loadJson(bench) && KVA_RegisterDeviceEventHandler(recordEvent) == KVA_SUCCESS &&
               connectTo(usbSerial) == KVA_SUCCESS;
    }

    TestFolder m_folder;
};

TEST_CLASS(TestSimulatorBenches)
#include "tst_simulator_benches.moc"
