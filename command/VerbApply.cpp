#include "command/FieldTexts.h"
#include "command/Report.h"
#include "command/SettingsFile.h"
#include "command/VerbSupport.h"

namespace {

void addValues(const QString& path, const CalibrationAccessory& accessory, Change& change,
               Faults& faults) {
    if (path.isEmpty())
        return;
    const auto file = InputFile::read(path, faults);
    const auto values = file ? ValueFile::check(*file, accessory, faults) : std::nullopt;
    if (values)
        change.accessories.push_back(*values);
}

} // namespace

ExitStatus apply(const ApplyOptions& options) {
    const auto serial = requireSerial(options.serial);
    if (!serial)
        return Usage;
    Order order;
    order.serialNumber = *serial;
    order.acceptsImplausible = options.acceptsImplausible;
    Change& change = order.change;
    Faults faults;
    if (!options.network.isEmpty()) {
        const auto file = InputFile::read(options.network, faults);
        if (file)
            change.network = SettingsFile::check(*file, faults);
        change.namesNetwork = true;
    }
    if (!options.powerOff.isEmpty())
        change.powerOffMode =
            static_cast<std::uint8_t>(FieldTexts::powerOffWords().indexOf(options.powerOff));
    addValues(options.whitePlate, CalibrationAccessory::whitePlate, change, faults);
    addValues(options.ambientAdapter, CalibrationAccessory::ambientAdapter, change, faults);
    if (!faults.empty()) {
        sayToUser(faults);
        return Usage;
    }
    return canBeConfirmed(options) ? carryOut(order, options) : Usage;
}
