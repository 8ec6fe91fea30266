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

/** The exported name, for instance "KVA_Connect". */
const char* functionName(Function function);

/** The function of that name, nothing for an unknown name. */
std::optional<Function> functionFromName(std::string_view name);

/** The name of a result, the names of several warning bits joined by a slash; empty for a value
    without a name. */
std::string resultName(KVA_RESULT result);

/** The result of that name, as `resultName` writes it; nothing for an unknown name. */
std::optional<KVA_RESULT> resultFromName(std::string_view name);

} // namespace kvasim

#endif
