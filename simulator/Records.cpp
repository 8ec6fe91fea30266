#include "simulator/Records.h"

#include <algorithm>
#include <charconv>

namespace kvasim {

// NOLINTBEGIN(bugprone-macro-parentheses): a type and a member cannot have any
#define KVASIM_FIELD(record, place, field, type)                                                   \
    Field {                                                                                        \
        place, #field, &type, {                                                                    \
            offsetof(record, field), sizeof(record{}.field)                                        \
        }                                                                                          \
    }
// NOLINTEND(bugprone-macro-parentheses)

constexpr Record portRecord = {"KVA_GetDevicePortList",
                               sizeof(KVA_PORTINFO),
                               {KVASIM_FIELD(KVA_PORTINFO, "serialNumber", serialNumber, int32Type),
                                KVASIM_FIELD(KVA_PORTINFO, "port.type", portType, uint32Type),
                                KVASIM_FIELD(KVA_PORTINFO, "port.name", portName, textType)}};

constexpr Record deviceRecord = {
    "KVA_GetDeviceInfo",
    sizeof(KVA_DEVICEINFO),
    {KVASIM_FIELD(KVA_DEVICEINFO, "device.serialNumber", serialNumber, uint32Type),
     KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[0]", firmVersionMajor, uint32Type),
     KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[1]", firmVersionMinor, int32Type),
     KVASIM_FIELD(KVA_DEVICEINFO, "device.firmware[2]", firmVersionBuild, int32Type),
     KVASIM_FIELD(KVA_DEVICEINFO, "device.macAddress", macAddress, macType),
     KVASIM_FIELD(KVA_DEVICEINFO, "device.reserved1", reserved1, bytesType),
     KVASIM_FIELD(KVA_DEVICEINFO, "device.reserved2", reserved2, bytesType)}};

constexpr Record optionRecord = {
    "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA",
    sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA),
    {KVASIM_FIELD(KVA_JIG_ACTIONOPTIONFACTORYDATA, "wirelessModule", wifiModuleEnable, moduleType),
     KVASIM_FIELD(KVA_JIG_ACTIONOPTIONFACTORYDATA, "factoryOptionsReserved", reserved, bytesType)}};

constexpr Record networkRecord = {
    "KVA_GetNetworkInfo",
    sizeof(KVA_NETWORKINFO),
    {KVASIM_FIELD(KVA_NETWORKINFO, "APConnectUse", APConnectUse, uint32Type),
     KVASIM_FIELD(KVA_NETWORKINFO, "DHCPUse", DHCPUse, uint32Type),
     KVASIM_FIELD(KVA_NETWORKINFO, "IPAddress", IPAddress, addressType),
     KVASIM_FIELD(KVA_NETWORKINFO, "SubnetMask", SubnetMask, addressType),
     KVASIM_FIELD(KVA_NETWORKINFO, "DefaultGateway", DefaultGateway, addressType),
     KVASIM_FIELD(KVA_NETWORKINFO, "DNS", DNS, addressType),
     KVASIM_FIELD(KVA_NETWORKINFO, "SSID", SSID, textType),
     KVASIM_FIELD(KVA_NETWORKINFO, "EncryptKey", EncryptKey, textType),
     KVASIM_FIELD(KVA_NETWORKINFO, nullptr, padding, bytesType)}};

constexpr Record modeRecord = {
    "KVA_GetShutdownTime", sizeof(std::uint8_t), {{"powerOffMode", "mode", &byteType, {0, 1}}}};

constexpr Record calibrationRecord = {
    "KVA_JIG_GetFactoryCalib_CALREFDATA",
    sizeof(KVA_JIG_CALREFDATA),
    {KVASIM_FIELD(KVA_JIG_CALREFDATA, "white.serialNumber", whiteSerialNo, digitsType),
     KVASIM_FIELD(KVA_JIG_CALREFDATA, "white.values", rfWhite.spcData, floatsType),
     KVASIM_FIELD(KVA_JIG_CALREFDATA, "ambientAdapter.serialNumber", ambAdpSerialNo, digitsType),
     KVASIM_FIELD(KVA_JIG_CALREFDATA, "ambientAdapter.values", ambAdp.spcData, floatsType),
     KVASIM_FIELD(KVA_JIG_CALREFDATA, "reserved", reserved, bytesType)}};

