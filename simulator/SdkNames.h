/**
 * The names of the library's functions and result codes, as rules and logs use them.
 */
#ifndef SIMULATOR_SDKNAMES_H
#define SIMULATOR_SDKNAMES_H

#include "instrument/KvaSdk.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kvasim {

/** The library's functions, in the order of their declarations. */
enum class Function {
    RegisterDeviceEventHandler,
    GetDevicePortList,
    Connect,
    Disconnect,
    GetDeviceInfo,
    GetNetworkInfo,
    SetNetworkInfo,
    GetShutdownTime,
    SetShutdownTime,
    GetCalibration,
    SetCalibration,
    WriteSector,
    GetFactoryOptions
};

constexpr std::size_t functionCount = 13;

/** The exported name, for instance "KVA_Connect", and the function of a name, if there is one. */
const char* functionName(Function function);
std::optional<Function> functionFromName(std::string_view name);

/** The name of a result, the names of several warning bits joined by a slash; empty for a value
    without a name. And the result of such a name, if there is one. */
std::string resultName(KVA_RESULT result);
std::optional<KVA_RESULT> resultFromName(std::string_view name);

} // namespace kvasim

#endif
