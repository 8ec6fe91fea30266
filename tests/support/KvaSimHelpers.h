/**
 * KvaSim.h for C++: texts as std::string and JSON, owned by the caller.
 */
#ifndef TESTS_SUPPORT_KVASIMHELPERS_H
#define TESTS_SUPPORT_KVASIMHELPERS_H

#include "instrument/KvaSdk.h"
#include "simulator/KvaSim.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace kvasim_test {

/** Takes a text over from the library; empty for null. */
inline std::string taken(char* text) {
    std::string copy = text == nullptr ? "" : text;
    KvaSim_Free(text);
    return copy;
}

/** The bench, as JSON and as text. Null and empty when there is none. */
inline std::string stateText() {
    return taken(KvaSim_State());
}

inline nlohmann::json state() {
    const std::string text = stateText();
    return text.empty() ? nlohmann::json() : nlohmann::json::parse(text);
}

/** One instrument of the bench; null when it is not there. */
inline nlohmann::json instrument(std::int32_t serialNumber) {
    const nlohmann::json bench = state();
    if (bench.is_object()) {
        for (const auto& candidate : bench.at("instruments")) {
            if (candidate.at("serialNumber") == serialNumber)
                return candidate;
        }
    }
    return {};
}

/** The log, oldest call first. */
inline nlohmann::json callLog() {
    return nlohmann::json::parse(taken(KvaSim_CallLog()));
}

/** The names of the logged functions, oldest first, joined by blanks. */
inline std::string calledFunctions() {
    std::string names;
    for (const auto& call : callLog())
        names += (names.empty() ? "" : " ") + call.at("function").get<std::string>();
    return names;
}

inline bool loadJson(const nlohmann::json& bench) {
    return KvaSim_LoadJson(bench.dump().c_str());
}

inline bool set(std::int32_t serialNumber, const nlohmann::json& patch) {
    return KvaSim_Set(serialNumber, patch.dump().c_str());
}

inline bool addFault(const nlohmann::json& rule) {
    return KvaSim_AddFault(rule.dump().c_str());
}

/** The list; empty where the library refuses. */
inline std::vector<KVA_PORTINFO> ports() {
    std::vector<KVA_PORTINFO> list(1000);
    std::int32_t count = -1;
    if (KVA_GetDevicePortList(list.data(), &count, 1000) != KVA_SUCCESS)
        return {};
    list.resize(static_cast<std::size_t>(count));
    return list;
}

/** The entry of an instrument; zero when it is not in the list. */
inline KVA_PORTINFO portOf(std::int32_t serialNumber) {
    for (const KVA_PORTINFO& port : ports()) {
        if (port.serialNumber == serialNumber)
            return port;
    }
    return {};
}

inline KVA_RESULT connectTo(std::int32_t serialNumber) {
    const KVA_PORTINFO port = portOf(serialNumber);
    return KVA_Connect(&port, 10);
}

} // namespace kvasim_test

#endif
