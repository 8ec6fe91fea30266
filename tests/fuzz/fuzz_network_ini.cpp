// The whole settings file: the reader against the plain implementation, and a record that was read
// is the same after it was written and read again, but for texts that the format cannot carry.
#include "files/CFileIO.h"
#include "tests/fuzz/FuzzFile.h"
#include "tests/fuzz/Naive.h"

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
    const std::string text = textOf(data, size);
    CFileIO io;
    KVA_NETWORKINFO info = {};
    const bool accepted = io.ReadNetworkIni(FuzzFile(text).path(), &info);
    KVA_NETWORKINFO other = {};
    require(accepted == Naive::readSettings(text, other));
    require(std::memcmp(&info, &other, sizeof info) == 0);
    if (!accepted || !isCarried(info.SSID) || !isCarried(info.EncryptKey))
        return 0;

    const FuzzFile copy("");
    require(io.WriteNetworkIni(copy.path(), &info));
    other = {};
    require(io.ReadNetworkIni(copy.path(), &other));
    require(std::memcmp(&info, &other, sizeof info) == 0);
    return 0;
}
