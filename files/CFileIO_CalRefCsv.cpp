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

/** The most bytes of a line that are looked at. */
constexpr std::size_t maxLine = 1024 * 1024;

constexpr int serialNoLine = 2;
constexpr int valuesLine = 3;

using SerialNo = std::uint8_t[4];
constexpr std::size_t serialNoDigits = 2 * sizeof(SerialNo);

/** Takes the serial line into the record's field.
    @return whether the line leaves the read successful */
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

/** @param digits  an even count of at most `serialNoDigits`; a pair that is no byte gives 0xFF */
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
    std::size_t count = 0; ///< of the pieces, also of those beyond the numbers
};

Values parseValues(const std::string& line) {
    Values values;
    forEachPiece(line, ',', [&values](std::string_view piece) {
        // A number ends at a comma at the latest, and the line at its terminator.
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
    // The lines behind the values are read as well: a file is right or wrong as a whole.
    for (std::size_t index = 0; reader.next(line); ++index) {
        line.resize(withoutLineEndCr(line).size());
        if (index == serialNoLine)
            serialNo = line;
        else if (index == valuesLine)
            // A line that was cut may end inside a number, which would read as another one.
            values = reader.wasCut() ? Values{} : parseValues(line);
    }
    // Nothing is taken of a file before all of it was read.
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
