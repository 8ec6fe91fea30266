// Both readers over the same file, against the plain implementation: result, every byte of the
// record, and the standard output.
#include "files/CFileIO.h"
#include "tests/fuzz/FuzzFile.h"
#include "tests/fuzz/Naive.h"

#include <cstring>

namespace {

/** The file that the standard output goes to. */
int outputFile() {
    static const FuzzFile file("");
    static const int duplicate = ::dup2(file.descriptor(), STDOUT_FILENO);
    require(duplicate == STDOUT_FILENO);
    return duplicate;
}

/** What was printed since the last call. */
std::string takeOutput() {
    const off_t size = ::lseek(outputFile(), 0, SEEK_CUR);
    require(size >= 0);
    std::string text(static_cast<std::size_t>(size), '\0');
    require(::pread(outputFile(), &text[0], text.size(), 0) == size);
    require(::ftruncate(outputFile(), 0) == 0 && ::lseek(outputFile(), 0, SEEK_SET) == 0);
    return text;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    outputFile();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = textOf(data, size);
    const FuzzFile file(text);
    for (const bool isAdapter : {false, true}) {
        KVA_JIG_CALREFDATA record;
        std::memset(&record, 0xA5, sizeof record);
        std::string expected(sizeof record, '\xA5');
        std::string printed;
        CFileIO io;
        const bool accepted = isAdapter ? io.GetAmbAdpCalRefDataFromFile(file.path(), &record)
                                        : io.GetCalRefDataFromFile(file.path(), &record);
        require(accepted == Naive::readCalibration(text, isAdapter, expected, printed));
        require(std::memcmp(&record, expected.data(), sizeof record) == 0);
        require(takeOutput() == printed);
    }
    return 0;
}