#undef KVASIM_FIELD

namespace {

/** State that no function of the library returns. */
constexpr Record stateRecord = {"",
                                0,
                                {{"plugged", "", &flagType, {0, 1}},
                                 {"startUpMs", "", &durationType, {0, 4}},
                                 {"powerCycles", "", &uint32Type, {0, 4}},
                                 {"poweredOn", "", &timeType, {0, 8}}}};

/** A record as a part of an instrument's JSON. */
struct Part {
    const char* place; /**< empty: its fields are in the instrument itself */
    const Record* record;
};

constexpr Part parts[] = {
    {"", &portRecord},
    {"", &stateRecord},
    {"", &deviceRecord},
    {"", &optionRecord},
    {"network.active", &networkRecord},
    {"network.pending", &networkRecord},
    {"", &modeRecord},
    {"calibration.committed", &calibrationRecord},
    {"calibration.staged", &calibrationRecord},
};

} // namespace

constexpr std::array<std::string_view, 13> functionNames = {
    "KVA_RegisterDeviceEventHandler",
    "KVA_GetDevicePortList",
    "KVA_Connect",
    "KVA_Disconnect",
    "KVA_GetDeviceInfo",
    "KVA_GetNetworkInfo",
    "KVA_SetNetworkInfo",
    "KVA_GetShutdownTime",
    "KVA_SetShutdownTime",
    "KVA_JIG_GetFactoryCalib_CALREFDATA",
    "KVA_JIG_SetFactoryCalib_CALREFDATA",
    "KVA_JIG_SetFactoryCalib_WriteSector",
    "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA",
};

std::vector<Place> instrumentPlaces() {
    std::vector<Place> places;
    for (const Part& part : parts) {
        for (const Field& field : part.record->fields) {
            if (field.place != nullptr)
                places.push_back({joined(part.place, field.place), &field});
        }
    }
    return places;
}

Json::json_pointer pointerTo(const std::string& place) {
    std::string pointer = place.empty() ? "" : "/";
    for (const char character : place) {
        if (character == '.' || character == '[')
            pointer += '/';
        else if (character == '~' || character == '/')
            pointer += character == '~' ? "~0" : "~1";
        else if (character != ']')
            pointer += character;
    }
    return Json::json_pointer(pointer);
}

Json toJson(const Record& record, const void* bytes) {
    Json json = Json::object();
    for (const auto& [place, name, type, range] : record.fields) {
        if (place != nullptr)
            json[pointerTo(place)] =
                type->write(static_cast<const std::uint8_t*>(bytes) + range.offset, range.size);
    }
    return json;
}

const Record* answerRecord(std::string_view function) {
    for (const Part& part : parts) {
        if (part.record->source == function)
            return part.record;
    }
    return nullptr;
}

std::optional<ByteRange> rangeOf(const Record& record, std::string_view name) {
    const auto bracket = std::min(name.find('['), name.size());
    const auto& fields = record.fields;
    const auto* const field = std::find_if(fields.begin(), fields.end(), [&](const Field& one) {
        return name.substr(0, bracket) == one.name;
    });
    if (field == fields.end() || bracket == name.size())
        return field == fields.end() ? std::nullopt : std::optional(field->bytes);
    const std::string_view digits = name.substr(bracket + 1);
    const std::size_t width = field->type->elementSize;
    std::size_t index = 0;
    const char* const end = std::from_chars(digits.begin(), digits.end(), index).ptr;
    const std::string_view rest = digits.substr(std::size_t(end - digits.begin()));
    if (width == 0 || end == digits.begin() || rest != "]" || index >= field->bytes.size / width)
        return std::nullopt;
    return ByteRange{field->bytes.offset + index * width, width};
}

} // namespace kvasim
