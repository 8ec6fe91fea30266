#ifndef TESTS_FUZZ_NAIVEINI_H
#define TESTS_FUZZ_NAIVEINI_H

#include "instrument/KvaSdk.h"

#include <optional>
#include <string>

/** A second, slow and plain implementation of the settings file's rules, over a text in memory. The
    product's own is compared with it. */
namespace NaiveIni {

/** The value of a key, cut to 511 bytes and at a NUL byte; nothing when the key is not there. */
std::optional<std::string> find(const std::string& text, const std::string& section,
                                const std::string& key);

/** What a read of the whole file makes of a zeroed record. */
struct Settings {
    bool accepted;
    KVA_NETWORKINFO info;
};
Settings read(const std::string& text);

} // namespace NaiveIni

#endif
