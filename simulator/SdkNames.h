/**
 * The names of the library's functions and result codes, as rules and logs use them.
 */
#ifndef SIMULATOR_SDKNAMES_H
#define SIMULATOR_SDKNAMES_H

#include "instrument/KvaSdk.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace kvasim {

extern const std::array<std::string_view, 13> functionNames;

/** The name of a result, the names of several warning bits joined by a slash; empty for a value
    without a name. And the result of such a name, if there is one. */
std::string resultName(KVA_RESULT result);
std::optional<KVA_RESULT> resultFromName(std::string_view name);

} // namespace kvasim

#endif
