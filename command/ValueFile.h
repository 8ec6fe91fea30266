#ifndef COMMAND_VALUEFILE_H
#define COMMAND_VALUEFILE_H

#include "command/Fault.h"
#include "command/InputFile.h"
#include "instrument/CalibrationAccessory.h"

#include <optional>
#include <vector>

/**
 * The content of a calibration value file, checked strictly: what is accepted here, the tool's
 * reader takes to the same bytes. It refuses a good deal that the tool's reader accepts.
 *
 * Four lines have to be there, each with its end, LF or CR LF. The third is the serial number in
 * decimal digits, the fourth exactly the values: each cell, as a whole, a decimal such as 92.465,
 * -0.5 or 9.25e-1, whose value single precision can hold.
 */
struct ValueFile {
    const CalibrationAccessory* accessory = nullptr;
    CalibrationAccessory::SerialNo serialNo = {};
    std::vector<float> values; ///< as many as the accessory has

    /** Puts them into their part of the instrument's record; no other byte changes. */
    void mergeInto(KVA_JIG_CALREFDATA& record) const {
        accessory->merge(serialNo, values.data(), record);
    }

    /** Nothing, and a fault for everything that is wrong in @p faults, unless the file is right
        for @p accessory. */
    static std::optional<ValueFile> check(const InputFile& file,
                                          const CalibrationAccessory& accessory, Faults& faults);

    /** The accessory that the file looks meant for: by the count of its values, else by its serial
        number. */
    static const CalibrationAccessory& likelyAccessory(const InputFile& file);
};

#endif
