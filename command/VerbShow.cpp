#include "command/AccessoryTexts.h"
#include "command/FieldTexts.h"
#include "command/Report.h"
#include "command/Snapshot.h"
#include "command/UnfinishedMark.h"
#include "command/VerbSupport.h"

#include <QJsonObject>

namespace {

void printField(const char* source, const QString& value) {
    print(translated(source, {value}));
}

void printNetwork(const KVA_NETWORKINFO& network, bool revealsKey) {
    using namespace FieldTexts;
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "Wireless LAN:     %1"), onOff(network.APConnectUse));
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "DHCP:             %1"), onOff(network.DHCPUse));
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "IP address:       %1"), address(network.IPAddress));
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "Subnet mask:      %1"), address(network.SubnetMask));
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "Default gateway:  %1"),
               address(network.DefaultGateway));
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "DNS server:       %1"), address(network.DNS));
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "SSID:             %1"),
               text(network.SSID, sizeof network.SSID));
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "Security key:     %1"),
               revealsKey ? text(network.EncryptKey, sizeof network.EncryptKey)
                          : maskedKey(network));
}

void printAccessory(const AccessoryTexts& texts, const KVA_JIG_CALREFDATA& record) {
    const CalibrationAccessory& accessory = texts.accessory;
    printField(texts.shown, FieldTexts::accessorySerial(record.*accessory.serialNo));
    constexpr std::size_t valuesInLine = 8;
    for (std::size_t first = 0; first < accessory.valueCount; first += valuesInLine) {
        QString line = QStringLiteral("  ");
        for (std::size_t i = first; i < std::min(first + valuesInLine, accessory.valueCount); ++i)
            line += FieldTexts::value(accessory.values(record)[i]).leftJustified(12);
        print(line.trimmed().prepend(QStringLiteral("  ")));
    }
}

void printState(const InstrumentState& state, bool revealsKey) {
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "Serial number:    %1"),
               serialText(static_cast<std::int32_t>(state.device.serialNumber)));
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "Firmware:         %1"),
               FieldTexts::firmware(state.device));
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "MAC address:      %1"),
               FieldTexts::macAddress(state.device));
    if (state.network)
        printNetwork(*state.network, revealsKey);
    else
        print(translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Wireless module:  none")));
    printField(QT_TRANSLATE_NOOP("vq-tl4ctl", "Power-off time:   %1"),
               FieldTexts::powerOff(state.powerOffMode));
    for (const AccessoryTexts& texts : AccessoryTexts::all)
        printAccessory(texts, state.calibration);
}

} // namespace

ExitStatus show(const ShowOptions& options) {
    const auto serial = requireSerial(options.serial);
    if (!serial)
        return Usage;
    CallWatch watch;
    InstrumentState state;
    const Text problem = readInstrument(watch, *serial, state);
    if (!problem.isEmpty()) {
        sayToUser(problem);
        return RefusedStatus;
    }
    const UnfinishedMark mark(*serial);
    if (mark.exists())
        sayToUser(mark.told());
    if (options.asJson)
        print(readableState(state, options.revealsKey));
    else
        printState(state, options.revealsKey);
    return Done;
}
