// The strict check of value files, for both accessories: what it accepts, the tool's reader accepts
// and takes to the same bytes, with a serial number in its range and finite values; what it
// refuses, it says why, within the file. What is accepted is looked at for plausibility as well.
#include "command/Plausibility.h"
#include "command/ValueFile.h"
#include "files/CFileIO.h"
#include "tests/fuzz/FaultPlaces.h"
#include "tests/fuzz/FuzzFile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

void checkAccepted(const ValueFile& values, const CalibrationAccessory& accessory,
                   const char* path) {
    KVA_JIG_CALREFDATA merged;
    std::memset(&merged, 0xA5, sizeof merged);
    KVA_JIG_CALREFDATA read = merged;
    values.mergeInto(merged);
    require((CFileIO().*accessory.readFile)(path, &read));
    require(std::memcmp(&merged, &read, sizeof read) == 0);
    require(accessory.isValid(accessory.serialNoIn(read)));
    require(std::all_of(values.values.begin(), values.values.end(),
                        [](float value) { return std::isfinite(value); }));

    const std::vector<float> held(values.values.rbegin(), values.values.rend());
    for (const Implausible& found : findImplausible(accessory, values.values.data(), held.data())) {
        require(found.index < accessory.valueCount);
        require(!found.why.isEmpty() && !found.expected.isEmpty());
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    // The tool's readers complain about wrong serial lines there.
    require(std::freopen("/dev/null", "w", stdout) != nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzFile onDisk(textOf(data, size));
    Faults faults;
    const auto file = InputFile::read(QString::fromLatin1(onDisk.path()), faults);
    if (!file)
        return 0; // too large
    require(ValueFile::likelyAccessory(*file).valueCount > 0);
    for (const CalibrationAccessory* accessory :
         {&CalibrationAccessory::whitePlate, &CalibrationAccessory::ambientAdapter}) {
        faults.clear();
        const auto values = ValueFile::check(*file, *accessory, faults);
        if (values) {
            require(faults.empty());
            checkAccepted(*values, *accessory, onDisk.path());
        } else {
            require(!faults.empty());
            requirePlaces(faults, *file);
        }
    }
    return 0;
}
