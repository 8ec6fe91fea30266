/**
 * read_large ini|white|adapter FILE...: reads each file once and prints the nanoseconds that took
 * and the most memory that the program ever had, in KiB.
 */
#include "files/CFileIO.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

bool readOne(const std::string& kind, const char* path) {
    CFileIO files;
    if (kind == "ini") {
        KVA_NETWORKINFO info = {};
        return files.ReadNetworkIni(path, &info);
    }
    KVA_JIG_CALREFDATA record = {};
    return kind == "white" ? files.GetCalRefDataFromFile(path, &record)
                           : files.GetAmbAdpCalRefDataFromFile(path, &record);
}

/** Of this program alone, unlike what getrusage() says, which counts from before the exec. */
long peakMemory() {
    std::FILE* status = std::fopen("/proc/self/status", "re");
    if (!status)
        return -1;
    long peak = -1;
    char line[256];
    while (std::fgets(line, sizeof line, status)) {
        if (std::strncmp(line, "VmHWM:", 6) == 0)
            peak = std::strtol(line + 6, nullptr, 10);
    }
    std::fclose(status);
    return peak;
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc < 3)
        return 2;
    const std::string kind = argv[1];
    const Clock::time_point start = Clock::now();
    for (int i = 2; i < argc; ++i) {
        if (!readOne(kind, argv[i])) {
            std::fprintf(stderr, "cannot read %s\n", argv[i]);
            return 1;
        }
    }
    const std::chrono::nanoseconds duration = Clock::now() - start;
    std::printf("%lld %ld\n", static_cast<long long>(duration.count()), peakMemory());
    return 0;
}
