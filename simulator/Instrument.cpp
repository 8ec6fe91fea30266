#include "simulator/Instrument.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>

namespace kvasim {

namespace {

using Octets = std::array<std::uint8_t, 4>;

void setOctets(std::uint8_t (&field)[4], const Octets& octets) {
    std::copy(octets.begin(), octets.end(), field);
}

/** Values of the size that real plates and adapters have, without two that are the same. */
KVA_JIG_CALREFDATA makeCalibration() {
    KVA_JIG_CALREFDATA data{};
    setOctets(data.whiteSerialNo, {0x10, 0x00, 0x00, 0x01});
    setOctets(data.ambAdpSerialNo, {0x00, 0x01, 0x00, 0x01});
    int index = 0;
    for (float& value : data.rfWhite.spcData) {
        value = static_cast<float>(8550 + 20 * index + index * index % 17) / 100.0F;
        ++index;
    }
    index = 0;
    for (float& value : data.ambAdp.spcData) {
        value = static_cast<float>(6000 + 100 * index + index * index % 83) / 10000.0F;
        ++index;
    }
    fillFromSeed(1, data.reserved, sizeof data.reserved);
    return data;
}

std::int64_t millisecondsSince1970() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

} // namespace

Instrument makeInstrument(std::int32_t serialNumber) {
    Instrument instrument;
    instrument.port.portType = ePortType_USB;
    std::strcpy(instrument.port.portName, "USB");
    instrument.port.serialNumber = serialNumber;

    const auto number = static_cast<std::uint32_t>(serialNumber);
    instrument.device.serialNumber = number;
    instrument.device.firmVersionMajor = 1;
    // A locally administered address, so that it belongs to no maker.
    std::uint8_t* const mac = instrument.device.macAddress;
    mac[0] = 0x02;
    for (unsigned int index = 0; index < 4; ++index)
        mac[2 + index] = static_cast<std::uint8_t>(number >> (24U - 8 * index));

    instrument.factoryOptions.wifiModuleEnable = 1;
    KVA_NETWORKINFO& network = instrument.activeNetwork;
    setOctets(network.IPAddress, {192, 168, 0, 10});
    setOctets(network.SubnetMask, {255, 255, 255, 0});
    setOctets(network.DefaultGateway, {192, 168, 0, 1});
    setOctets(network.DNS, {192, 168, 0, 1});
    instrument.committedCalibration = makeCalibration();
    return instrument;
}

void setPlugged(Instrument& instrument, bool plugged) {
    instrument.plugged = plugged;
    instrument.poweredOn = 0;
}

void powerCycle(Instrument& instrument, StartUp startUp) {
    instrument.activeNetwork = instrument.network();
    instrument.isPending = false;
    instrument.isStaged = false;
    ++instrument.powerCycles;
    const bool takesTime =
        instrument.plugged && startUp == StartUp::Timed && instrument.startUpMs > 0;
    instrument.poweredOn = takesTime ? millisecondsSince1970() : 0;
}

std::int64_t startUpLeft(const Instrument& instrument) {
    const std::int64_t sinceThen = millisecondsSince1970() - instrument.poweredOn;
    // A clock that was set back must not keep an instrument from starting.
    if (instrument.poweredOn == 0 || sinceThen < 0)
        return 0;
    return std::max<std::int64_t>(instrument.startUpMs - sinceThen, 0);
}

bool isReady(const Instrument& instrument) {
    return instrument.plugged && startUpLeft(instrument) == 0;
}

} // namespace kvasim
