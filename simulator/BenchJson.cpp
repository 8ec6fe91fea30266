#include "simulator/BenchJson.h"

#include "simulator/JsonFields.h"

#include <algorithm>
#include <cstring>

namespace kvasim {

namespace {

constexpr std::int64_t maxStartUpMs = 600000;

void readOptionalBytes(JsonFields& fields, const char* key, std::uint8_t* bytes, std::size_t size) {
    if (const Json* value = fields.find(key))
        readBytes(*value, fields.pathOf(key), bytes, size);
}

void readPort(const Json& json, const std::string& path, KVA_PORTINFO& port) {
    JsonFields fields(json, path);
    if (const Json* type = fields.find("type"))
        port.portType = readUint32(*type, fields.pathOf("type"));
    if (const Json* name = fields.find("name"))
        readText(*name, fields.pathOf("name"), port.portName, sizeof port.portName);
    fields.finish();
}

void readFirmware(const Json& json, const std::string& path, KVA_DEVICEINFO& device) {
    if (!json.is_array() || json.size() != 3)
        refuse(path, "must be an array of three numbers");
    device.firmVersionMajor = readUint32(json[0], path + "[0]");
    device.firmVersionMinor = readInt32(json[1], path + "[1]");
    device.firmVersionBuild = readInt32(json[2], path + "[2]");
}

void readDevice(const Json& json, const std::string& path, KVA_DEVICEINFO& device) {
    JsonFields fields(json, path);
    if (const Json* serialNumber = fields.find("serialNumber"))
        device.serialNumber = readUint32(*serialNumber, fields.pathOf("serialNumber"));
    if (const Json* firmware = fields.find("firmware"))
        readFirmware(*firmware, fields.pathOf("firmware"), device);
    if (const Json* mac = fields.find("macAddress")) {
        const std::string macPath = fields.pathOf("macAddress");
        if (!fromHex(readString(*mac, macPath), ":", device.macAddress, sizeof device.macAddress))
            refuse(macPath, "must be an address such as \"02:00:00:0f:42:41\"");
    }
    readOptionalBytes(fields, "reserved1", device.reserved1, sizeof device.reserved1);
    readOptionalBytes(fields, "reserved2", device.reserved2, sizeof device.reserved2);
    fields.finish();
}

std::uint8_t readWirelessModule(const Json& json, const std::string& path) {
    if (json.is_boolean())
        return json.get<bool>() ? 1 : 0;
    if (!json.is_number())
        refuse(path, "must be true, false or a whole number from 0 to 255");
    return readUint8(json, path);
}

void readSettings(const Json& json, const std::string& path, KVA_NETWORKINFO& network) {
    JsonFields fields(json, path);
    const auto number = [&](const char* key, std::uint32_t& field) {
        if (const Json* value = fields.find(key))
            field = readUint32(*value, fields.pathOf(key));
    };
    const auto address = [&](const char* key, std::uint8_t(&field)[4]) {
        if (const Json* value = fields.find(key))
            readAddress(*value, fields.pathOf(key), field);
    };
    const auto text = [&](const char* key, char* field, std::size_t size) {
        if (const Json* value = fields.find(key))
            readText(*value, fields.pathOf(key), field, size);
    };
    number("APConnectUse", network.APConnectUse);
    number("DHCPUse", network.DHCPUse);
    address("IPAddress", network.IPAddress);
    address("SubnetMask", network.SubnetMask);
    address("DefaultGateway", network.DefaultGateway);
    address("DNS", network.DNS);
    text("SSID", network.SSID, sizeof network.SSID);
    text("EncryptKey", network.EncryptKey, sizeof network.EncryptKey);
    fields.finish();
}

void readNetwork(const Json& json, const std::string& path, Instrument& instrument) {
    JsonFields fields(json, path);
    if (const Json* active = fields.find("active"))
        readSettings(*active, fields.pathOf("active"), instrument.activeNetwork);
    const Json* pending = fields.find("pending");
    if (pending != nullptr && !pending->is_null()) {
        instrument.pendingNetwork = instrument.activeNetwork;
        readSettings(*pending, fields.pathOf("pending"), *instrument.pendingNetwork);
    }
    fields.finish();
}

template <std::size_t Count>
void readReference(const Json& json, const std::string& path, std::uint8_t (&serialNumber)[4],
                   float (&values)[Count]) {
    JsonFields fields(json, path);
    if (const Json* digits = fields.find("serialNumber"))
        readSerialDigits(*digits, fields.pathOf("serialNumber"), serialNumber);
    if (const Json* array = fields.find("values")) {
        const std::string arrayPath = fields.pathOf("values");
        if (!array->is_array() || array->size() != Count)
            refuse(arrayPath, "must be an array of " + std::to_string(Count) + " values");
        for (std::size_t index = 0; index < Count; ++index)
            values[index] =
                readFloat((*array)[index], arrayPath + '[' + std::to_string(index) + ']');
    }
    fields.finish();
}

void readRecord(const Json& json, const std::string& path, KVA_JIG_CALREFDATA& record) {
    JsonFields fields(json, path);
    if (const Json* white = fields.find("white"))
        readReference(*white, fields.pathOf("white"), record.whiteSerialNo, record.rfWhite.spcData);
    if (const Json* adapter = fields.find("ambientAdapter"))
        readReference(*adapter, fields.pathOf("ambientAdapter"), record.ambAdpSerialNo,
                      record.ambAdp.spcData);
    readOptionalBytes(fields, "reserved", record.reserved, sizeof record.reserved);
    fields.finish();
}

void readCalibration(const Json& json, const std::string& path, Instrument& instrument) {
    JsonFields fields(json, path);
    if (const Json* committed = fields.find("committed"))
        readRecord(*committed, fields.pathOf("committed"), instrument.committedCalibration);
    const Json* staged = fields.find("staged");
    if (staged != nullptr && !staged->is_null()) {
        instrument.stagedCalibration = instrument.committedCalibration;
        readRecord(*staged, fields.pathOf("staged"), *instrument.stagedCalibration);
    }
    fields.finish();
}

template <std::size_t Count>
Json referenceToJson(const std::uint8_t (&serialNumber)[4], const float (&values)[Count]) {
    Json array = Json::array();
    for (std::size_t index = 0; index < Count; ++index)
        array.push_back(floatToJson(values[index]));
    return {{"serialNumber", serialDigitsToJson(serialNumber)}, {"values", std::move(array)}};
}

Json recordToJson(const KVA_JIG_CALREFDATA& record) {
    return {{"white", referenceToJson(record.whiteSerialNo, record.rfWhite.spcData)},
            {"ambientAdapter", referenceToJson(record.ambAdpSerialNo, record.ambAdp.spcData)},
            {"reserved", bytesToJson(record.reserved, sizeof record.reserved)}};
}

Json deviceToJson(const KVA_DEVICEINFO& device) {
    return {{"serialNumber", device.serialNumber},
            {"firmware", Json::array({device.firmVersionMajor, device.firmVersionMinor,
                                      device.firmVersionBuild})},
            {"macAddress", toHex(device.macAddress, sizeof device.macAddress, ":")},
            {"reserved1", bytesToJson(device.reserved1, sizeof device.reserved1)},
            {"reserved2", bytesToJson(device.reserved2, sizeof device.reserved2)}};
}

Json wirelessModuleToJson(std::uint8_t flag) {
    return flag > 1 ? Json(flag) : Json(flag == 1);
}

bool isBytes(const Json& json) {
    return json.is_object() &&
           (json.contains("hex") || json.contains("fill") || json.contains("seed"));
}

} // namespace

Instrument instrumentFromJson(const Json& json, const std::string& path) {
    JsonFields fields(json, path);
    Instrument instrument =
        makeInstrument(readInt32(fields.get("serialNumber"), fields.pathOf("serialNumber")));
    if (const Json* plugged = fields.find("plugged"))
        instrument.plugged = readBool(*plugged, fields.pathOf("plugged"));
    if (const Json* port = fields.find("port"))
        readPort(*port, fields.pathOf("port"), instrument.port);
    if (const Json* device = fields.find("device"))
        readDevice(*device, fields.pathOf("device"), instrument.device);
    KVA_JIG_ACTIONOPTIONFACTORYDATA& options = instrument.factoryOptions;
    if (const Json* module = fields.find("wirelessModule"))
        options.wifiModuleEnable = readWirelessModule(*module, fields.pathOf("wirelessModule"));
    readOptionalBytes(fields, "factoryOptionsReserved", options.reserved, sizeof options.reserved);
    if (const Json* network = fields.find("network"))
        readNetwork(*network, fields.pathOf("network"), instrument);
    if (const Json* mode = fields.find("powerOffMode"))
        instrument.powerOffMode = readUint8(*mode, fields.pathOf("powerOffMode"));
    if (const Json* startUp = fields.find("startUpMs"))
        instrument.startUpMs = static_cast<std::uint32_t>(
            readInteger(*startUp, fields.pathOf("startUpMs"), 0, maxStartUpMs));
    if (const Json* calibration = fields.find("calibration"))
        readCalibration(*calibration, fields.pathOf("calibration"), instrument);
    fields.finish();
    return instrument;
}

Json instrumentToJson(const Instrument& instrument, Keys keys) {
    const auto& pending = instrument.pendingNetwork;
    const auto& staged = instrument.stagedCalibration;
    const KVA_PORTINFO& port = instrument.port;
    const KVA_JIG_ACTIONOPTIONFACTORYDATA& options = instrument.factoryOptions;
    return {{"serialNumber", port.serialNumber},
            {"plugged", instrument.plugged},
            {"port", portToJson(port)},
            {"device", deviceToJson(instrument.device)},
            {"wirelessModule", wirelessModuleToJson(options.wifiModuleEnable)},
            {"factoryOptionsReserved", bytesToJson(options.reserved, sizeof options.reserved)},
            {"network",
             {{"active", networkToJson(instrument.activeNetwork, keys)},
              {"pending", pending ? networkToJson(*pending, keys) : Json()}}},
            {"powerOffMode", instrument.powerOffMode},
            {"startUpMs", instrument.startUpMs},
            {"calibration",
             {{"committed", recordToJson(instrument.committedCalibration)},
              {"staged", staged ? recordToJson(*staged) : Json()}}}};
}

Json portToJson(const KVA_PORTINFO& port) {
    return {{"type", port.portType}, {"name", textToJson(port.portName, sizeof port.portName)}};
}

Json networkToJson(const KVA_NETWORKINFO& network, Keys keys) {
    const std::size_t keySize = sizeof network.EncryptKey;
    return {{"APConnectUse", network.APConnectUse},
            {"DHCPUse", network.DHCPUse},
            {"IPAddress", addressToJson(network.IPAddress)},
            {"SubnetMask", addressToJson(network.SubnetMask)},
            {"DefaultGateway", addressToJson(network.DefaultGateway)},
            {"DNS", addressToJson(network.DNS)},
            {"SSID", textToJson(network.SSID, sizeof network.SSID)},
            {"EncryptKey", keys == Keys::Shown
                               ? textToJson(network.EncryptKey, keySize)
                               : Json({{"length", strnlen(network.EncryptKey, keySize)}})}};
}

Bench benchFromJson(const Json& json) {
    JsonFields fields(json, "");
    const Json& version = fields.get("version");
    const std::int64_t number = readInteger(version, "version", 1, INT32_MAX);
    if (number > benchVersion)
        refuse("version", "is " + std::to_string(number) + ", newer than the version " +
                              std::to_string(benchVersion) + " that can be read");
    Bench bench;
    const Json& instruments = fields.get("instruments");
    if (!instruments.is_array())
        refuse("instruments", "must be an array");
    for (std::size_t index = 0; index < instruments.size(); ++index) {
        const std::string path = "instruments[" + std::to_string(index) + ']';
        Instrument instrument = instrumentFromJson(instruments[index], path);
        if (findInstrument(bench, instrument.port.serialNumber))
            refuse(path + ".serialNumber", "is the serial number of another instrument as well");
        bench.instruments.push_back(std::move(instrument));
    }
    if (const Json* faults = fields.find("faults")) {
        if (!faults->is_array())
            refuse("faults", "must be an array");
        for (std::size_t index = 0; index < faults->size(); ++index)
            bench.faults.push_back(
                faultRuleFromJson((*faults)[index], "faults[" + std::to_string(index) + ']'));
    }
    fields.finish();
    return bench;
}

Json benchToJson(const Bench& bench, Keys keys) {
    Json instruments = Json::array();
    for (const Instrument& instrument : bench.instruments)
        instruments.push_back(instrumentToJson(instrument, keys));
    Json faults = Json::array();
    for (const FaultRule& rule : bench.faults)
        faults.push_back(faultRuleToJson(rule));
    return {{"version", benchVersion},
            {"instruments", std::move(instruments)},
            {"faults", std::move(faults)}};
}

void mergeInto(Json& target, const Json& patch) {
    if (!patch.is_object() || isBytes(patch)) {
        target = patch;
        return;
    }
    if (!target.is_object() || isBytes(target))
        target = Json::object();
    for (const auto& item : patch.items()) {
        if (item.value().is_null())
            target.erase(item.key());
        else
            mergeInto(target[item.key()], item.value());
    }
}

} // namespace kvasim
