#include "simulator/KvaSim.h"

#include "simulator/Simulator.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <string>

namespace {

using kvasim::Bench;
using kvasim::BenchStore;
using kvasim::Json;
using kvasim::Simulator;

// No std::string: a thread's destructor for it would keep the library from being unloaded.
thread_local char t_lastError[1024] = "";

bool attempt(const std::function<void(Simulator&)>& work) {
    t_lastError[0] = '\0';
    try {
        work(Simulator::instance());
        return true;
    } catch (const std::exception& error) {
        std::snprintf(t_lastError, sizeof t_lastError, "%s", error.what());
        return false;
    }
}

bool change(const std::function<void(Bench&)>& make) {
    return attempt([&](Simulator& simulator) { simulator.change(make); });
}

bool changeInstrument(int32_t serialNumber, const std::function<void(Json&)>& make) {
    return change([&](Bench& next) { kvasim::changeInstrument(next, serialNumber, make); });
}

std::string text(const char* given) {
    if (given == nullptr)
        throw kvasim::InputError("no text");
    return given;
}

/** A text for the caller, who frees it; null when it is refused. */
char* copyOf(const std::function<std::string(Simulator&)>& make) {
    char* copy = nullptr;
    attempt([&](Simulator& simulator) {
        copy = ::strdup(make(simulator).c_str());
        if (copy == nullptr)
            throw std::bad_alloc();
    });
    return copy;
}

} // namespace

bool KvaSim_LoadFile(const char* path) {
    return attempt([&](Simulator& simulator) { simulator.load(BenchStore::open(text(path))); });
}

bool KvaSim_LoadJson(const char* json) {
    return attempt([&](Simulator& simulator) {
        simulator.load(std::make_unique<BenchStore>(kvasim::parseBench(text(json))));
    });
}

void KvaSim_Reset(void) {
    attempt([](Simulator& simulator) {
        simulator.load(nullptr);
        simulator.log().clear(true);
    });
}

bool KvaSim_Plug(int32_t serialNumber) {
    return changeInstrument(serialNumber,
                            [](Json& instrument) { kvasim::setPlugged(instrument, true); });
}

bool KvaSim_Unplug(int32_t serialNumber) {
    return changeInstrument(serialNumber,
                            [](Json& instrument) { kvasim::setPlugged(instrument, false); });
}

bool KvaSim_PowerCycle(int32_t serialNumber) {
    return changeInstrument(serialNumber, [](Json& instrument) {
        kvasim::powerCycle(instrument);
        instrument["poweredOn"] = 0;
    });
}

bool KvaSim_Set(int32_t serialNumber, const char* jsonMergePatch) {
    return changeInstrument(serialNumber, [&](Json& instrument) {
        kvasim::patch(instrument, kvasim::parseJson(text(jsonMergePatch)));
    });
}

bool KvaSim_AddFault(const char* json) {
    return change([&](Bench& next) {
        kvasim::addFault(next.faults, kvasim::makeFaultRule(kvasim::parseJson(text(json)), ""));
    });
}

void KvaSim_ClearFaults(void) {
    change([](Bench& next) { next.faults.clear(); });
}

void KvaSim_EmitEvent(uint32_t code, uint32_t rawDataCount, int32_t error) {
    attempt([&](Simulator& simulator) { simulator.events().post({code, rawDataCount, error}); });
}

void KvaSim_WaitForEvents(void) {
    attempt([](Simulator& simulator) { simulator.events().waitUntilDelivered(); });
}

char* KvaSim_State(void) {
    return copyOf([](Simulator& simulator) { return kvasim::formatJson(simulator.state()); });
}

char* KvaSim_CallLog(void) {
    return copyOf([](Simulator& simulator) { return simulator.log().toJson(); });
}

void KvaSim_ClearCallLog(void) {
    attempt([](Simulator& simulator) { simulator.log().clear(false); });
}

const char* KvaSim_LastError(void) {
    return t_lastError;
}

void KvaSim_Free(char* text) {
    std::free(text);
}
