#include "simulator/SdkNames.h"

#include <algorithm>
#include <array>

namespace kvasim {

namespace {

struct NamedResult {
    KVA_RESULT value;
    const char* name;
};

/** The warnings come last; they are bits, and several of them may be set. */
constexpr std::array<NamedResult, 25> results = {{
    {KVA_SUCCESS, "KVA_SUCCESS"},
    {KVA_ERROR, "KVA_ERROR"},
    {KVA_ERROR_CONNECT, "KVA_ERROR_CONNECT"},
    {KVA_ERROR_DISCONNECT, "KVA_ERROR_DISCONNECT"},
    {KVA_ERROR_CONNECT_TIMEOUT, "KVA_ERROR_CONNECT_TIMEOUT"},
    {KVA_ERROR_CONNECT_ALREADY, "KVA_ERROR_CONNECT_ALREADY"},
    {KVA_ERROR_INSTRUMENT_UNAVAILABLE, "KVA_ERROR_INSTRUMENT_UNAVAILABLE"},
    {KVA_ERROR_INSTRUMENT_INFORMATION, "KVA_ERROR_INSTRUMENT_INFORMATION"},
    {KVA_ERROR_ARGUMENT, "KVA_ERROR_ARGUMENT"},
    {KVA_ERROR_COMMUNICATION_SEND, "KVA_ERROR_COMMUNICATION_SEND"},
    {KVA_ERROR_COMMUNICATION_RECEIVE, "KVA_ERROR_COMMUNICATION_RECEIVE"},
    {KVA_ERROR_COMMUNICATION_CHECKSUM, "KVA_ERROR_COMMUNICATION_CHECKSUM"},
    {KVA_ERROR_COMMUNICATION_PARAM, "KVA_ERROR_COMMUNICATION_PARAM"},
    {KVA_ERROR_COMMUNICATION_TIMEOUT, "KVA_ERROR_COMMUNICATION_TIMEOUT"},
    {KVA_ERROR_CANT_USED, "KVA_ERROR_CANT_USED"},
    {KVA_ERROR_NO_DATA, "KVA_ERROR_NO_DATA"},
    {KVA_ERROR_NAK, "KVA_ERROR_NAK"},
    {KVA_ERROR_NAV, "KVA_ERROR_NAV"},
    {KVA_ERROR_NSP, "KVA_ERROR_NSP"},
    {KVA_ERROR_CNF, "KVA_ERROR_CNF"},
    {KVA_ERROR_NDT, "KVA_ERROR_NDT"},
    {KVA_ERROR_NEQ, "KVA_ERROR_NEQ"},
    {KVA_WARNING_WCALIB_TEMP, "KVA_WARNING_WCALIB_TEMP"},
    {KVA_WARNING_BATTERY_EMPTY, "KVA_WARNING_BATTERY_EMPTY"},
    {KVA_WARNING_INITIALDATE_SETTING, "KVA_WARNING_INITIALDATE_SETTING"},
}};

} // namespace

constexpr std::array<std::string_view, 13> functionNames = {
    "KVA_RegisterDeviceEventHandler",
    "KVA_GetDevicePortList",
    "KVA_Connect",
    "KVA_Disconnect",
    "KVA_GetDeviceInfo",
    "KVA_GetNetworkInfo",
    "KVA_SetNetworkInfo",
    "KVA_GetShutdownTime",
    "KVA_SetShutdownTime",
    "KVA_JIG_GetFactoryCalib_CALREFDATA",
    "KVA_JIG_SetFactoryCalib_CALREFDATA",
    "KVA_JIG_SetFactoryCalib_WriteSector",
    "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA",
};

std::string resultName(KVA_RESULT result) {
    std::string name;
    for (const NamedResult& named : results) {
        if (named.value == result)
            return named.name;
        if (result > 0 && named.value > 0 && (result & named.value) != 0)
            name += (name.empty() ? "" : "/") + std::string(named.name);
    }
    return name;
}

std::optional<KVA_RESULT> resultFromName(std::string_view name) {
    const auto slash = name.find('/');
    const auto first = std::find_if(results.begin(), results.end(), [&](const NamedResult& named) {
        return named.name == name.substr(0, slash);
    });
    if (first == results.end())
        return std::nullopt;
    if (slash == std::string_view::npos)
        return first->value;
    const auto others = resultFromName(name.substr(slash + 1));
    if (!others || first->value <= 0 || *others <= 0)
        return std::nullopt; // only warnings can be joined
    return first->value | *others;
}

} // namespace kvasim
