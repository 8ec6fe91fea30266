#include "files/CHexToBin.h"

#include <cstddef>
#include <cstdio>

namespace {

constexpr unsigned int addressSize = 3;
constexpr unsigned int dataSize = 256;
constexpr unsigned int recordSize = addressSize + dataSize;
constexpr unsigned int bytesPerLine = 16;

int digitValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

/** False after a write error. */
bool writeRecord(std::FILE* file, const unsigned char* record) {
    if (std::fprintf(file, "[address]%02x%02x%02x\n", record[0], record[1], record[2]) < 0)
        return false;
    const unsigned char* data = record + addressSize;
    for (unsigned int i = 0; i < dataSize; ++i) {
        const bool lineEnds = i % bytesPerLine == bytesPerLine - 1;
        if (std::fprintf(file, lineEnds ? "%02x\n" : "%02x", data[i]) < 0)
            return false;
    }
    return true;
}

} // namespace

CHexToBin::~CHexToBin() = default;

int CHexToBin::hexPairToByte(const char* p) {
    const int first = digitValue(p[0]);
    if (first < 0)
        return -1;
    const int second = digitValue(p[1]);
    return second < 0 ? -1 : first * 16 + second;
}

int CHexToBin::hexToBin(const char* hexText, unsigned char* out, int byteCount) {
    for (std::ptrdiff_t i = 0; i < byteCount; ++i) {
        const int value = hexPairToByte(hexText + 2 * i);
        if (value < 0)
            return 0;
        out[i] = static_cast<unsigned char>(value);
    }
    return 1;
}

int CHexToBin::writeParseResult(const unsigned char* data, unsigned int size) {
    std::FILE* file = std::fopen("HexParseResult.txt", "wt");
    if (!file)
        return EOF;
    int result = 0;
    for (unsigned int record = 0; record < size / recordSize && result == 0; ++record) {
        if (!writeRecord(file, data + static_cast<std::size_t>(record) * recordSize))
            result = EOF;
    }
    const int closed = std::fclose(file);
    return result != 0 ? result : closed;
}
