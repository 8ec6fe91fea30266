#include "command/AccessoryTexts.h"
#include "command/InputRole.h"
#include "command/Journal.h"
#include "command/Report.h"
#include "command/Snapshot.h"
#include "command/VerbSupport.h"

#include <algorithm>

namespace {

/** The accessory's part of a record, in the form of a value file. */
ValueFile partOf(const KVA_JIG_CALREFDATA& record, const CalibrationAccessory& accessory) {
    ValueFile part;
    part.accessory = &accessory;
    std::copy(std::begin(record.*accessory.serialNo), std::end(record.*accessory.serialNo),
              std::begin(part.serialNo));
    const float* values = accessory.values(record);
    part.values.assign(values, values + accessory.valueCount);
    return part;
}

/** The parts of the snapshot that are to be restored. */
Change changeFor(const Snapshot& snapshot, const QStringList& only) {
    const InstrumentState& state = snapshot.state;
    Change change;
    if (only.isEmpty()) {
        change.network = state.network;
        change.powerOffMode = state.powerOffMode;
        change.calibration = state.calibration;
        return change;
    }
    if (only.contains(QLatin1String("network")))
        change.network = state.network;
    if (only.contains(QLatin1String("power-off")))
        change.powerOffMode = state.powerOffMode;
    for (const AccessoryTexts& texts : AccessoryTexts::all) {
        if (only.contains(QLatin1String(texts.role.word)))
            change.accessories.push_back(partOf(state.calibration, texts.accessory));
    }
    return change;
}

/** Why the snapshot cannot be restored to the instrument; empty if it can. */
Text problemOf(const Snapshot& snapshot, const Order& order, const RestoreOptions& options) {
    const auto owner = static_cast<std::int32_t>(snapshot.state.device.serialNumber);
    if (owner != order.serialNumber)
        return Text(
            QT_TRANSLATE_NOOP("vq-tl4ctl", "The snapshot is one of instrument %1, not of %2."),
            {serialText(owner), serialText(order.serialNumber)});
    if (order.change.network && !snapshot.hasKey)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "The snapshot has no security key, so its network settings "
                                      "cannot be put back: name the other parts with --only."));
    if (options.only.contains(QLatin1String("network")) && !order.change.network)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The snapshot has no network settings."));
    return {};
}

} // namespace

const QStringList& restorableParts() {
    static const QStringList parts =
        QStringLiteral("network power-off white-plate ambient-adapter").split(QLatin1Char(' '));
    return parts;
}

ExitStatus restore(const RestoreOptions& options) {
    const auto serial = requireSerial(options.serial);
    if (!serial)
        return Usage;
    Faults faults;
    const auto file = InputFile::read(options.snapshot, faults);
    std::optional<Snapshot> snapshot;
    if (file)
        snapshot = Snapshot::check(*file, faults);
    if (!snapshot) {
        sayToUser(faults);
        return Usage;
    }
    Order order;
    order.serialNumber = *serial;
    order.isRestore = true;
    order.restoresAll = options.only.isEmpty();
    order.change = changeFor(*snapshot, options.only);
    const Text problem = problemOf(*snapshot, order, options);
    if (!problem.isEmpty()) {
        sayToUser(Fault{options.snapshot, 0, 0, problem}.toString());
        return Usage;
    }
    if (!canBeConfirmed(options))
        return Usage;
    std::vector<JournalInput> inputs;
    inputs.push_back(journalInput(InputRole::snapshot, *file));
    return carryOut(order, options, inputs);
}
