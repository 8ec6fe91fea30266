#ifndef TESTS_FUZZ_NAIVE_H
#define TESTS_FUZZ_NAIVE_H

#include "instrument/KvaSdk.h"

#include <optional>
#include <string>

/** A second, slow and plain implementation of the files' rules, over a text in memory. The
    product's own is compared with it. */
namespace Naive {

/** The value of a key, cut to 511 bytes and at a NUL byte; nothing when the key is not there. */
std::optional<std::string> find(const std::string& text, const std::string& section,
                                const std::string& key);

/** Reads network settings into a zeroed record. */
bool readSettings(const std::string& text, KVA_NETWORKINFO& info);

/** Reads calibration values.
    @param isAdapter  the rules of the adapter's file, or of the white plate's
    @param record     the bytes of the record
    @param printed    what goes to the standard output */
bool readCalibration(const std::string& text, bool isAdapter, std::string& record,
                     std::string& printed);

} // namespace Naive

#endif
