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

struct EventsOfOperationsRow {
    QByteArray name;
    QByteArray codes;
};

const EventsOfOperationsRow eventsOfOperationsRows[] = {
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

struct ChangeWaitsForHandlerRow {
    const char* name;
    bool removal;
};

const ChangeWaitsForHandlerRow changeWaitsForHandlerRows[] = {
    {"removal", true},
    {"replacement", false},
};

} // namespace

class TestSimulatorEvents : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        EventRecord::instance().clear();
        g_calls = 0;
        g_result = KVA_ERROR;
        QVERIFY(loadJson(benchOf({usbSerial, networkSerial})));
    }

    void cleanup() { QCOMPARE(KVA_RegisterDeviceEventHandler(nullptr), KVA_RESULT{KVA_SUCCESS}); }

    void eventsOfOperations_data() { addRows(eventsOfOperationsRows); }

    void eventsOfOperations() {
        const EventsOfOperationsRow& given = rowOf(eventsOfOperationsRows);
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        for (const QByteArray& operation : given.name.split(' ')) {
            if (operation == "connect")
                QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
            else if (operation == "disconnect")
                QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
            else if (operation == "plug")
                QVERIFY(KvaSim_Plug(usbSerial));
            else if (operation == "unplug")
                QVERIFY(KvaSim_Unplug(usbSerial));
            else if (operation == "cycle")
                QVERIFY(KvaSim_PowerCycle(usbSerial));
            else if (operation == "other-plug")
                QVERIFY(KvaSim_Plug(networkSerial));
            else if (operation == "other-unplug")
                QVERIFY(KvaSim_Unplug(networkSerial));
            else if (operation == "other-cycle")
                QVERIFY(KvaSim_PowerCycle(networkSerial));
            else if (operation.startsWith("set-"))
                QVERIFY(set(usbSerial, {{"plugged", operation == "set-on"}}));
            else
                QVERIFY2(operation.isEmpty(), operation.constData());
        }
        QCOMPARE(deliveredCodes(), given.codes);
    }

    void argumentsAndThread() {
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        KvaSim_EmitEvent(4294967295U, 77, -5);
        KvaSim_EmitEvent(9, 4294967295U, INT32_MIN);
        KvaSim_WaitForEvents();
        const auto events = EventRecord::instance().all();
        QCOMPARE(events.size(), std::size_t{2});
        QCOMPARE(events[0].code, 4294967295U);
        QCOMPARE(events[0].rawDataCount, 77U);
        QCOMPARE(events[0].error, -5);
        QCOMPARE(events[1].rawDataCount, 4294967295U);
        QCOMPARE(events[1].error, INT32_MIN);
        QVERIFY(events[0].thread != std::this_thread::get_id());
        QVERIFY(events[0].thread == events[1].thread);
    }

    void orderIsKept() {
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        for (std::uint32_t code = 0; code < 5000; ++code)
            KvaSim_EmitEvent(code, 0, 0);
        KvaSim_WaitForEvents();
        const auto events = EventRecord::instance().all();
        QCOMPARE(events.size(), std::size_t{5000});
        for (std::uint32_t code = 0; code < 5000; ++code)
            QCOMPARE(events[code].code, code);
    }

    void noHandlerNoEvent() {
        KvaSim_EmitEvent(6, 0, 0);
        KvaSim_WaitForEvents();
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(deliveredCodes(), QByteArray());
    }

    void changeWaitsForHandler_data() { addRows(changeWaitsForHandlerRows); }

    void changeWaitsForHandler() {
        const ChangeWaitsForHandlerRow& given = rowOf(changeWaitsForHandlerRows);
        QCOMPARE(KVA_RegisterDeviceEventHandler(blockingHandler), KVA_RESULT{KVA_SUCCESS});
        KvaSim_EmitEvent(1, 0, 0);
        g_entered.acquire();
        std::atomic<bool> changed{false};
        std::atomic<bool> ranAfterChange{true};
        std::thread changer([&] {
            KVA_RegisterDeviceEventHandler(given.removal ? nullptr : recordEvent);
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
        QCOMPARE(deliveredCodes(), given.removal ? QByteArray() : QByteArray("2"));
        QCOMPARE(g_calls.load(), 1);
    }

    void removalDropsWaitingEvents() {
        QCOMPARE(KVA_RegisterDeviceEventHandler(blockingHandler), KVA_RESULT{KVA_SUCCESS});
        for (std::uint32_t code = 0; code < 10; ++code)
            KvaSim_EmitEvent(code, 0, 0);
        g_entered.acquire();
        g_mayLeave.release(10);
        QCOMPARE(KVA_RegisterDeviceEventHandler(nullptr), KVA_RESULT{KVA_SUCCESS});
        const int calls = g_calls;
        KvaSim_EmitEvent(1, 0, 0);
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(deliveredCodes(), QByteArray());
        QCOMPARE(g_calls.load(), calls);
        g_entered.acquire(g_entered.available());
        g_mayLeave.acquire(g_mayLeave.available());
    }

    void replacedHandlerGetsWaitingEvents() {
        QCOMPARE(KVA_RegisterDeviceEventHandler(replacingHandler), KVA_RESULT{KVA_SUCCESS});
        for (std::uint32_t code = 1; code < 4; ++code)
            KvaSim_EmitEvent(code, 0, 0);
        QCOMPARE(deliveredCodes(), QByteArray("2 3"));
    }

    void removalFromHandler() {
        QCOMPARE(KVA_RegisterDeviceEventHandler(removingHandler), KVA_RESULT{KVA_SUCCESS});
        KvaSim_EmitEvent(1, 0, 0);
        KvaSim_EmitEvent(2, 0, 0);
        KvaSim_WaitForEvents();
        QCOMPARE(g_result.load(), KVA_RESULT{KVA_SUCCESS});
        KvaSim_EmitEvent(3, 0, 0);
        KvaSim_WaitForEvents();
        QCOMPARE(g_calls.load(), 1);
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        KvaSim_EmitEvent(4, 0, 0);
        QCOMPARE(deliveredCodes(), QByteArray("4"));
        QCOMPARE(g_calls.load(), 1);
    }

    void replacementFromHandler() {
        QCOMPARE(KVA_RegisterDeviceEventHandler(replacingHandler), KVA_RESULT{KVA_SUCCESS});
        KvaSim_EmitEvent(1, 0, 0);
        KvaSim_WaitForEvents();
        KvaSim_EmitEvent(2, 0, 0);
        QCOMPARE(deliveredCodes(), QByteArray("2"));
        QCOMPARE(g_calls.load(), 1);
    }

    void handlerMayCallTheLibrary() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_RegisterDeviceEventHandler(askingHandler), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(KvaSim_Unplug(usbSerial));
        KvaSim_WaitForEvents();
        QCOMPARE(g_calls.load(), 1);
        QCOMPARE(g_result.load(), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
    }

    void registeringManyTimes() {
        for (int round = 0; round < 300; ++round) {
            QCOMPARE(KVA_RegisterDeviceEventHandler(countingHandler), KVA_RESULT{KVA_SUCCESS});
            KvaSim_EmitEvent(1, 0, 0);
            if (round % 2 == 0)
                KvaSim_WaitForEvents();
            QCOMPARE(KVA_RegisterDeviceEventHandler(nullptr), KVA_RESULT{KVA_SUCCESS});
            const int calls = g_calls;
            KvaSim_EmitEvent(1, 0, 0);
            QCOMPARE(g_calls.load(), calls);
        }
        QVERIFY(g_calls >= 150);
    }

    void resetKeepsHandler() {
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        KvaSim_Reset();
        KvaSim_EmitEvent(5, 0, 0);
        QCOMPARE(deliveredCodes(), QByteArray("5"));
    }

    void removalInSpiteOfFault() {
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(addFault({{"function", "*"}, {"result", "KVA_ERROR"}}));
        QCOMPARE(KVA_RegisterDeviceEventHandler(countingHandler), KVA_RESULT{KVA_ERROR});
        KvaSim_EmitEvent(1, 0, 0);
        QCOMPARE(deliveredCodes(), QByteArray("1"));
        QCOMPARE(KVA_RegisterDeviceEventHandler(nullptr), KVA_RESULT{KVA_ERROR});
        KvaSim_EmitEvent(2, 0, 0);
        QCOMPARE(deliveredCodes(), QByteArray("1"));
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
        for (int round = 0; round < 300; ++round) {
            connectTo(round % 2 == 0 ? usbSerial : networkSerial);
            for (const ConnectionCall& call : connectionCalls()) {
                if (call.callWithNull != nullptr)
                    call.call();
            }
            KVA_Disconnect();
        }
        goOn = false;
        plugger.join();
        registrar.join();
        KvaSim_WaitForEvents();
        QCOMPARE(state()["instruments"].size(), std::size_t{2});
        QVERIFY(callLog().size() > 300 * 10);
    }

private:
    QTemporaryDir m_folder;
};

static const bool isAdded = simtest::addTest<TestSimulatorEvents>();
#include "tst_simulator_events.moc"
