#include "command/FieldTexts.h"
#include "command/Journal.h"
#include "command/Report.h"
#include "command/SettingsFile.h"
#include "command/VerbSupport.h"

namespace {

void addValues(const QString& path, const CalibrationAccessory& accessory, const char* role,
               Change& change, std::vector<JournalInput>& inputs, Faults& faults) {
    if (path.isEmpty())
        return;
    const auto file = InputFile::read(path, faults);
    if (file)
        inputs.push_back(journalInput(QString::fromLatin1(role), *file));
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
    std::vector<JournalInput> inputs;
    if (!options.network.isEmpty()) {
        const auto file = InputFile::read(options.network, faults);
        if (file) {
            change.network = SettingsFile::check(*file, faults);
            inputs.push_back(journalInput(QStringLiteral("network"), *file));
        }
        change.namesNetwork = true;
    }
    if (!options.powerOff.isEmpty())
        change.powerOffMode =
            static_cast<std::uint8_t>(FieldTexts::powerOffWords().indexOf(options.powerOff));
    addValues(options.whitePlate, CalibrationAccessory::whitePlate, "white-plate", change, inputs,
              faults);
    addValues(options.ambientAdapter, CalibrationAccessory::ambientAdapter, "ambient-adapter",
              change, inputs, faults);
    if (!faults.empty()) {
        sayToUser(faults);
        return Usage;
    }
    return canBeConfirmed(options) ? carryOut(order, options, inputs) : Usage;
}
