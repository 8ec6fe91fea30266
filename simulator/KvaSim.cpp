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
using kvasim::Simulator;

// No std::string: a thread's destructor for it would keep the library from being unloaded.
thread_local char t_lastError[1024] = "";

void setLastError(const char* reason) {
    std::snprintf(t_lastError, sizeof t_lastError, "%s", reason);
}

template <typename Work>
bool attempt(const Work& work) {
    setLastError("");
    try {
        work(Simulator::instance());
        return true;
    } catch (const std::exception& error) {
        setLastError(error.what());
        return false;
    }
}

bool change(const std::function<void(Bench&)>& make) {
    return attempt([&](Simulator& simulator) {
        simulator.change([&](Bench& next) {
            make(next);
            return true;
        });
    });
}

std::string text(const char* given) {
    if (given == nullptr)
        throw kvasim::InputError("no text");
    return given;
}

/** A copy for the caller, who frees it. */
char* copied(const std::string& source) {
    auto* copy = static_cast<char*>(std::malloc(source.size() + 1));
    if (copy == nullptr)
        throw std::bad_alloc();
    std::memcpy(copy, source.c_str(), source.size() + 1);
    return copy;
}

} // namespace

bool KvaSim_LoadFile(const char* path) {
    return attempt([&](Simulator& simulator) { simulator.loadFile(text(path)); });
}

bool KvaSim_LoadJson(const char* json) {
    return attempt([&](Simulator& simulator) { simulator.loadJson(text(json)); });
}

void KvaSim_Reset(void) {
    attempt([](Simulator& simulator) { simulator.reset(); });
}

bool KvaSim_Plug(int32_t serialNumber) {
    return attempt([&](Simulator& simulator) { simulator.plug(serialNumber, true); });
}

bool KvaSim_Unplug(int32_t serialNumber) {
    return attempt([&](Simulator& simulator) { simulator.plug(serialNumber, false); });
}

bool KvaSim_PowerCycle(int32_t serialNumber) {
    return change([&](Bench& next) {
        kvasim::powerCycle(kvasim::instrumentOf(next, serialNumber), kvasim::StartUp::Skipped);
    });
}

bool KvaSim_Set(int32_t serialNumber, const char* jsonMergePatch) {
    return change([&](Bench& next) {
        const kvasim::Json patch = kvasim::parseJson(text(jsonMergePatch));
        kvasim::patch(kvasim::instrumentOf(next, serialNumber), patch);
        kvasim::requireDifferentSerialNumbers(next);
    });
}

bool KvaSim_AddFault(const char* json) {
    return change([&](Bench& next) {
        const kvasim::Json rule = kvasim::parseJson(text(json));
        kvasim::addFault(next.faults, kvasim::makeFaultRule(rule, ""));
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
    char* answer = nullptr;
    attempt([&](Simulator& simulator) { answer = copied(kvasim::formatJson(simulator.state())); });
    return answer;
}

char* KvaSim_CallLog(void) {
    char* answer = nullptr;
    attempt([&](Simulator& simulator) { answer = copied(simulator.log().toJson()); });
    return answer;
}

void KvaSim_ClearCallLog(void) {
    attempt([](Simulator& simulator) { simulator.log().clear(); });
}

const char* KvaSim_LastError(void) {
    return t_lastError;
}

void KvaSim_Free(char* text) {
    std::free(text);
}
