/**
 * The one description of the records: what each field of an instrument is called in a bench file
 * and in the library's record, and where it is kept.
 */
#ifndef SIMULATOR_RECORDS_H
#define SIMULATOR_RECORDS_H

#include "simulator/Field.h"
#include "simulator/SdkNames.h"

#include <cstddef>
#include <vector>

namespace kvasim {

/** The fields of one record. */
struct Record {
    const Field* first;
    const Field* last; /**< behind the last one */
    std::size_t size;  /**< of the whole record, in bytes */

    const Field* begin() const { return first; }
    const Field* end() const { return last; }
};

/** A record as a part of an instrument. */
struct Part {
    const char* place; /**< in the JSON; empty: its fields are the instrument's own */
    const Record* record;
    std::size_t offset; /**< in `Instrument` */

    /** For a part that need not be there: where `Instrument` says whether it is, and the offset of
        the part that has the values of its left-out fields. */
    struct Optional {
        std::size_t isThere;
        std::size_t otherwise;
        const char* otherwisePlace;
    };
    const Optional* optional; /**< null: always there */
};

/** The parts of an instrument, in the order of its JSON. A part that need not be there comes after
    the one that it takes its values from. */
struct Parts {
    const Part* begin() const;
    const Part* end() const;
};
constexpr Parts parts;

extern const Record portRecord;
extern const Record networkRecord;

/** The record that a function answers with; null for a function that has none. */
const Record* answerRecord(Function function);

} // namespace kvasim

#endif
