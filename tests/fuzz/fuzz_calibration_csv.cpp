// Both readers over the same file, against the plain implementation: result, every byte of the
// record, and the standard output.
#include "files/CFileIO.h"
#include "tests/fuzz/FuzzFile.h"
#include "tests/fuzz/NaiveCalRef.h"

#include <cstring>
#include <string>

namespace {

/** The file that the standard output goes to. */
int outputFile() {
    static const int file = [] {
        char name[] = "/tmp/vqtl4-fuzz-XXXXXX";
        const int descriptor = ::mkstemp(name);
        require(descriptor >= 0 && ::unlink(name) == 0);
        require(::dup2(descriptor, STDOUT_FILENO) == STDOUT_FILENO);
        return descriptor;
    }();
    return file;
}

/** What was printed since the last call. */
std::string takeOutput() {
    const off_t size = ::lseek(outputFile(), 0, SEEK_CUR);
    require(size >= 0);
    if (size == 0)
        return {};
    std::string text(static_cast<std::size_t>(size), '\0');
    require(::pread(outputFile(), &text[0], text.size(), 0) == size);
    require(::ftruncate(outputFile(), 0) == 0 && ::lseek(outputFile(), 0, SEEK_SET) == 0);
    return text;
}

void check(bool isAdapter, const char* path, const std::string& text) {
    KVA_JIG_CALREFDATA record;
    std::memset(&record, 0xA5, sizeof record);
    const std::string before(sizeof record, '\xA5');
    CFileIO io;
    const bool accepted = isAdapter ? io.GetAmbAdpCalRefDataFromFile(path, &record)
                                    : io.GetCalRefDataFromFile(path, &record);

    const NaiveCalRef::Reading expected = NaiveCalRef::read(text, isAdapter, before);
    require(accepted == expected.accepted);
    const char* bytes = reinterpret_cast<const char*>(&record);
    require(std::string(bytes, sizeof record) == expected.record);
    require(takeOutput() == expected.printed);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    outputFile();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzFile file(data, size);
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const bool isAdapter : {false, true})
        check(isAdapter, file.path(), text);
    return 0;
}
