#include "command/Difference.h"

#include "command/AccessoryTexts.h"
#include "command/FieldTexts.h"
#include "command/Snapshot.h"

#include <cstring>

namespace {

void addIfDifferent(const QString& field, const QString& from, const QString& to,
                    FieldChanges& changes) {
    if (from != to)
        changes.push_back({field, from, to});
}

void addAccessory(const AccessoryTexts& texts, const KVA_JIG_CALREFDATA& from,
                  const KVA_JIG_CALREFDATA& to, FieldChanges& changes) {
    const CalibrationAccessory& accessory = texts.accessory;
    const QString name = QLatin1String(texts.field);
    addIfDifferent(name + QStringLiteral(".serialNumber"),
                   FieldTexts::accessorySerial(from.*accessory.serialNo),
                   FieldTexts::accessorySerial(to.*accessory.serialNo), changes);
    for (std::size_t i = 0; i < accessory.valueCount; ++i)
        addIfDifferent(QStringLiteral("%1.values[%2]").arg(name).arg(i),
                       FieldTexts::value(accessory.values(from)[i]),
                       FieldTexts::value(accessory.values(to)[i]), changes);
}

/** The uninterpreted bytes, from the first to the last that differs. */
void addRest(const KVA_JIG_CALREFDATA& from, const KVA_JIG_CALREFDATA& to, FieldChanges& changes) {
    std::size_t first = sizeof from.reserved;
    std::size_t last = 0;
    for (std::size_t i = 0; i < sizeof from.reserved; ++i) {
        if (from.reserved[i] == to.reserved[i])
            continue;
        first = std::min(first, i);
        last = i;
    }
    if (first > last)
        return;
    const std::size_t size = last - first + 1;
    changes.push_back({QStringLiteral("otherFactoryData[%1..%2]").arg(first).arg(last),
                       FieldTexts::hex(from.reserved + first, size),
                       FieldTexts::hex(to.reserved + first, size)});
}

} // namespace

void addDifference(const std::optional<KVA_NETWORKINFO>& from,
                   const std::optional<KVA_NETWORKINFO>& to, bool withKey, FieldChanges& changes) {
    if (!from || !to)
        return;
    const auto add = [&](const char* field, const QString& oldText, const QString& newText) {
        addIfDifferent(QStringLiteral("network.") + QLatin1String(field), oldText, newText,
                       changes);
    };
    using namespace FieldTexts;
    add("wireless", onOff(from->APConnectUse), onOff(to->APConnectUse));
    add("dhcp", onOff(from->DHCPUse), onOff(to->DHCPUse));
    add("ipAddress", address(from->IPAddress), address(to->IPAddress));
    add("subnetMask", address(from->SubnetMask), address(to->SubnetMask));
    add("defaultGateway", address(from->DefaultGateway), address(to->DefaultGateway));
    add("dns", address(from->DNS), address(to->DNS));
    add("ssid", text(from->SSID, sizeof from->SSID), text(to->SSID, sizeof to->SSID));
    const bool keyDiffers =
        std::memcmp(from->EncryptKey, to->EncryptKey, sizeof from->EncryptKey) != 0;
    if (withKey && keyDiffers)
        changes.push_back({QStringLiteral("network.key"), maskedKey(*from), maskedKey(*to)});
}

FieldChanges difference(const InstrumentState& from, const InstrumentState& to, bool withKey) {
    FieldChanges changes;
    addDifference(from.network, to.network, withKey, changes);
    addIfDifferent(QStringLiteral("powerOff"), FieldTexts::powerOff(from.powerOffMode),
                   FieldTexts::powerOff(to.powerOffMode), changes);
    for (const AccessoryTexts& texts : AccessoryTexts::all)
        addAccessory(texts, from.calibration, to.calibration, changes);
    addRest(from.calibration, to.calibration, changes);
    return changes;
}
