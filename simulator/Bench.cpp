#include "simulator/Bench.h"

#include "simulator/JsonFields.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace kvasim {

// The records are kept as the caller sees them, and a port entry is compared byte for byte.
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the records are little-endian");

namespace {

using Octets = std::array<std::uint8_t, 4>;

void setOctets(std::uint8_t (&field)[4], const Octets& octets) {
    std::copy(octets.begin(), octets.end(), field);
}

template <std::size_t Size>
void setText(char (&field)[Size], std::string_view text) {
    std::memset(field, 0, Size);
    std::memcpy(field, text.data(), std::min(text.size(), Size - 1));
}

/** Values of the size that real plates and adapters have, without two that are the same. */
void setCalibration(KVA_JIG_CALREFDATA& data, const Octets& whiteSerial,
                    const Octets& adapterSerial, int offset) {
    setOctets(data.whiteSerialNo, whiteSerial);
    setOctets(data.ambAdpSerialNo, adapterSerial);
    int index = 0;
    for (float& value : data.rfWhite.spcData) {
        value = static_cast<float>(8550 + offset + 20 * index + index * index % 17) / 100.0F;
        ++index;
    }
    index = 0;
    for (float& value : data.ambAdp.spcData) {
        value = static_cast<float>(6000 + offset + 100 * index + index * index % 83) / 10000.0F;
        ++index;
    }
}

Instrument makeUsbInstrument() {
    Instrument instrument = makeInstrument(1000001);
    instrument.device.firmVersionMajor = 1;
    instrument.device.firmVersionMinor = 12;
    instrument.device.firmVersionBuild = 3;
    KVA_NETWORKINFO& network = instrument.activeNetwork;
    network.APConnectUse = eAPConnect_ON;
    network.DHCPUse = eDHCP_ON;
    setOctets(network.IPAddress, {0, 0, 0, 0});
    setOctets(network.SubnetMask, {0, 0, 0, 0});
    setOctets(network.DefaultGateway, {0, 0, 0, 0});
    setOctets(network.DNS, {0, 0, 0, 0});
    setText(network.SSID, "measuring-room");
    setText(network.EncryptKey, "spectral-demo-1");
    instrument.powerOffMode = eShutdownTime_15Minutes;
    setCalibration(instrument.committedCalibration, {0x12, 0x34, 0x56, 0x78},
                   {0x00, 0x01, 0x23, 0x45}, 0);
    fillFromSeed(1000001, instrument.committedCalibration.reserved,
                 sizeof instrument.committedCalibration.reserved);
    return instrument;
}

Instrument makeNetworkInstrument() {
    Instrument instrument = makeInstrument(1000002);
    instrument.port.portType = 2;
    setText(instrument.port.portName, "192.168.0.20");
    instrument.device.firmVersionMajor = 1;
    instrument.device.firmVersionMinor = 10;
    instrument.device.firmVersionBuild = 27;
    KVA_NETWORKINFO& network = instrument.activeNetwork;
    network.APConnectUse = eAPConnect_ON;
    setOctets(network.IPAddress, {192, 168, 0, 20});
    setText(network.SSID, "press-hall");
    setText(network.EncryptKey, "spectral-demo-2");
    instrument.powerOffMode = eShutdownTime_60Minutes;
    setCalibration(instrument.committedCalibration, {0x23, 0x45, 0x67, 0x89},
                   {0x00, 0x05, 0x43, 0x21}, 37);
    fillFromSeed(1000002, instrument.committedCalibration.reserved,
                 sizeof instrument.committedCalibration.reserved);
    return instrument;
}

} // namespace

std::optional<std::size_t> findInstrument(const Bench& bench, std::int32_t serialNumber) {
    for (std::size_t index = 0; index < bench.instruments.size(); ++index) {
        if (bench.instruments[index].port.serialNumber == serialNumber)
            return index;
    }
    return std::nullopt;
}

Instrument makeInstrument(std::int32_t serialNumber) {
    Instrument instrument;
    instrument.port.portType = ePortType_USB;
    setText(instrument.port.portName, "USB");
    instrument.port.serialNumber = serialNumber;

    const auto number = static_cast<std::uint32_t>(serialNumber);
    instrument.device.serialNumber = number;
    instrument.device.firmVersionMajor = 1;
    // A locally administered address, so that it belongs to no maker.
    const std::array<std::uint8_t, 6> mac = {0x02,
                                             0x00,
                                             static_cast<std::uint8_t>(number >> 24U),
                                             static_cast<std::uint8_t>(number >> 16U),
                                             static_cast<std::uint8_t>(number >> 8U),
                                             static_cast<std::uint8_t>(number)};
    std::copy(mac.begin(), mac.end(), instrument.device.macAddress);

    instrument.factoryOptions.wifiModuleEnable = 1;
    KVA_NETWORKINFO& network = instrument.activeNetwork;
    setOctets(network.IPAddress, {192, 168, 0, 10});
    setOctets(network.SubnetMask, {255, 255, 255, 0});
    setOctets(network.DefaultGateway, {192, 168, 0, 1});
    setOctets(network.DNS, {192, 168, 0, 1});
    setCalibration(instrument.committedCalibration, {0x10, 0x00, 0x00, 0x01},
                   {0x00, 0x01, 0x00, 0x01}, 0);
    fillFromSeed(1, instrument.committedCalibration.reserved,
                 sizeof instrument.committedCalibration.reserved);
    return instrument;
}

Bench makeBuiltInBench() {
    return {{makeUsbInstrument(), makeNetworkInstrument()}, {}};
}

void powerCycle(Instrument& instrument) {
    if (instrument.pendingNetwork)
        instrument.activeNetwork = *instrument.pendingNetwork;
    instrument.pendingNetwork.reset();
    instrument.stagedCalibration.reset();
}

} // namespace kvasim
