// The pieces hold every character but the delimiters, in order; none is empty or holds one; and
// joined again they split into the same. The first byte of the input is the delimiter.
#include "files/CFileIO.h"
#include "tests/fuzz/FuzzFile.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const char delimiter = static_cast<char>(data[0]);
    std::string text = textOf(data + 1, size - 1);
    const std::vector<std::string> pieces = CFileIO::SplitString(text, delimiter);
    std::string all;
    std::string joined;
    for (const std::string& piece : pieces) {
        require(!piece.empty() && piece.find(delimiter) == std::string::npos);
        all += piece;
        joined += delimiter + piece + delimiter;
    }
    text.erase(std::remove(text.begin(), text.end(), delimiter), text.end());
    require(all == text);
    require(CFileIO::SplitString(joined, delimiter) == pieces);
    return 0;
}
