#ifndef INSTRUMENT_CALIBRATIONACCESSORY_H
#define INSTRUMENT_CALIBRATIONACCESSORY_H

#include "instrument/KvaSdk.h"

#include <cstddef>
#include <cstdint>

class CFileIO;

/**
 * What differs between the two accessories that an instrument is calibrated with: the white
 * calibration plate and the ambient light adapter. Their part of `KVA_JIG_CALREFDATA` is a serial
 * number followed by the values. Constant; any thread.
 */
struct CalibrationAccessory {
    using SerialNo = std::uint8_t[4]; ///< binary-coded decimal, most significant byte first

    static const CalibrationAccessory whitePlate;
    static const CalibrationAccessory ambientAdapter;

    bool (CFileIO::*readFile)(const char* path, KVA_JIG_CALREFDATA* record);
    SerialNo KVA_JIG_CALREFDATA::*serialNo;
    unsigned int lowestSerialNo;  ///< the lowest that a file may carry
    unsigned int highestSerialNo; ///< the highest that a file may carry
    const float* (*values)(const KVA_JIG_CALREFDATA& record);
    std::size_t valueCount;
    std::size_t offset; ///< of its part in the record, in bytes

    /** Of its part of the record, in bytes. */
    std::size_t size() const { return sizeof(SerialNo) + valueCount * sizeof(float); }

    bool isValid(unsigned int serial) const {
        return serial >= lowestSerialNo && serial <= highestSerialNo;
    }

    /** The serial number that @p record holds, as a number; digits above 9 are not refused. */
    unsigned int serialNoIn(const KVA_JIG_CALREFDATA& record) const;

    /** Copies the serial number and `valueCount` values into their part of @p record. No other
        byte changes. */
    void merge(const SerialNo& newSerialNo, const float* newValues,
               KVA_JIG_CALREFDATA& record) const;

    enum class FileMerge {
        Merged,
        Unreadable,   ///< as `readFile` failed
        WrongSerialNo ///< out of the range that a file may carry
    };

    /** Merges a value file into @p record, which was read from the instrument. A line that the file
        lacks leaves its field unchanged; a refused file leaves the whole record unchanged.
        @param path  in the local 8-bit encoding */
    FileMerge mergeFile(const char* path, KVA_JIG_CALREFDATA& record) const;
};

#endif
