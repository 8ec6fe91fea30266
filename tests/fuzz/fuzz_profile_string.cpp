// One lookup with any section, key, default and file: against the plain implementation, and never
// beyond the buffer. The first two bytes of the input say how long section and key are.
#include "files/CFileIO.h"
#include "tests/fuzz/FuzzFile.h"
#include "tests/fuzz/Naive.h"

#include <algorithm>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2)
        return 0;
    std::string text = textOf(data + 2, size - 2);
    const auto takeFront = [&text](std::size_t length) {
        // C strings: what stands behind a NUL is not part of them.
        const std::string front = text.substr(0, length).c_str();
        text.erase(0, length);
        return front;
    };
    const std::string section = takeFront(data[0]);
    const std::string key = takeFront(data[1]);

    char guarded[CFileIO::profileValueSize + 64];
    std::memset(guarded, 0x5A, sizeof guarded);
    const int length = CFileIO::ReadProfileString(section.c_str(), key.c_str(), "default", guarded,
                                                  0, FuzzFile(text).path());
    const std::string expected = Naive::find(text, section, key).value_or("default");
    require(length == static_cast<int>(expected.size()));
    require(std::strlen(guarded) == expected.size() && expected == guarded);
    require(std::all_of(guarded + CFileIO::profileValueSize, std::end(guarded),
                        [](char c) { return c == 0x5A; }));
    return 0;
}
