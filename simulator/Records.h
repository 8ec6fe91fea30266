/**
 * The one description of the library's functions and records: for each field its name in
 * the record, its bytes, its place in the JSON of a bench file, and its form there. Writing and
 * reading it again gives the same bytes.
 */
#ifndef SIMULATOR_RECORDS_H
#define SIMULATOR_RECORDS_H

#include "instrument/KvaSdk.h"
#include "simulator/Json.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvasim {

/** The names of the library's functions. */
extern const std::array<std::string_view, 13> functionNames;

/** How the bytes of a field are written in JSON. */
struct FieldType {
    /** @throws InputError with @p path and the reason */
    void (*read)(const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t size);
    Json (*write)(const std::uint8_t* bytes, std::size_t size);
    std::size_t elementSize = 0; /**< in bytes; 0: not an array */
    bool isString = false;       /**< `kvasim set` then takes plain text */
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
    const char* place; /**< in the JSON, "port.type", "firmware[1]"; null: not in the JSON */
    const char* name;  /**< in the record, "portType"; empty: none */
    const FieldType* type;
    ByteRange bytes; /**< in the record */
};

struct Record {
    const char* source; /**< the function that answers with it, or with a list of it */
    std::size_t size;   /**< of the whole record, in bytes */
    std::initializer_list<Field> fields;
};

extern const Record portRecord;        /**< KVA_PORTINFO */
extern const Record deviceRecord;      /**< KVA_DEVICEINFO */
extern const Record optionRecord;      /**< KVA_JIG_ACTIONOPTIONFACTORYDATA */
extern const Record networkRecord;     /**< KVA_NETWORKINFO */
extern const Record modeRecord;        /**< the power-off mode, one byte */
extern const Record calibrationRecord; /**< KVA_JIG_CALREFDATA */

/** A field in the JSON of an instrument. */
struct Place {
    std::string path; /**< "network.active.SSID" */
    const Field* field;
};

/** All fields of an instrument. */
std::vector<Place> instrumentPlaces();

/** "device.firmware[1]" as the pointer /device/firmware/1. */
Json::json_pointer pointerTo(const std::string& place);

/** Reads a record from JSON that has all its fields and was checked. */
template <typename Bytes>
Bytes fromJson(const Record& record, const Json& json) {
    Bytes bytes{};
    for (const auto& [place, name, type, range] : record.fields) {
        if (place != nullptr)
            type->read(json.at(pointerTo(place)), place,
                       reinterpret_cast<std::uint8_t*>(&bytes) + range.offset, range.size);
    }
    return bytes;
}

/** The record as JSON. @param bytes the first of `record.size` bytes */
Json toJson(const Record& record, const void* bytes);

/** The record that a function answers with; null when it answers with a result code alone. */
const Record* answerRecord(std::string_view function);

/** A field as the record declares it ("IPAddress", "rfWhite.spcData"), or one element of an array
    ("IPAddress[3]"). "mode" is the answer of `KVA_GetShutdownTime`.
    @return nothing when the record has no such field */
std::optional<ByteRange> rangeOf(const Record& record, std::string_view name);

} // namespace kvasim

#endif
