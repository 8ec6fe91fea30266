/**
 * JSON: a strict, bounded parser, a writer for files that people read, and readers of values.
 *
 * Every reader takes the path of its value ("instruments[0].port.name") and throws InputError with
 * that path and the reason when the value has the wrong type or is out of range.
 */
#ifndef SIMULATOR_JSON_H
#define SIMULATOR_JSON_H

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kvasim {

/** Objects keep the order of their fields, so that a saved file reads like the one written. */
using Json = nlohmann::ordered_json;

/** Input that is refused, or a state that cannot be saved. `what()` is one line for people. It
   never quotes values of the input, which may hold a security key. */
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class Comments { Refused, Allowed };

/** Parses one JSON document in UTF-8.
    @throws InputError for a syntax error (with line and column), a number that no double holds, a
    key given twice in one object, more than 64 levels or an object of more than 1000 keys. */
Json parseJson(std::string_view text, Comments comments = Comments::Refused);

/** The document with an indent of two, one field a line, arrays of plain values on one line. */
std::string formatJson(const Json& value);

/** @throws InputError always: "path: reason". */
[[noreturn]] void refuse(const std::string& path, const std::string& reason);

/** The same, unless @p isGood. */
void require(bool isGood, const std::string& path, const std::string& reason);

/** "path.key", or only one of them when the other is empty. */
std::string joined(const std::string& path, const std::string& key);

/** Refuses a value that is not an object, and an object with a field that is not in @p known. */
void requireFields(const Json& object, const std::string& path,
                   const std::vector<std::string>& known);

/** A required field. */
const Json& fieldOf(const Json& object, const std::string& path, const char* key);

/** An integer from @p lowest to @p highest. */
std::int64_t readInteger(const Json& value, const std::string& path, std::int64_t lowest,
                         std::int64_t highest);

/** An integer that fits the type, of 32 bits at most. */
template <typename Number>
Number readNumber(const Json& value, const std::string& path) {
    using Limits = std::numeric_limits<Number>;
    return static_cast<Number>(readInteger(value, path, Limits::min(), Limits::max()));
}

bool readBool(const Json& value, const std::string& path);
std::string readString(const Json& value, const std::string& path);

/** "0x7fc00001" */
std::string toHex(std::uint32_t number);

/** Two digits per byte, with @p separator between the bytes. */
std::string toHex(const std::uint8_t* bytes, std::size_t size, std::string_view separator = {});

} // namespace kvasim

#endif
