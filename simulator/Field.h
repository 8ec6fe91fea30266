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
struct FieldType {
    /** @throws InputError with @p path and the reason */
    void (*read)(const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t size);
    Json (*write)(const std::uint8_t* bytes, std::size_t size);
    std::size_t elementSize; /**< in bytes; 0: it is no array */
    bool isString;           /**< so that `kvasim set` takes a text as it is */
};

extern const FieldType flagType;     /**< true or false */
extern const FieldType moduleType;   /**< one byte: false (0), true (1) or 0 to 255 */
extern const FieldType byteType;     /**< 0 to 255 */
extern const FieldType int32Type;    /**< signed 32-bit */
extern const FieldType uint32Type;   /**< unsigned 32-bit */
extern const FieldType durationType; /**< unsigned 32-bit, 0 to 600000 milliseconds */
extern const FieldType timeType;     /**< signed 64-bit: milliseconds since 1970, 0 or more */
extern const FieldType bytesType;    /**< {"hex": "00ff…"}, {"fill": n} or {"seed": n} */
extern const FieldType textType;     /**< a string without NUL that fits the field, or its bytes */
extern const FieldType addressType;  /**< four bytes: "192.168.0.10" */
extern const FieldType macType;      /**< six bytes: "02:00:00:0f:42:41" */
extern const FieldType digitsType;   /**< eight binary-coded decimals: a string, or its bytes */
extern const FieldType floatsType;   /**< an array: each a number or "0x7fc00001", its bits */

/** Some bytes of a record. */
struct ByteRange {
    std::size_t offset;
    std::size_t size;
};

struct Field {
    const char* place; /**< in the JSON, "port.type", "firmware[1]"; null: not there */
    const char* name;  /**< in the record, "portType"; null: none */
    const FieldType* type;
    ByteRange bytes; /**< in the record */

    /** The bytes of one element, "[3]"; of the whole field where @p element is empty.
        @return nothing where the field has no such element */
    std::optional<ByteRange> range(std::string_view element) const;
};

} // namespace kvasim

#endif
