// Device events: when they come, on which thread, and what holds after the handler was removed.

#include "SimulatorTest.h"

#include <QSemaphore>

#include <atomic>

using namespace simtest;

namespace {

QSemaphore g_entered;
QSemaphore g_mayLeave;
std::atomic<bool> g_running{false};
std::atomic<int> g_calls{0};
std::atomic<KVA_RESULT> g_result{KVA_ERROR};

/** Stays in the handler until it is let go. */
void blockingHandler(std::uint32_t, std::uint32_t, std::int32_t) {
    g_running = true;
    ++g_calls;
    g_entered.release();
    g_mayLeave.acquire();
    g_running = false;
}

void countingHandler(std::uint32_t, std::uint32_t, std::int32_t) {
    ++g_calls;
}

void removingHandler(std::uint32_t, std::uint32_t, std::int32_t) {
    ++g_calls;
    g_result = KVA_RegisterDeviceEventHandler(nullptr);
}

void replacingHandler(std::uint32_t, std::uint32_t, std::int32_t) {
    ++g_calls;
    g_result = KVA_RegisterDeviceEventHandler(recordEvent);
}

void askingHandler(std::uint32_t, std::uint32_t, std::int32_t) {
    std::uint8_t mode = 0;
    g_result = KVA_GetShutdownTime(&mode);
    KvaSim_WaitForEvents();
    ++g_calls;
}

bool registers(KVA_DeviceEventHandler handler) {
    return KVA_RegisterDeviceEventHandler(handler) == KVA_SUCCESS;
}

struct ChangeRow {
    const char* name;
    KVA_DeviceEventHandler handler; ///< that takes the place of the one that runs
    QByteArray codes;               ///< that it gets
};

const ChangeRow changeRows[] = {{"removal", nullptr, ""}, {"replacement", recordEvent, "2"}};

} // namespace

