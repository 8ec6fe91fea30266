// One lookup with any section, key, default and file: against the plain implementation, and never
// beyond the buffer. The first two bytes of the input say how long section and key are.
#include "files/CFileIO.h"
#include "tests/fuzz/FuzzFile.h"
#include "tests/fuzz/NaiveIni.h"

#include <algorithm>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2)
        return 0;
    const char* text = reinterpret_cast<const char*>(data) + 2;
    std::size_t left = size - 2;
    const std::size_t sectionLength = std::min<std::size_t>(data[0], left);
    // C strings: what stands behind a NUL is not part of them.
    const std::string section = std::string(text, sectionLength).c_str();
    text += sectionLength;
    left -= sectionLength;
    const std::size_t keyLength = std::min<std::size_t>(data[1], left);
    const std::string key = std::string(text, keyLength).c_str();
    text += keyLength;
    left -= keyLength;
    const FuzzFile file(reinterpret_cast<const std::uint8_t*>(text), left);

    char guarded[CFileIO::profileValueSize + 64];
    std::memset(guarded, 0x5A, sizeof guarded);
    const int length = CFileIO::ReadProfileString(section.c_str(), key.c_str(), "default", guarded,
                                                  0, file.path());
    const std::string expected =
        NaiveIni::find(std::string(text, left), section, key).value_or("default");
    require(length == static_cast<int>(expected.size()));
    require(std::strlen(guarded) == expected.size() && expected == guarded);
    require(std::all_of(guarded + CFileIO::profileValueSize, std::end(guarded),
                        [](char c) { return c == 0x5A; }));
    return 0;
}
