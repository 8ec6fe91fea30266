/**
 * One field of a record: where its bytes are, what it is called in the record and in a bench file,
 * and how its bytes are written in JSON. What is written and read again has the same bytes.
 */
#ifndef SIMULATOR_FIELD_H
#define SIMULATOR_FIELD_H

#include "simulator/Json.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kvasim {

/** How the bytes of a field are written in JSON. */
enum class Kind {
    Flag,     /**< true or false */
    Module,   /**< one byte: false (0), true (1) or 0 to 255 */
    Byte,     /**< 0 to 255 */
    Int32,    /**< signed 32-bit */
    Uint32,   /**< unsigned 32-bit */
    Duration, /**< unsigned 32-bit, 0 to 600000 milliseconds */
    Time,     /**< signed 64-bit: milliseconds since 1970, 0 or more */
    Bytes,    /**< {"hex": "00ff…"}, {"fill": n} or {"seed": n} */
    Text,     /**< a string without NUL that fits the field, or the whole field as `Bytes` */
    Address,  /**< four bytes: "192.168.0.10" */
    Mac,      /**< six bytes: "02:00:00:0f:42:41" */
    Digits,   /**< four bytes of binary-coded decimal: eight digits as a string, or as `Bytes` */
    Floats    /**< an array of single-precision values, each a number or "0x7fc00001", its bits */
};

/** Some bytes of a record. */
struct ByteRange {
    std::size_t offset;
    std::size_t size;
};

struct Field {
    const char* place; /**< in the JSON, "port.type", "firmware[1]"; null: not there */
    const char* name;  /**< in the record, "portType"; null: none */
    Kind kind;
    std::size_t offset; /**< in the record */
    std::size_t size;   /**< in bytes */

    /** Whether the JSON of the field is a string, so that `kvasim set` takes a text as it is. */
    bool isString() const;

    /** The bytes of one element, "[3]"; of the whole field where @p element is empty.
        @return nothing where the field has no such element */
    std::optional<ByteRange> range(std::string_view element) const;

    /** @param record the record's first byte
        @throws InputError with @p path and the reason */
    void read(const Json& value, const std::string& path, std::uint8_t* record) const;
    Json write(const std::uint8_t* record) const;
};

/** The JSON of `Kind::Digits`. */
Json digitsToJson(const std::uint8_t* bytes, std::size_t size);

} // namespace kvasim

#endif
