#include "simulator/AnswerFields.h"

#include <array>

namespace kvasim {

namespace {

struct Field {
    Function function;
    std::string_view name;
    std::size_t offset;
    std::size_t size;
    std::size_t element; // size of one element of an array, of the whole otherwise
};

#define KVASIM_FIELD(function, record, field)                                                      \
    Field {                                                                                        \
        function, #field, offsetof(record, field), sizeof(record::field), sizeof(record::field)    \
    }
#define KVASIM_BYTES(function, record, field)                                                      \
    Field {                                                                                        \
        function, #field, offsetof(record, field), sizeof(record::field), 1                        \
    }

const std::array<Field, 27> fields = {{
    KVASIM_FIELD(Function::GetDevicePortList, KVA_PORTINFO, portType),
    KVASIM_BYTES(Function::GetDevicePortList, KVA_PORTINFO, portName),
    KVASIM_FIELD(Function::GetDevicePortList, KVA_PORTINFO, serialNumber),
    KVASIM_FIELD(Function::GetDeviceInfo, KVA_DEVICEINFO, serialNumber),
    KVASIM_FIELD(Function::GetDeviceInfo, KVA_DEVICEINFO, firmVersionMajor),
    KVASIM_FIELD(Function::GetDeviceInfo, KVA_DEVICEINFO, firmVersionMinor),
    KVASIM_FIELD(Function::GetDeviceInfo, KVA_DEVICEINFO, firmVersionBuild),
    KVASIM_BYTES(Function::GetDeviceInfo, KVA_DEVICEINFO, reserved1),
    KVASIM_BYTES(Function::GetDeviceInfo, KVA_DEVICEINFO, macAddress),
    KVASIM_BYTES(Function::GetDeviceInfo, KVA_DEVICEINFO, reserved2),
    KVASIM_FIELD(Function::GetNetworkInfo, KVA_NETWORKINFO, APConnectUse),
    KVASIM_FIELD(Function::GetNetworkInfo, KVA_NETWORKINFO, DHCPUse),
    KVASIM_BYTES(Function::GetNetworkInfo, KVA_NETWORKINFO, IPAddress),
    KVASIM_BYTES(Function::GetNetworkInfo, KVA_NETWORKINFO, SubnetMask),
    KVASIM_BYTES(Function::GetNetworkInfo, KVA_NETWORKINFO, DefaultGateway),
    KVASIM_BYTES(Function::GetNetworkInfo, KVA_NETWORKINFO, DNS),
    KVASIM_BYTES(Function::GetNetworkInfo, KVA_NETWORKINFO, SSID),
    KVASIM_BYTES(Function::GetNetworkInfo, KVA_NETWORKINFO, EncryptKey),
    KVASIM_BYTES(Function::GetNetworkInfo, KVA_NETWORKINFO, padding),
    Field{Function::GetShutdownTime, "mode", 0, 1, 1},
    KVASIM_BYTES(Function::GetCalibration, KVA_JIG_CALREFDATA, whiteSerialNo),
    Field{Function::GetCalibration, "rfWhite.spcData", offsetof(KVA_JIG_CALREFDATA, rfWhite),
          sizeof(KVA_JIG_WHITEDATA), sizeof(float)},
    KVASIM_BYTES(Function::GetCalibration, KVA_JIG_CALREFDATA, ambAdpSerialNo),
    Field{Function::GetCalibration, "ambAdp.spcData", offsetof(KVA_JIG_CALREFDATA, ambAdp),
          sizeof(KVA_JIG_AMBIENTADAPTERDATA), sizeof(float)},
    KVASIM_BYTES(Function::GetCalibration, KVA_JIG_CALREFDATA, reserved),
    KVASIM_FIELD(Function::GetFactoryOptions, KVA_JIG_ACTIONOPTIONFACTORYDATA, wifiModuleEnable),
    KVASIM_BYTES(Function::GetFactoryOptions, KVA_JIG_ACTIONOPTIONFACTORYDATA, reserved),
}};

#undef KVASIM_FIELD
#undef KVASIM_BYTES

/** "[3]" as 3; nothing for any other text. */
std::optional<std::size_t> elementOf(std::string_view text) {
    if (text.size() < 3 || text.size() > 6 || text.front() != '[' || text.back() != ']')
        return std::nullopt;
    std::size_t number = 0;
    for (const char digit : text.substr(1, text.size() - 2)) {
        if (digit < '0' || digit > '9')
            return std::nullopt;
        number = number * 10 + static_cast<std::size_t>(digit - '0');
    }
    return number;
}

} // namespace

std::size_t answerSize(Function function) {
    switch (function) {
    case Function::GetDevicePortList:
        return sizeof(KVA_PORTINFO);
    case Function::GetDeviceInfo:
        return sizeof(KVA_DEVICEINFO);
    case Function::GetNetworkInfo:
        return sizeof(KVA_NETWORKINFO);
    case Function::GetShutdownTime:
        return sizeof(std::uint8_t);
    case Function::GetCalibration:
        return sizeof(KVA_JIG_CALREFDATA);
    case Function::GetFactoryOptions:
        return sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA);
    default:
        return 0;
    }
}

std::optional<ByteRange> answerField(Function function, std::string_view name) {
    const auto bracket = name.find('[');
    const std::string_view bare = name.substr(0, bracket);
    for (const Field& field : fields) {
        if (field.function != function || field.name != bare)
            continue;
        if (bracket == std::string_view::npos)
            return ByteRange{field.offset, field.size};
        const auto element = elementOf(name.substr(bracket));
        if (!element || *element >= field.size / field.element || field.element == field.size)
            return std::nullopt;
        return ByteRange{field.offset + *element * field.element, field.element};
    }
    return std::nullopt;
}

} // namespace kvasim
