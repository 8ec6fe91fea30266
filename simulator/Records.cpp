#include "simulator/Records.h"

#include "simulator/Instrument.h"

#include <array>
#include <iterator>

namespace kvasim {

namespace {

#define KVASIM_FIELD(record, place, field, kind)                                                   \
    Field {                                                                                        \
        place, #field, Kind::kind, offsetof(record, field), sizeof(record::field)                  \
    }

constexpr Field portFields[] = {
    KVASIM_FIELD(KVA_PORTINFO, "serialNumber", serialNumber, Int32),
    KVASIM_FIELD(KVA_PORTINFO, "port.type", portType, Uint32),
    KVASIM_FIELD(KVA_PORTINFO, "port.name", portName, Text),
};

constexpr Field attachmentFields[] = {
    KVASIM_FIELD(Instrument, "plugged", plugged, Flag),
};

constexpr Field deviceFields[] = {
    KVASIM_FIELD(KVA_DEVICEINFO, "device.serialNumber", serialNumber, Uint32),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[0]", firmVersionMajor, Uint32),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[1]", firmVersionMinor, Int32),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[2]", firmVersionBuild, Int32),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.macAddress", macAddress, Mac),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.reserved1", reserved1, Bytes),
    KVASIM_FIELD(KVA_DEVICEINFO, "device.reserved2", reserved2, Bytes),
};

constexpr Field optionFields[] = {
    KVASIM_FIELD(KVA_JIG_ACTIONOPTIONFACTORYDATA, "wirelessModule", wifiModuleEnable, Module),
    KVASIM_FIELD(KVA_JIG_ACTIONOPTIONFACTORYDATA, "factoryOptionsReserved", reserved, Bytes),
};

constexpr Field networkFields[] = {
    KVASIM_FIELD(KVA_NETWORKINFO, "APConnectUse", APConnectUse, Uint32),
    KVASIM_FIELD(KVA_NETWORKINFO, "DHCPUse", DHCPUse, Uint32),
    KVASIM_FIELD(KVA_NETWORKINFO, "IPAddress", IPAddress, Address),
    KVASIM_FIELD(KVA_NETWORKINFO, "SubnetMask", SubnetMask, Address),
    KVASIM_FIELD(KVA_NETWORKINFO, "DefaultGateway", DefaultGateway, Address),
    KVASIM_FIELD(KVA_NETWORKINFO, "DNS", DNS, Address),
    KVASIM_FIELD(KVA_NETWORKINFO, "SSID", SSID, Text),
    KVASIM_FIELD(KVA_NETWORKINFO, "EncryptKey", EncryptKey, Secret),
    KVASIM_FIELD(KVA_NETWORKINFO, nullptr, padding, Bytes),
};

constexpr Field modeFields[] = {{"powerOffMode", "mode", Kind::Byte, 0, 1}};

constexpr Field startFields[] = {
    KVASIM_FIELD(Instrument, "startUpMs", startUpMs, Duration),
    KVASIM_FIELD(Instrument, "powerCycles", powerCycles, Uint32),
    KVASIM_FIELD(Instrument, "poweredOn", poweredOn, Time),
};

constexpr Field calibrationFields[] = {
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "white.serialNumber", whiteSerialNo, Digits),
    {"white.values", "rfWhite.spcData", Kind::Floats, offsetof(KVA_JIG_CALREFDATA, rfWhite),
     sizeof(KVA_JIG_WHITEDATA)},
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "ambientAdapter.serialNumber", ambAdpSerialNo, Digits),
    {"ambientAdapter.values", "ambAdp.spcData", Kind::Floats, offsetof(KVA_JIG_CALREFDATA, ambAdp),
     sizeof(KVA_JIG_AMBIENTADAPTERDATA)},
    KVASIM_FIELD(KVA_JIG_CALREFDATA, "reserved", reserved, Bytes),
};

#undef KVASIM_FIELD

template <std::size_t Count>
constexpr Record recordOf(const Field (&fields)[Count], std::size_t size) {
    return {fields, fields + Count, size};
}

constexpr Record attachmentRecord = recordOf(attachmentFields, sizeof(Instrument));
constexpr Record deviceRecord = recordOf(deviceFields, sizeof(KVA_DEVICEINFO));
constexpr Record optionRecord = recordOf(optionFields, sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA));
constexpr Record modeRecord = recordOf(modeFields, sizeof(std::uint8_t));
constexpr Record startRecord = recordOf(startFields, sizeof(Instrument));
constexpr Record calibrationRecord = recordOf(calibrationFields, sizeof(KVA_JIG_CALREFDATA));

constexpr Part::Optional pending = {offsetof(Instrument, isPending),
                                    offsetof(Instrument, activeNetwork), "network.active"};
constexpr Part::Optional staged = {offsetof(Instrument, isStaged),
                                   offsetof(Instrument, committedCalibration),
                                   "calibration.committed"};

} // namespace

constexpr Record portRecord = recordOf(portFields, sizeof(KVA_PORTINFO));
constexpr Record networkRecord = recordOf(networkFields, sizeof(KVA_NETWORKINFO));

namespace {

constexpr std::array<Part, 10> allParts = {{
    {"", &portRecord, offsetof(Instrument, port), nullptr},
    {"", &attachmentRecord, 0, nullptr},
    {"", &deviceRecord, offsetof(Instrument, device), nullptr},
    {"", &optionRecord, offsetof(Instrument, factoryOptions), nullptr},
    {"network.active", &networkRecord, offsetof(Instrument, activeNetwork), nullptr},
    {"network.pending", &networkRecord, offsetof(Instrument, pendingNetwork), &pending},
    {"", &modeRecord, offsetof(Instrument, powerOffMode), nullptr},
    {"", &startRecord, 0, nullptr},
    {"calibration.committed", &calibrationRecord, offsetof(Instrument, committedCalibration),
     nullptr},
    {"calibration.staged", &calibrationRecord, offsetof(Instrument, stagedCalibration), &staged},
}};

} // namespace

const Part* Parts::begin() const {
    return allParts.data();
}

const Part* Parts::end() const {
    return allParts.data() + allParts.size();
}

const Record* answerRecord(Function function) {
    switch (function) {
    case Function::GetDevicePortList:
        return &portRecord;
    case Function::GetDeviceInfo:
        return &deviceRecord;
    case Function::GetNetworkInfo:
        return &networkRecord;
    case Function::GetShutdownTime:
        return &modeRecord;
    case Function::GetCalibration:
        return &calibrationRecord;
    case Function::GetFactoryOptions:
        return &optionRecord;
    default:
        return nullptr;
    }
}

std::size_t answerSize(Function function) {
    const Record* const record = answerRecord(function);
    return record == nullptr ? 0 : record->size;
}

std::optional<ByteRange> answerField(Function function, std::string_view name) {
    const Record* const record = answerRecord(function);
    if (record == nullptr)
        return std::nullopt;
    const auto bracket = std::min(name.find('['), name.size());
    for (const Field& field : *record) {
        if (name.substr(0, bracket) == field.name)
            return field.range(name.substr(bracket));
    }
    return std::nullopt;
}

} // namespace kvasim
