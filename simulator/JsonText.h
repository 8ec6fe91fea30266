/**
 * JSON as text: a strict, bounded parser and a writer for files that people read.
 *
 * Nothing here depends on the locale. Thread-safe: no shared state.
 */
#ifndef SIMULATOR_JSONTEXT_H
#define SIMULATOR_JSONTEXT_H

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <string_view>

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
    @throws InputError for a syntax error (with line and column, both counted from 1), a number that
    no double holds, a key given twice in one object, more than 64 levels or an object of more than
    1000 keys. */
Json parseJson(std::string_view text, Comments comments = Comments::Refused);

/** The document with an indent of two, one field a line; arrays of plain values stay on one line.
    Ends with a line feed. */
std::string formatJson(const Json& value);

} // namespace kvasim

#endif
