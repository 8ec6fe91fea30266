#include "instrument/KvaSdk.h"

#include "simulator/Records.h"
#include "simulator/Simulator.h"

#include <utility>

namespace {

using kvasim::CallEffects;
using kvasim::Json;

kvasim::Simulator& simulator() {
    return kvasim::Simulator::instance();
}

/** The CRC-32 of Ethernet and ZIP files: enough to tell records in a log apart. */
std::string crc32(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    std::uint32_t crc = 0xFFFFFFFFU;
    for (std::size_t index = 0; index < size; ++index) {
        crc ^= bytes[index];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return kvasim::toHex(~crc);
}

/** Performs a call that fills @p target from the connected instrument.
    @param part finds the part of its JSON with the fields of @p record; null: all of it */
template <typename Bytes>
KVA_RESULT readInto(Bytes* target, const kvasim::Record& record,
                    const Json& (*part)(const Json&) = nullptr) {
    return simulator().perform({record.source, target != nullptr}, [&](const CallEffects& effects) {
        Bytes answer{};
        const KVA_RESULT result = simulator().read(effects, [&](const Json& instrument) {
            answer =
                kvasim::fromJson<Bytes>(record, part != nullptr ? part(instrument) : instrument);
        });
        kvasim::corrupt(effects, record.source, &answer);
        if (result == KVA_SUCCESS && !effects.answerIsLost())
            *target = answer;
        return result;
    });
}

/** Performs a call that writes @p source to the connected instrument.
    @param place of the fields of @p record in its JSON
    @param describe makes the arguments for the log */
template <typename Bytes>
KVA_RESULT writeFrom(const char* function, const Bytes* source, const kvasim::Record& record,
                     const char* place, Json (*describe)(const Bytes& given)) {
    Json arguments = source == nullptr ? Json::object() : describe(*source);
    return simulator().perform(
        {function, source != nullptr, std::move(arguments)}, [&](const CallEffects& effects) {
            return simulator().write(effects, [&](Json& instrument) -> KVA_RESULT {
                instrument[kvasim::pointerTo(place)].update(kvasim::toJson(record, source));
                return KVA_SUCCESS;
            });
        });
}

Json describeNetwork(const KVA_NETWORKINFO& given) {
    Json settings = kvasim::toJson(kvasim::networkRecord, &given);
    kvasim::hideKey(settings);
    return {{"network", std::move(settings)}};
}

Json describeMode(const std::uint8_t& given) {
    return {{"mode", given}};
}

Json describeCalibration(const KVA_JIG_CALREFDATA& given) {
    const auto digits = kvasim::digitsType.write;
    return {{"whiteSerialNo", digits(given.whiteSerialNo, sizeof given.whiteSerialNo)},
            {"ambAdpSerialNo", digits(given.ambAdpSerialNo, sizeof given.ambAdpSerialNo)},
            {"crc32", crc32(&given, sizeof given)}};
}

KVA_RESULT commitCalibration(Json& instrument) {
    Json& calibration = instrument["calibration"];
    if (calibration["staged"].is_null())
        return KVA_ERROR_NO_DATA;
    calibration["committed"] = std::exchange(calibration["staged"], nullptr);
    return KVA_SUCCESS;
}

} // namespace

extern "C" {

KVA_RESULT KVA_RegisterDeviceEventHandler(KVA_DeviceEventHandler handler) {
    // Removed even when a rule makes the call fail: the handler's code may be about to be unloaded.
    if (handler == nullptr)
        simulator().events().setHandler(nullptr);
    Json arguments = {{"handler", handler != nullptr}};
    return simulator().perform({__func__, true, std::move(arguments)}, [&](const CallEffects&) {
        const bool isDone = handler == nullptr || simulator().events().setHandler(handler);
        return KVA_RESULT{isDone ? KVA_SUCCESS : KVA_ERROR};
    });
}

KVA_RESULT KVA_GetDevicePortList(KVA_PORTINFO* list, int32_t* count, int32_t maxEntries) {
    const bool hasRoom = maxEntries == 0 || (maxEntries > 0 && list != nullptr);
    Json arguments = {{"list", list != nullptr}, {"maxEntries", maxEntries}};
    return simulator().perform({__func__, hasRoom && count != nullptr, std::move(arguments)},
                               [&](const CallEffects& effects) {
                                   return simulator().listPorts(effects, list, maxEntries, *count);
                               });
}

KVA_RESULT KVA_Connect(const KVA_PORTINFO* port, uint32_t wait) {
    kvasim::Call call = {__func__, port != nullptr};
    if (port != nullptr) {
        call.arguments = kvasim::toJson(kvasim::portRecord, port);
        call.serialNumber = port->serialNumber;
    }
    call.arguments["wait"] = wait;
    return simulator().perform(std::move(call), [&](const CallEffects& effects) {
        return simulator().connect(effects, *port);
    });
}

KVA_RESULT KVA_Disconnect(void) {
    return simulator().perform(
        {__func__}, [&](const CallEffects& effects) { return simulator().disconnect(effects); });
}

KVA_RESULT KVA_GetDeviceInfo(KVA_DEVICEINFO* info) {
    return readInto(info, kvasim::deviceRecord);
}

KVA_RESULT KVA_GetNetworkInfo(KVA_NETWORKINFO* info) {
    return readInto(info, kvasim::networkRecord, kvasim::networkOf);
}

KVA_RESULT KVA_SetNetworkInfo(const KVA_NETWORKINFO* info) {
    return writeFrom(__func__, info, kvasim::networkRecord, "network.pending", describeNetwork);
}

KVA_RESULT KVA_GetShutdownTime(uint8_t* mode) {
    return readInto(mode, kvasim::modeRecord);
}

KVA_RESULT KVA_SetShutdownTime(const uint8_t* mode) {
    return writeFrom(__func__, mode, kvasim::modeRecord, "", describeMode);
}

} // extern "C"

KVA_RESULT KVA_JIG_GetFactoryCalib_CALREFDATA(KVA_JIG_CALREFDATA* data) {
    return readInto(data, kvasim::calibrationRecord, kvasim::calibrationOf);
}

KVA_RESULT KVA_JIG_SetFactoryCalib_CALREFDATA(const KVA_JIG_CALREFDATA* data) {
    return writeFrom(__func__, data, kvasim::calibrationRecord, "calibration.staged",
                     describeCalibration);
}

KVA_RESULT KVA_JIG_SetFactoryCalib_WriteSector() {
    return simulator().perform({__func__}, [&](const CallEffects& effects) {
        return simulator().write(effects, commitCalibration);
    });
}

KVA_RESULT
KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(KVA_JIG_ACTIONOPTIONFACTORYDATA* data) {
    return readInto(data, kvasim::optionRecord);
}
