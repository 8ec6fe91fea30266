// Both readers over the same file: each changes no byte but its own fields, a second read gives the
// same, a refused values line leaves its field, and a file is accepted exactly when both lines are
// right or missing.
#include "files/CFileIO.h"
#include "tests/fuzz/FuzzFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>
#include <sstream>

namespace {

using Reader = bool (CFileIO::*)(const char*, KVA_JIG_CALREFDATA*);

struct Kind {
    Reader read;
    std::size_t offset; ///< of the serial number; the values follow it
    std::size_t count;
};

constexpr Kind kinds[] = {{&CFileIO::GetCalRefDataFromFile, 0, 38},
                          {&CFileIO::GetAmbAdpCalRefDataFromFile, 156, 75}};

/** Nothing when the file ends before that line. */
std::optional<std::string> lineOf(const std::string& text, int index) {
    std::istringstream stream(text);
    std::string line;
    for (int i = 0; i <= index; ++i) {
        if (!std::getline(stream, line))
            return std::nullopt;
    }
    if (line.size() > 1024 * 1024)
        return "of no use, whatever it holds";
    if (!line.empty() && line.find('\r') == line.size() - 1)
        line.pop_back();
    return line;
}

std::size_t pieceCount(const std::string& line) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < line.size(); ++i)
        count += line[i] != ',' && (i == 0 || line[i - 1] == ',') ? 1U : 0U;
    return count;
}

void check(const Kind& kind, const char* path, const std::string& text) {
    CFileIO io;
    KVA_JIG_CALREFDATA before;
    std::memset(&before, 0xA5, sizeof before);
    KVA_JIG_CALREFDATA record = before;
    KVA_JIG_CALREFDATA again = before;
    const bool accepted = (io.*kind.read)(path, &record);
    require((io.*kind.read)(path, &again) == accepted);
    require(std::memcmp(&record, &again, sizeof record) == 0);

    const auto* old = reinterpret_cast<const unsigned char*>(&before);
    const auto* now = reinterpret_cast<const unsigned char*>(&record);
    const std::size_t end = kind.offset + 4 + 4 * kind.count;
    require(std::equal(old, old + kind.offset, now));
    require(std::equal(old + end, old + sizeof before, now + end));

    const std::optional<std::string> values = lineOf(text, 3);
    const bool rightCount = values && pieceCount(*values) == kind.count;
    const bool serialTooLong = kind.offset == 0 && lineOf(text, 2).value_or("").size() > 8;
    require(accepted == (!serialTooLong && (!values || rightCount)));
    if (!rightCount)
        require(std::equal(old + kind.offset + 4, old + end, now + kind.offset + 4));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    // The readers complain about wrong serial lines there.
    require(std::freopen("/dev/null", "w", stdout) != nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzFile file(data, size);
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const Kind& kind : kinds)
        check(kind, file.path(), text);
    return 0;
}
