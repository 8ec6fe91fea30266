/**
 * The fields of the records that the library's functions answer with, by name.
 */
#ifndef SIMULATOR_ANSWERFIELDS_H
#define SIMULATOR_ANSWERFIELDS_H

#include "simulator/SdkNames.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace kvasim {

/** Some bytes of a record. */
struct ByteRange {
    std::size_t offset;
    std::size_t size;
};

/** The size of the record that the function answers with, an entry of the list for
    `KVA_GetDevicePortList`; 0 for a function that answers with its result only. */
std::size_t answerSize(Function function);

/** A field as the record declares it ("IPAddress", "rfWhite.spcData"), or one element of an array
    ("IPAddress[3]"). "mode" is the answer of `KVA_GetShutdownTime`.
    @return nothing when the function's answer has no such field */
std::optional<ByteRange> answerField(Function function, std::string_view name);

} // namespace kvasim

#endif
