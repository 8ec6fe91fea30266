/**
 * Stands between the program and libKVASDK, and does what the simulated instruments do not. By the
 * environment:
 *
 *     SHIM_KILL=before:7      SIGKILL before, or after, the seventh call of any function
 *     SHIM_STOP=before:7      SIGSTOP there: it waits for SIGCONT
 *     SHIM_SILENT=3:2         the third reading of the calibration record fills nothing, answers 2
 *     SHIM_UNWRITTEN=1        no reading of the calibration record fills its byte 2000
 *     SHIM_BEGUN=FILE         each call, by name, as it begins, to this file
 *     SHIM_OLD_NETWORK=1      network settings are answered as they were at the first reading
 *     SHIM_TWICE=1            the first instrument is listed once more
 *     SHIM_COMMITS=1          a commit always answers 0, also where nothing is staged
 *     SHIM_WITNESS=FOLDER     at the first call that writes: a copy of the data folder, to there
 *
 * and between the program and its files in the data folder:
 *
 *     SHIM_KILL=file:7        SIGKILL before the seventh write, sync, link or removal
 *     SHIM_FULL=7             the disk is full from the seventh write on
 *     SHIM_UNSYNCED=FILE      to this file: each call that writes, with the files and folders that
 *                             were written and not synced when it begins
 */
#include "tests/command/Shim.h"
#include "instrument/KvaSdk.h"

#include <cstdio>
#include <cstring>

namespace {

int calls = 0; ///< of all functions

void announce(const char* function) {
    if (*setting("SHIM_BEGUN") == '\0')
        return;
    std::FILE* file = std::fopen(setting("SHIM_BEGUN"), "a");
    if (file == nullptr)
        return;
    std::fprintf(file, "%s\n", function);
    std::fclose(file);
}

template <typename Call>
KVA_RESULT between(const char* function, const Call& call) {
    announce(function);
    if (std::strstr(function, "_Set") != nullptr)
        noteUnsynced(function);
    const int number = ++calls;
    killIfDue("before", number);
    const KVA_RESULT result = call();
    killIfDue("after", number);
    return result;
}

void witness() {
    static bool isDone = false;
    const std::string folder = setting("SHIM_WITNESS");
    if (isDone || folder.empty())
        return;
    isDone = true;
    const std::string command = std::string("env -u LD_PRELOAD cp -r '") +
                                setting("XDG_DATA_HOME") + "/vq-tl4ctl' '" + folder + "'";
    if (std::system(command.c_str()) != 0)
        std::fputs("the witness saw no folder\n", stderr);
}

} // namespace

/** The four functions with C++ linkage: their symbols are mangled. */
#define NEXT_MANGLED(function, symbol) next(&function, symbol)

extern "C" {

KVA_RESULT KVA_RegisterDeviceEventHandler(KVA_DeviceEventHandler handler) {
    return between(__func__, [&] { return NEXT(KVA_RegisterDeviceEventHandler)(handler); });
}

KVA_RESULT KVA_GetDevicePortList(KVA_PORTINFO* list, int32_t* count, int32_t maxEntries) {
    return between(__func__, [&] {
        const KVA_RESULT result = NEXT(KVA_GetDevicePortList)(list, count, maxEntries);
        if (*setting("SHIM_TWICE") != '\0' && *count > 0 && *count < maxEntries)
            list[(*count)++] = list[0];
        return result;
    });
}

KVA_RESULT KVA_Connect(const KVA_PORTINFO* port, uint32_t wait) {
    return between(__func__, [&] { return NEXT(KVA_Connect)(port, wait); });
}

KVA_RESULT KVA_Disconnect() {
    return between(__func__, [&] { return NEXT(KVA_Disconnect)(); });
}

KVA_RESULT KVA_GetDeviceInfo(KVA_DEVICEINFO* info) {
    return between(__func__, [&] { return NEXT(KVA_GetDeviceInfo)(info); });
}

KVA_RESULT KVA_GetNetworkInfo(KVA_NETWORKINFO* info) {
    return between(__func__, [&] {
        const KVA_RESULT result = NEXT(KVA_GetNetworkInfo)(info);
        static bool isKnown = false;
        static KVA_NETWORKINFO first;
        if (*setting("SHIM_OLD_NETWORK") != '\0' && isKnown)
            *info = first;
        first = *info;
        isKnown = true;
        return result;
    });
}

KVA_RESULT KVA_SetNetworkInfo(const KVA_NETWORKINFO* info) {
    witness();
    return between(__func__, [&] { return NEXT(KVA_SetNetworkInfo)(info); });
}

KVA_RESULT KVA_GetShutdownTime(uint8_t* mode) {
    return between(__func__, [&] { return NEXT(KVA_GetShutdownTime)(mode); });
}

KVA_RESULT KVA_SetShutdownTime(const uint8_t* mode) {
    witness();
    return between(__func__, [&] { return NEXT(KVA_SetShutdownTime)(mode); });
}

} // extern "C"

KVA_RESULT KVA_JIG_GetFactoryCalib_CALREFDATA(KVA_JIG_CALREFDATA* data) {
    return between(__func__, [&]() -> KVA_RESULT {
        static int readings = 0;
        const std::string silent = setting("SHIM_SILENT");
        const std::string number = std::to_string(++readings) + ':';
        if (silent.compare(0, number.size(), number) == 0)
            return std::atoi(silent.c_str() + number.size());
        auto* bytes = reinterpret_cast<unsigned char*>(data);
        const unsigned char before = bytes[2000];
        const KVA_RESULT result =
            NEXT_MANGLED(KVA_JIG_GetFactoryCalib_CALREFDATA,
                         "_Z34KVA_JIG_GetFactoryCalib_CALREFDATAP18KVA_JIG_CALREFDATA")(data);
        if (*setting("SHIM_UNWRITTEN") != '\0')
            bytes[2000] = before;
        return result;
    });
}

KVA_RESULT KVA_JIG_SetFactoryCalib_CALREFDATA(const KVA_JIG_CALREFDATA* data) {
    witness();
    return between(__func__, [&] {
        return NEXT_MANGLED(KVA_JIG_SetFactoryCalib_CALREFDATA,
                            "_Z34KVA_JIG_SetFactoryCalib_CALREFDATAPK18KVA_JIG_CALREFDATA")(data);
    });
}

KVA_RESULT KVA_JIG_SetFactoryCalib_WriteSector() {
    return between(__func__, [&]() -> KVA_RESULT {
        const KVA_RESULT result = NEXT_MANGLED(KVA_JIG_SetFactoryCalib_WriteSector,
                                               "_Z35KVA_JIG_SetFactoryCalib_WriteSectorv")();
        return *setting("SHIM_COMMITS") != '\0' ? KVA_SUCCESS : result;
    });
}

KVA_RESULT KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(KVA_JIG_ACTIONOPTIONFACTORYDATA* data) {
    return between(__func__, [&] {
        return NEXT_MANGLED(
            KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA,
            "_Z40KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATAP31KVA_JIG_ACTIONOPTIONFACTORYDATA")(data);
    });
}
