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

/** Input that is refused, or a state that cannot be kept. `what()` is one line for people; it never
    quotes values of the input, which may hold a security key. */
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Whether a document may hold comments, after // to the end of the line or between slashes with
    asterisks. */
enum class Comments { Refused, Allowed };

/** Parses one JSON document in UTF-8.
    @throws InputError for a syntax error (with line and column), a number that no double holds, a
    key given twice in one object, more than 64 levels or an object of more than 1000 keys. */
Json parseJson(std::string_view text, Comments comments = Comments::Refused);

/** The document with an indent of two, one field a line; arrays of plain values stay on one line.
    Ends with a line feed. */
std::string formatJson(const Json& value);

/** @throws InputError always: "path: reason". */
[[noreturn]] void refuse(const std::string& path, const std::string& reason);

/** "path.key", or the key where the path is empty. */
std::string joined(const std::string& path, const std::string& key);

/** The fields of one JSON object. Asked for field by field; `finish` then refuses what was not
   asked for. Keeps a reference to the object, which must outlive it. */
class JsonFields {
public:
    /** @throws InputError when @p object is not an object. */
    JsonFields(const Json& object, std::string path);

    /** The field, or null when it is left out. */
    const Json* find(const char* key);

    /** The field. @throws InputError when it is left out. */
    const Json& get(const char* key);

    std::string pathOf(const char* key) const { return joined(m_path, key); }

    /** @throws InputError when the object has a field that was not asked for. */
    void finish() const;

private:
    const Json& m_object;
    std::string m_path;
    std::vector<std::string> m_known;
};

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
const Json& readArray(const Json& value, const std::string& path);

/** Lower-case hexadecimal, two digits a byte, with @p separator between the bytes. */
std::string toHex(const std::uint8_t* bytes, std::size_t size, std::string_view separator = {});

/** Reads exactly @p size bytes of hexadecimal with @p separator between them.
    @return false when the text is anything else; the bytes are then not to be used. */
bool fromHex(std::string_view text, std::string_view separator, std::uint8_t* bytes,
             std::size_t size);

} // namespace kvasim

#endif
