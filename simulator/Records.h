/**
 * The one description of the library's records: for each field its name in the record, its bytes,
 * its place in the JSON of a bench file, and how it is written there.
 */
#ifndef SIMULATOR_RECORDS_H
#define SIMULATOR_RECORDS_H

#include "simulator/Field.h"
#include "simulator/SdkNames.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kvasim {

struct Record {
    const Field* first;
    const Field* last;              /**< behind the last one */
    std::size_t size;               /**< of the whole record, in bytes */
    std::optional<Function> source; /**< answers with it, or with a list of it */

    const Field* begin() const { return first; }
    const Field* end() const { return last; }
};

extern const Record portRecord;        /**< KVA_PORTINFO */
extern const Record deviceRecord;      /**< KVA_DEVICEINFO */
extern const Record optionRecord;      /**< KVA_JIG_ACTIONOPTIONFACTORYDATA */
extern const Record networkRecord;     /**< KVA_NETWORKINFO */
extern const Record modeRecord;        /**< the power-off mode, one byte */
extern const Record calibrationRecord; /**< KVA_JIG_CALREFDATA */

/** A record as a part of an instrument's JSON. */
struct Part {
    const char* place; /**< empty: its fields are in the instrument itself */
    const Record* record;
};

/** All parts of an instrument. */
extern const std::array<Part, 9> instrumentParts;

/** "device.firmware[1]" as the pointer /device/firmware/1. */
Json::json_pointer pointerTo(const std::string& place);

/** Reads a record from JSON that has all its fields, checked before. */
template <typename Bytes>
Bytes fromJson(const Record& record, const Json& json) {
    Bytes bytes{};
    for (const Field& field : record) {
        if (field.place != nullptr)
            field.type->read(json.at(pointerTo(field.place)), field.place,
                             reinterpret_cast<std::uint8_t*>(&bytes) + field.bytes.offset,
                             field.bytes.size);
    }
    return bytes;
}

/** The record as JSON. @param bytes the first of `record.size` bytes */
Json toJson(const Record& record, const void* bytes);

/** The record that a function answers with; null where that is its result only. */
const Record* answerRecord(Function function);

/** A field as the record declares it ("IPAddress", "rfWhite.spcData"), or one element of an array
    ("IPAddress[3]"). "mode" is the answer of `KVA_GetShutdownTime`.
    @return nothing when the function's answer has no such field */
std::optional<ByteRange> answerField(Function function, std::string_view name);

} // namespace kvasim

#endif
