// Any text: the bytes up to the first bad pair, and not one more; and what was converted, written
// as hexadecimal again, is the text.
#include "files/CHexToBin.h"
#include "tests/fuzz/FuzzFile.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t count = size / 2;
    const std::string text = textOf(data, size);
    const std::size_t good = std::min(text.find_first_not_of("0123456789abcdefABCDEF"), size) / 2;
    std::vector<unsigned char> out(count + 16, 0xA5);
    CHexToBin converter;
    const int result = converter.hexToBin(text.c_str(), out.data(), static_cast<int>(count));
    require(result == (good == count ? 1 : 0));
    for (std::size_t i = 0; i < good; ++i) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", out[i]);
        require(pair[0] == std::tolower(text[2 * i]) && pair[1] == std::tolower(text[2 * i + 1]));
    }
    require(std::all_of(out.begin() + static_cast<std::ptrdiff_t>(good), out.end(),
                        [](unsigned char byte) { return byte == 0xA5; }));
    return 0;
}