class TestSimulatorEvents : public SimulatorTest {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        g_calls = 0;
        g_result = KVA_ERROR;
        QVERIFY(loadJson(benchOf({usbSerial, networkSerial})));
    }

    void cleanup() { QVERIFY(registers(nullptr)); }

    void argumentsAndThread() {
        QVERIFY(registers(recordEvent));
        KvaSim_EmitEvent(4294967295U, 77, -5);
        KvaSim_EmitEvent(9, 4294967295U, INT32_MIN);
        QCOMPARE(deliveredCodes(), "4294967295 9");
        QCOMPARE(events[0].rawDataCount, 77U);
        QCOMPARE(events[0].error, -5);
        QCOMPARE(events[1].rawDataCount, 4294967295U);
        QCOMPARE(events[1].error, INT32_MIN);
        QVERIFY(events[0].thread != std::this_thread::get_id());
        QVERIFY(events[0].thread == events[1].thread);
    }

    void orderIsKept() {
        QVERIFY(registers(recordEvent));
        QByteArrayList codes;
        for (std::uint32_t code = 0; code < 5000; ++code) {
            KvaSim_EmitEvent(code, 0, 0);
            codes += QByteArray::number(code);
        }
        QCOMPARE(deliveredCodes(), codes.join(' '));
    }

    void noHandlerNoEvent() {
        KvaSim_EmitEvent(6, 0, 0);
        KvaSim_WaitForEvents();
        QVERIFY(registers(recordEvent));
        QCOMPARE(deliveredCodes(), "");
    }

    void changeWaitsForHandler_data() { addRows(changeRows); }
    void changeWaitsForHandler() {
        const auto row = rowOf<ChangeRow>();
        QVERIFY(registers(blockingHandler));
        KvaSim_EmitEvent(1, 0, 0);
        g_entered.acquire();
        std::atomic<bool> changed{false};
        std::atomic<bool> ranAfterChange{true};
        std::thread changer([&] {
            KVA_RegisterDeviceEventHandler(row.handler);
            ranAfterChange = g_running.load();
            changed = true;
        });
        QTest::qWait(50); // long enough for a change that does not wait
        const bool changedEarly = changed;
        g_mayLeave.release();
        changer.join();
        QVERIFY(!changedEarly);
        QVERIFY(!ranAfterChange);
        KvaSim_EmitEvent(2, 0, 0);
        QCOMPARE(deliveredCodes(), row.codes);
        QCOMPARE(g_calls.load(), 1);
    }

    void removalDropsWaitingEvents() {
        QVERIFY(registers(blockingHandler));
        for (std::uint32_t code = 0; code < 10; ++code)
            KvaSim_EmitEvent(code, 0, 0);
        g_entered.acquire();
        g_mayLeave.release(10);
        QVERIFY(registers(nullptr));
        const int calls = g_calls;
        KvaSim_EmitEvent(1, 0, 0);
        QVERIFY(registers(recordEvent));
        QCOMPARE(deliveredCodes(), "");
        QCOMPARE(g_calls.load(), calls);
        g_entered.acquire(g_entered.available());
        g_mayLeave.acquire(g_mayLeave.available());
    }

    void replacedHandlerGetsWaitingEvents() {
        QVERIFY(registers(replacingHandler));
        for (std::uint32_t code = 1; code < 4; ++code)
            KvaSim_EmitEvent(code, 0, 0);
        QCOMPARE(deliveredCodes(), "2 3");
    }

    void removalFromHandler() {
        QVERIFY(registers(removingHandler));
        KvaSim_EmitEvent(1, 0, 0);
        KvaSim_EmitEvent(2, 0, 0);
        KvaSim_WaitForEvents();
        QCOMPARE(g_result.load(), KVA_SUCCESS);
        KvaSim_EmitEvent(3, 0, 0);
        KvaSim_WaitForEvents();
        QCOMPARE(g_calls.load(), 1);
        QVERIFY(registers(recordEvent));
        KvaSim_EmitEvent(4, 0, 0);
        QCOMPARE(deliveredCodes(), "4");
        QCOMPARE(g_calls.load(), 1);
    }

    void handlerMayCallTheLibrary() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QVERIFY(registers(askingHandler));
        QVERIFY(KvaSim_Unplug(usbSerial));
        KvaSim_WaitForEvents();
        QCOMPARE(g_calls.load(), 1);
        QCOMPARE(g_result.load(), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
    }

    void registeringManyTimes() {
        for (int round = 0; round < 300; ++round) {
            QVERIFY(registers(countingHandler));
            KvaSim_EmitEvent(1, 0, 0);
            if (round % 2 == 0)
                KvaSim_WaitForEvents();
            QVERIFY(registers(nullptr));
            const int calls = g_calls;
            KvaSim_EmitEvent(1, 0, 0);
            QCOMPARE(g_calls.load(), calls);
        }
        QVERIFY(g_calls >= 150);
    }

    void resetKeepsHandler() {
        QVERIFY(registers(recordEvent));
        KvaSim_Reset();
        KvaSim_EmitEvent(5, 0, 0);
        QCOMPARE(deliveredCodes(), "5");
    }

    void removalInSpiteOfFault() {
        QVERIFY(registers(recordEvent));
        QVERIFY(addFault({{"function", "*"}, {"result", "KVA_ERROR"}}));
        QCOMPARE(KVA_RegisterDeviceEventHandler(countingHandler), KVA_ERROR);
        KvaSim_EmitEvent(1, 0, 0);
        QCOMPARE(deliveredCodes(), "1");
        QCOMPARE(KVA_RegisterDeviceEventHandler(nullptr), KVA_ERROR);
        KvaSim_EmitEvent(2, 0, 0);
        QCOMPARE(deliveredCodes(), "1");
        KvaSim_ClearFaults();
    }

    void manyThreads() {
        std::atomic<bool> goOn{true};
        std::thread plugger([&] {
            while (goOn) {
                KvaSim_Unplug(usbSerial);
                KvaSim_Plug(usbSerial);
                KvaSim_PowerCycle(networkSerial);
            }
        });
        std::thread registrar([&] {
            while (goOn) {
                KVA_RegisterDeviceEventHandler(recordEvent);
                KVA_RegisterDeviceEventHandler(countingHandler);
                KVA_RegisterDeviceEventHandler(nullptr);
            }
        });
        for (int round = 0; round < 100; ++round) {
            connectTo(round % 2 == 0 ? usbSerial : networkSerial);
            for (const Call& call : connectionCalls()) {
                if (call.callWithNull)
                    call.call();
            }
            KVA_Disconnect();
        }
        goOn = false;
        plugger.join();
        registrar.join();
        KvaSim_WaitForEvents();
        QCOMPARE(state()["instruments"].size(), std::size_t{2});
        QVERIFY(callLog().size() > 100 * 10);
    }
};

TEST_CLASS(TestSimulatorEvents)
#include "tst_simulator_events.moc"
