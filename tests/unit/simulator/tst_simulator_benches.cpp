// The ready benches, comments in a bench, and the time that an instrument needs to start.

#include "SimulatorTest.h"

#include <QElapsedTimer>
#include <QFile>

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
    void init() {
        startClean(m_folder);
        EventRecord::instance().clear();
    }

    void cleanup() {
        KVA_RegisterDeviceEventHandler(nullptr);
        KvaSim_Reset();
    }

    void ready_data() { addRows(readyRows); }

    void ready() {
        const ReadyRow& given = rowOf(readyRows);
        const QString path = m_folder.filePath("copy.json");
        QFile::remove(path);
        const QString bench = QString::fromLatin1(QTest::currentDataTag());
        QVERIFY(QFile::copy(QStringLiteral(BENCHES "/%1.json").arg(bench), path));
        QVERIFY2(KvaSim_LoadFile(path.toLocal8Bit().constData()), KvaSim_LastError());
        int ofUsb = 0;
        const auto list = ports();
        for (const KVA_PORTINFO& port : list)
            ofUsb += port.portType == ePortType_USB ? 1 : 0;
        QCOMPARE(ofUsb, given.usb);
        QCOMPARE(static_cast<int>(list.size()), given.usb + given.network);
        if (list.empty())
            return;
        QCOMPARE(KVA_Connect(&list.back(), 10), KVA_RESULT{KVA_SUCCESS});
        KVA_JIG_ACTIONOPTIONFACTORYDATA options{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(&options), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(options.wifiModuleEnable != 0,
                 QByteArray(QTest::currentDataTag()) != "no-wireless");
    }

    void faultyCableLosesConnections() {
        QFile file(QStringLiteral(BENCHES "/faulty-cable.json"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY2(KvaSim_LoadJson(file.readAll().constData()), KvaSim_LastError());
        int lost = 0;
        for (int round = 0; round < 200; ++round) {
            QVERIFY(KvaSim_Plug(usbSerial));
            QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
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
        json bench = benchOf({usbSerial, networkSerial});
        bench["instruments"][0]["startUpMs"] = 300;
        QVERIFY(loadJson(bench));
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        const KVA_PORTINFO port = portOf(usbSerial);
        QCOMPARE(KVA_Connect(&port, 10), KVA_RESULT{KVA_SUCCESS});
        QElapsedTimer timer;
        timer.start();
        QVERIFY(powerCycle(usbSerial));
        QCOMPARE(deliveredCodes(), QByteArray("6"));
        QCOMPARE(ports().size(), std::size_t{1});
        QCOMPARE(KVA_Connect(&port, 10), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
        KvaSim_EmitEvent(3, 0, 0); // others are not held up
        QCOMPARE(deliveredCodes(), QByteArray("6 3"));
        QTRY_COMPARE(deliveredCodes(), QByteArray("6 3 0"));
        QVERIFY(timer.elapsed() >= 300);
        QCOMPARE(KVA_Connect(&port, 10), KVA_RESULT{KVA_SUCCESS});
    }

    void startUpEndsWithUnplugging() {
        json bench = benchOf({usbSerial});
        bench["instruments"][0]["startUpMs"] = 100;
        QVERIFY(loadJson(bench));
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(powerCycle(usbSerial));
        QVERIFY(KvaSim_Unplug(usbSerial));
        QTest::qWait(250); // an event that comes in spite of it would be here by now
        QCOMPARE(deliveredCodes(), QByteArray("6"));
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(deliveredCodes(), QByteArray("6 0"));
        QCOMPARE(ports().size(), std::size_t{1});
    }

    void startUpEndsWithHandler() {
        json bench = benchOf({usbSerial});
        bench["instruments"][0]["startUpMs"] = 100;
        QVERIFY(loadJson(bench));
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(powerCycle(usbSerial));
        QCOMPARE(KVA_RegisterDeviceEventHandler(nullptr), KVA_RESULT{KVA_SUCCESS});
        EventRecord::instance().clear();
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        QTest::qWait(250);
        QCOMPARE(deliveredCodes(), QByteArray());
        QCOMPARE(ports().size(), std::size_t{1});
    }

    void cycleWhileStarting() {
        json bench = benchOf({usbSerial});
        bench["instruments"][0]["startUpMs"] = 200;
        QVERIFY(loadJson(bench));
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        for (int round = 0; round < 2; ++round)
            QVERIFY(powerCycle(usbSerial));
        QTRY_COMPARE(deliveredCodes(), QByteArray("6 0"));
        QTest::qWait(250);
        QCOMPARE(deliveredCodes(), QByteArray("6 0"));
    }

private:
    QTemporaryDir m_folder;
};

static const bool isAdded = simtest::addTest<TestSimulatorBenches>();
#include "tst_simulator_benches.moc"
