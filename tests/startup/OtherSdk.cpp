/**
 * A libKVASDK of another make, to be put in the place of the one that the program was built with:
 * it has one instrument at a network port, or none that it could list where ENUMERATION_RESULT is
 * an error.
 */
#include "instrument/KvaSdk.h"

#include <cstring>

namespace {

constexpr KVA_PORTINFO onlyPort = {2, "10.0.0.7", 7654321};

} // namespace

KVA_RESULT KVA_RegisterDeviceEventHandler(KVA_DeviceEventHandler) {
    return KVA_SUCCESS;
}

KVA_RESULT KVA_GetDevicePortList(KVA_PORTINFO* list, int32_t* count, int32_t maxEntries) {
    if (ENUMERATION_RESULT < 0)
        return ENUMERATION_RESULT;
    if (list != nullptr && maxEntries > 0)
        list[0] = onlyPort;
    *count = 1;
    return KVA_SUCCESS;
}

KVA_RESULT KVA_Connect(const KVA_PORTINFO* port, uint32_t) {
    return std::memcmp(port, &onlyPort, sizeof onlyPort) == 0 ? KVA_SUCCESS : KVA_ERROR_ARGUMENT;
}

KVA_RESULT KVA_Disconnect() {
    return KVA_SUCCESS;
}

KVA_RESULT KVA_GetDeviceInfo(KVA_DEVICEINFO* info) {
    *info = {};
    info->serialNumber = 7654321;
    return KVA_SUCCESS;
}

KVA_RESULT KVA_GetNetworkInfo(KVA_NETWORKINFO* info) {
    *info = {};
    return KVA_SUCCESS;
}

KVA_RESULT KVA_SetNetworkInfo(const KVA_NETWORKINFO*) {
    return KVA_ERROR_NSP;
}

KVA_RESULT KVA_GetShutdownTime(uint8_t* mode) {
    *mode = eShutdownTime_60Minutes;
    return KVA_SUCCESS;
}

KVA_RESULT KVA_SetShutdownTime(const uint8_t*) {
    return KVA_ERROR_NSP;
}

KVA_RESULT KVA_JIG_GetFactoryCalib_CALREFDATA(KVA_JIG_CALREFDATA* data) {
    *data = {};
    return KVA_SUCCESS;
}

KVA_RESULT KVA_JIG_SetFactoryCalib_CALREFDATA(const KVA_JIG_CALREFDATA*) {
    return KVA_ERROR_NSP;
}

KVA_RESULT KVA_JIG_SetFactoryCalib_WriteSector() {
    return KVA_ERROR_NSP;
}

KVA_RESULT KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(KVA_JIG_ACTIONOPTIONFACTORYDATA* data) {
    *data = {};
    data->wifiModuleEnable = 1;
    return KVA_SUCCESS;
}
