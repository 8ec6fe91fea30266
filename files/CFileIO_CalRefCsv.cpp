#include "files/BoundedLineReader.h"
#include "files/CFileIO.h"
#include "files/CHexToBin.h"
#include "files/NumberText.h"
#include "files/Pieces.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>

namespace {

/** Longer lines are truncated to this many bytes. */
constexpr std::size_t maxLine = 1024 * 1024;

constexpr int serialNoLine = 2;
constexpr int valuesLine = 3;

using SerialNo = std::uint8_t[4];
constexpr std::size_t serialNoDigits = 2 * sizeof(SerialNo);

/** Stores the serial line in the record's field.
    @return false when the read fails because of this line */
using StoreSerialNo = bool (*)(const std::string& line, SerialNo& serialNo);

/** What differs between the two kinds of file, and where in the record their fields are. */
struct CalRefCsv {
    SerialNo& serialNo;
    StoreSerialNo storeSerialNo;
    float* values;
    std::size_t valueCount;
};

void reportIncorrectData(const std::string& line) {
    std::printf("incorrect data. %s\n", line.c_str());
    std::fflush(stdout);
}

/** @param digits  an even number of at most `serialNoDigits`; an invalid pair gives 0xFF */
void storeRightAligned(const std::string& digits, SerialNo& serialNo) {
    const std::size_t pairs = digits.size() / 2;
    std::fill(std::begin(serialNo), std::end(serialNo), std::uint8_t{0});
    for (std::size_t i = 0; i < pairs; ++i) {
        const int byte = CHexToBin::hexPairToByte(digits.data() + 2 * i);
        serialNo[sizeof(SerialNo) - pairs + i] = static_cast<std::uint8_t>(byte);
    }
}

bool storeWhitePlateSerialNo(const std::string& line, SerialNo& serialNo) {
    if (line.size() > serialNoDigits) {
        reportIncorrectData(line);
        return false;
    }
    if (!line.empty())
        storeRightAligned(line.size() % 2 != 0 ? '0' + line : line, serialNo);
    return true;
}

bool storeAdapterSerialNo(const std::string& line, SerialNo& serialNo) {
    if (line.size() == serialNoDigits)
        storeRightAligned(line, serialNo);
    else
        reportIncorrectData(line);
    return true;
}

/** The values line of a file. */
struct Values {
    std::array<float, KVA_AMBIENT_ADAPTER_VALUES> numbers = {};
    std::size_t count = 0; ///< of all pieces; may be larger than `numbers`
};

Values parseValues(const std::string& line) {
    Values values;
    forEachPiece(line, ',', [&values](std::string_view piece) {
        // The piece is not NUL-terminated: the number ends at a comma or at the line's NUL.
        if (values.count < values.numbers.size())
            values.numbers[values.count] = NumberText::toFloat(piece.data());
        ++values.count;
    });
    return values;
}

bool storeValues(const Values& values, const CalRefCsv& csv) {
    if (values.count != csv.valueCount)
        return false;
    std::copy_n(values.numbers.begin(), values.count, csv.values);
    return true;
}

bool readCalRefCsv(const char* path, const CalRefCsv& csv) {
    BoundedLineReader reader(path, maxLine);
    std::optional<std::string> serialNo;
    std::optional<Values> values;
    std::string line;
    // The lines after the values are read as well: an error there also refuses the file.
    for (std::size_t index = 0; reader.next(line); ++index) {
        line.resize(withoutLineEndCr(line).size());
        if (index == serialNoLine)
            serialNo = line;
        else if (index == valuesLine)
            // A truncated line may end inside a number and give a wrong value.
            values = reader.wasCut() ? Values{} : parseValues(line);
    }
    // Nothing is stored before the whole file was read.
    if (reader.failed())
        return false;
    const bool serialNoIsRight = !serialNo || csv.storeSerialNo(*serialNo, csv.serialNo);
    const bool valuesAreRight = !values || storeValues(*values, csv);
    return serialNoIsRight && valuesAreRight;
}

} // namespace

bool CFileIO::GetCalRefDataFromFile(const char* path, KVA_JIG_CALREFDATA* record) {
    if (!path || !record)
        return false;
    return readCalRefCsv(path, {record->whiteSerialNo, storeWhitePlateSerialNo,
                                record->rfWhite.spcData, KVA_WHITE_PLATE_VALUES});
}

bool CFileIO::GetAmbAdpCalRefDataFromFile(const char* path, KVA_JIG_CALREFDATA* record) {
    if (!path || !record)
        return false;
    return readCalRefCsv(path, {record->ambAdpSerialNo, storeAdapterSerialNo,
                                record->ambAdp.spcData, KVA_AMBIENT_ADAPTER_VALUES});
}
