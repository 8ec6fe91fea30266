// The whole settings file: the reader against the plain implementation, and a record that was read
// is the same after it was written and read again, but for texts that the format cannot carry.
#include "files/CFileIO.h"
#include "tests/fuzz/FuzzFile.h"
#include "tests/fuzz/NaiveIni.h"

#include <cstring>

namespace {

/** Whether the format can carry the text: it trims blanks, and a carriage return at the end. */
bool isCarried(const char* text) {
    const std::size_t length = std::strlen(text);
    return std::strchr(" \t", text[0]) == nullptr &&
           std::strchr(" \t\r", text[length - 1]) == nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzFile file(data, size);
    CFileIO io;
    KVA_NETWORKINFO info = {};
    const bool accepted = io.ReadNetworkIni(file.path(), &info);

    const NaiveIni::Settings expected =
        NaiveIni::read(std::string(reinterpret_cast<const char*>(data), size));
    require(accepted == expected.accepted);
    require(std::memcmp(&info, &expected.info, sizeof info) == 0);
    if (!accepted || !isCarried(info.SSID) || !isCarried(info.EncryptKey))
        return 0;

    const FuzzFile copy(nullptr, 0);
    require(io.WriteNetworkIni(copy.path(), &info));
    KVA_NETWORKINFO again = {};
    require(io.ReadNetworkIni(copy.path(), &again));
    require(std::memcmp(&info, &again, sizeof info) == 0);
    return 0;
}
