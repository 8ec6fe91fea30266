#ifndef COMMAND_VALUEFILE_H
#define COMMAND_VALUEFILE_H

#include "command/Fault.h"
#include "command/InputFile.h"
#include "instrument/CalibrationAccessory.h"

#include <optional>
#include <vector>

/**
 * The content of a calibration value file, checked strictly: a file that is accepted here gives the
 * same bytes in the tool's reader, which also accepts many files that are refused here.
 *
 * Four lines are required, each ended by LF or CR LF. The third is the serial number in decimal
 * digits, the fourth exactly the values: each complete cell is a decimal such as 92.465, -0.5 or
 * 9.25e-1 within the range of single precision.
 */
struct ValueFile {
    const CalibrationAccessory* accessory = nullptr;
    CalibrationAccessory::SerialNo serialNo = {};
    std::vector<float> values; ///< as many as the accessory has

    /** Copies them into their part of the instrument's record; no other byte changes. */
    void mergeInto(KVA_JIG_CALREFDATA& record) const {
        accessory->merge(serialNo, values.data(), record);
    }

    /** Nothing, and every error in @p faults, unless the file is valid for @p accessory. */
    static std::optional<ValueFile> check(const InputFile& file,
                                          const CalibrationAccessory& accessory, Faults& faults);

    /** The accessory that the file is probably for: by the number of values, else by the serial
        number. */
    static const CalibrationAccessory& likelyAccessory(const InputFile& file);
};

#endif
