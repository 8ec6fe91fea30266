#include "instrument/CalibrationAccessory.h"

#include "files/CFileIO.h"

#include <cstring>
#include <limits>

const CalibrationAccessory CalibrationAccessory::whitePlate = {
    &CFileIO::GetCalRefDataFromFile,
    &KVA_JIG_CALREFDATA::whiteSerialNo,
    10000001,
    std::numeric_limits<unsigned int>::max(),
    [](const KVA_JIG_CALREFDATA& record) { return record.rfWhite.spcData; },
    KVA_WHITE_PLATE_VALUES,
    offsetof(KVA_JIG_CALREFDATA, whiteSerialNo),
};

const CalibrationAccessory CalibrationAccessory::ambientAdapter = {
    &CFileIO::GetAmbAdpCalRefDataFromFile,
    &KVA_JIG_CALREFDATA::ambAdpSerialNo,
    10001,
    99999,
    [](const KVA_JIG_CALREFDATA& record) { return record.ambAdp.spcData; },
    KVA_AMBIENT_ADAPTER_VALUES,
    offsetof(KVA_JIG_CALREFDATA, ambAdpSerialNo),
};

unsigned int CalibrationAccessory::serialNoIn(const KVA_JIG_CALREFDATA& record) const {
    unsigned int value = 0;
    for (const std::uint8_t byte : record.*serialNo)
        value = value * 100 + CFileIO::BcdToDec(byte);
    return value;
}

void CalibrationAccessory::merge(const SerialNo& newSerialNo, const float* newValues,
                                 KVA_JIG_CALREFDATA& record) const {
    // Byte by byte: a value that is not a number keeps its bits.
    auto* part = reinterpret_cast<unsigned char*>(&record) + offset;
    std::memcpy(part, newSerialNo, sizeof newSerialNo);
    std::memcpy(part + sizeof newSerialNo, newValues, valueCount * sizeof(float));
}

CalibrationAccessory::FileMerge CalibrationAccessory::mergeFile(const char* path,
                                                                KVA_JIG_CALREFDATA& record) const {
    KVA_JIG_CALREFDATA part = record;
    CFileIO file;
    if (!(file.*readFile)(path, &part))
        return FileMerge::Unreadable;
    if (!isValid(serialNoIn(part)))
        return FileMerge::WrongSerialNo;
    merge(part.*serialNo, values(part), record);
    return FileMerge::Merged;
}
