#include "instrument/KvaSdk.h"

#include "simulator/Instrument.h"
#include "simulator/Records.h"
#include "simulator/Simulator.h"

#include <utility>

#define KVASIM_EXPORT __attribute__((visibility("default")))

namespace {

using kvasim::Call;
using kvasim::CallEffects;
using kvasim::Function;
using kvasim::Json;
using kvasim::Simulator;

/** The CRC-32 of Ethernet and ZIP files: enough to tell records in a log apart. */
std::string crc32(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    std::uint32_t crc = 0xFFFFFFFFU;
    for (std::size_t index = 0; index < size; ++index) {
        crc ^= bytes[index];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    crc = ~crc;
    const std::uint8_t ordered[4] = {
        static_cast<std::uint8_t>(crc >> 24U), static_cast<std::uint8_t>(crc >> 16U),
        static_cast<std::uint8_t>(crc >> 8U), static_cast<std::uint8_t>(crc)};
    return "0x" + kvasim::toHex(ordered, sizeof ordered);
}

Json digits(const std::uint8_t (&serialNumber)[4]) {
    return kvasim::digitsToJson(serialNumber, sizeof serialNumber);
}

template <typename Describe>
Call describe(Function function, const Describe& arguments) {
    return {function, arguments(), std::nullopt};
}

Json noArguments() {
    return Json::object();
}

/** Performs a call that fills @p target from the connected instrument.
    @param part the part of its JSON that has the fields of @p record */
template <typename Record>
KVA_RESULT readInto(Function function, Record* target, const kvasim::Record& record,
                    const Json& (*part)(const Json&)) {
    Simulator& simulator = Simulator::instance();
    const auto work = [&](const CallEffects& effects) -> KVA_RESULT {
        if (target == nullptr)
            return KVA_ERROR_ARGUMENT;
        Record answer{};
        const KVA_RESULT result = simulator.read(effects, [&](const Json& instrument) {
            answer = kvasim::fromJson<Record>(record, part(instrument));
        });
        if (result != KVA_SUCCESS || effects.answerIsLost())
            return result;
        kvasim::corrupt(effects, function, &answer);
        *target = answer;
        return result;
    };
    return simulator.perform(describe(function, noArguments), work);
}

const Json& whole(const Json& instrument) {
    return instrument;
}

/** Performs a call that hands @p source to the connected instrument. */
template <typename Record, typename Describe, typename Writer>
KVA_RESULT writeFrom(Function function, const Record* source, const Describe& arguments,
                     const Writer& writer) {
    Simulator& simulator = Simulator::instance();
    const auto given = [&] { return source == nullptr ? noArguments() : arguments(*source); };
    return simulator.perform(describe(function, given), [&](const CallEffects& effects) {
        if (source == nullptr)
            return KVA_RESULT{KVA_ERROR_ARGUMENT};
        return simulator.write(effects, [&](Json& instrument) -> KVA_RESULT {
            writer(instrument, *source);
            return KVA_SUCCESS;
        });
    });
}

} // namespace

extern "C" {

KVASIM_EXPORT KVA_RESULT KVA_RegisterDeviceEventHandler(KVA_DeviceEventHandler handler) {
    Simulator& simulator = Simulator::instance();
    const auto given = [&] { return Json{{"handler", handler != nullptr}}; };
    // Done whatever the rules answer: a handler that is to go may have nothing left to run on.
    const KVA_RESULT removed =
        handler == nullptr ? simulator.registerHandler(nullptr) : KVA_SUCCESS;
    return simulator.perform(
        describe(Function::RegisterDeviceEventHandler, given), [&](const CallEffects&) {
            return handler == nullptr ? removed : simulator.registerHandler(handler);
        });
}

KVASIM_EXPORT KVA_RESULT KVA_GetDevicePortList(KVA_PORTINFO* list, int32_t* count,
                                               int32_t maxEntries) {
    Simulator& simulator = Simulator::instance();
    const auto given = [&] { return Json{{"list", list != nullptr}, {"maxEntries", maxEntries}}; };
    return simulator.perform(
        describe(Function::GetDevicePortList, given), [&](const CallEffects& effects) {
            if (count == nullptr || maxEntries < 0 || (list == nullptr && maxEntries > 0))
                return KVA_RESULT{KVA_ERROR_ARGUMENT};
            return simulator.listPorts(effects, list, maxEntries, *count);
        });
}

KVASIM_EXPORT KVA_RESULT KVA_Connect(const KVA_PORTINFO* port, uint32_t wait) {
    Simulator& simulator = Simulator::instance();
    Call call = describe(Function::Connect, [&] {
        Json given = port == nullptr ? noArguments() : kvasim::toJson(kvasim::portRecord, port);
        given["wait"] = wait;
        return given;
    });
    if (port != nullptr)
        call.serialNumber = port->serialNumber;
    return simulator.perform(std::move(call), [&](const CallEffects& effects) {
        return port == nullptr ? KVA_RESULT{KVA_ERROR_ARGUMENT} : simulator.connect(effects, *port);
    });
}

KVASIM_EXPORT KVA_RESULT KVA_Disconnect(void) {
    Simulator& simulator = Simulator::instance();
    return simulator.perform(
        describe(Function::Disconnect, noArguments),
        [&](const CallEffects& effects) { return simulator.disconnect(effects); });
}

KVASIM_EXPORT KVA_RESULT KVA_GetDeviceInfo(KVA_DEVICEINFO* info) {
    return readInto(Function::GetDeviceInfo, info, kvasim::deviceRecord, whole);
}

KVASIM_EXPORT KVA_RESULT KVA_GetNetworkInfo(KVA_NETWORKINFO* info) {
    return readInto(Function::GetNetworkInfo, info, kvasim::networkRecord, kvasim::networkOf);
}

KVASIM_EXPORT KVA_RESULT KVA_SetNetworkInfo(const KVA_NETWORKINFO* info) {
    const auto given = [](const KVA_NETWORKINFO& network) {
        Json settings = kvasim::toJson(kvasim::networkRecord, &network);
        kvasim::hideKey(settings);
        return Json{{"network", std::move(settings)}};
    };
    return writeFrom(Function::SetNetworkInfo, info, given,
                     [](Json& instrument, const KVA_NETWORKINFO& network) {
                         instrument["network"]["pending"] =
                             kvasim::toJson(kvasim::networkRecord, &network);
                     });
}

KVASIM_EXPORT KVA_RESULT KVA_GetShutdownTime(uint8_t* mode) {
    return readInto(Function::GetShutdownTime, mode, kvasim::modeRecord, whole);
}

KVASIM_EXPORT KVA_RESULT KVA_SetShutdownTime(const uint8_t* mode) {
    return writeFrom(
        Function::SetShutdownTime, mode,
        [](uint8_t given) {
            return Json{{"mode", given}};
        },
        [](Json& instrument, uint8_t given) { instrument["powerOffMode"] = given; });
}

} // extern "C"

KVASIM_EXPORT KVA_RESULT KVA_JIG_GetFactoryCalib_CALREFDATA(KVA_JIG_CALREFDATA* data) {
    return readInto(Function::GetCalibration, data, kvasim::calibrationRecord,
                    kvasim::calibrationOf);
}

KVASIM_EXPORT KVA_RESULT KVA_JIG_SetFactoryCalib_CALREFDATA(const KVA_JIG_CALREFDATA* data) {
    const auto given = [](const KVA_JIG_CALREFDATA& record) {
        return Json{{"whiteSerialNo", digits(record.whiteSerialNo)},
                    {"ambAdpSerialNo", digits(record.ambAdpSerialNo)},
                    {"crc32", crc32(&record, sizeof record)}};
    };
    return writeFrom(Function::SetCalibration, data, given,
                     [](Json& instrument, const KVA_JIG_CALREFDATA& record) {
                         instrument["calibration"]["staged"] =
                             kvasim::toJson(kvasim::calibrationRecord, &record);
                     });
}

KVASIM_EXPORT KVA_RESULT KVA_JIG_SetFactoryCalib_WriteSector() {
    Simulator& simulator = Simulator::instance();
    return simulator.perform(
        describe(Function::WriteSector, noArguments), [&](const CallEffects& effects) {
            return simulator.write(effects, [](Json& instrument) -> KVA_RESULT {
                Json& calibration = instrument["calibration"];
                if (calibration["staged"].is_null())
                    return KVA_ERROR_NO_DATA;
                calibration["committed"] = std::exchange(calibration["staged"], nullptr);
                return KVA_SUCCESS;
            });
        });
}

KVASIM_EXPORT KVA_RESULT
KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(KVA_JIG_ACTIONOPTIONFACTORYDATA* data) {
    return readInto(Function::GetFactoryOptions, data, kvasim::optionRecord, whole);
}
