#include "command/AccessoryTexts.h"
#include "command/FieldTexts.h"
#include "command/InputRole.h"
#include "command/Journal.h"
#include "command/ManyOrders.h"
#include "command/Report.h"
#include "command/SettingsFile.h"
#include "command/VerbSupport.h"

#include <algorithm>

namespace {

void addValues(const QString& path, const CalibrationAccessory& accessory, Change& change,
               std::vector<JournalInput>& inputs, Faults& faults) {
    if (path.isEmpty())
        return;
    const auto file = InputFile::read(path, faults);
    if (!file)
        return;
    inputs.push_back(journalInput(AccessoryTexts::of(accessory).role, *file));
    const auto values = ValueFile::check(*file, accessory, faults);
    if (values)
        change.accessories.push_back(*values);
}

/** The change that the options describe, for each of the instruments. */
Change changeFor(const ApplyOptions& options, std::vector<JournalInput>& inputs, Faults& faults) {
    Change change;
    if (!options.network.isEmpty()) {
        const auto file = InputFile::read(options.network, faults);
        if (file) {
            change.network = SettingsFile::check(*file, faults);
            inputs.push_back(journalInput(InputRole::network, *file));
        }
    }
    if (!options.powerOff.isEmpty())
        change.powerOffMode =
            static_cast<std::uint8_t>(FieldTexts::powerOffWords().indexOf(options.powerOff));
    addValues(options.whitePlate, CalibrationAccessory::whitePlate, change, inputs, faults);
    addValues(options.ambientAdapter, CalibrationAccessory::ambientAdapter, change, inputs, faults);
    return change;
}

std::optional<std::vector<std::int32_t>> requireSerials(const QStringList& texts) {
    std::vector<std::int32_t> serials;
    for (const QString& text : texts) {
        const auto serial = requireSerial(text);
        if (!serial)
            return std::nullopt;
        serials.push_back(*serial);
    }
    return serials;
}

ExitStatus carryOut(std::vector<Order>& orders, const ApplyOptions& options,
                    const std::vector<JournalInput>& inputs) {
    if (!canBeConfirmed(options))
        return Usage;
    for (Order& order : orders) {
        prepare(order, options);
        order.acceptsImplausible = options.acceptsImplausible;
    }
    return ManyOrders(orders, options, inputs).carryOut();
}

// ---- A plan

Order orderFor(PlanRow& row) {
    Order order;
    order.serialNumber = row.serialNumber;
    order.change.networkFields = std::move(row.network);
    order.change.powerOffMode = row.powerOffMode;
    order.change.accessories = std::move(row.accessories);
    return order;
}

ExitStatus applyPlan(const ApplyOptions& options) {
    const auto only = requireSerials(options.only);
    if (!only)
        return Usage;
    CheckedPlan checked;
    const ExitStatus status = requirePlan(options.plan, false, *only, checked);
    if (status != Done)
        return status;
    std::vector<JournalInput> inputs;
    inputs.push_back(Plan::journalInput(checked.file));
    std::vector<Order> orders;
    orders.reserve(checked.plan.rows.size());
    for (PlanRow& row : checked.plan.rows) {
        inputs.insert(inputs.end(), row.inputs.begin(), row.inputs.end());
        orders.push_back(orderFor(row));
    }
    return carryOut(orders, options, inputs);
}

// ---- The same change for several instruments

/** All reasons why this change must not be made to several instruments. */
std::vector<Text> problemsOf(const std::vector<std::int32_t>& serials,
                             const std::vector<std::int32_t>& attached, const Change& change) {
    std::vector<Text> problems;
    for (auto serial = serials.begin(); serial != serials.end(); ++serial) {
        if (std::find(attached.begin(), attached.end(), *serial) == attached.end())
            problems.push_back(
                Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1 is not attached."),
                     {serialText(*serial)}));
        if (std::find(serials.begin(), serial, *serial) != serial)
            problems.push_back(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1 is named twice."),
                                    {serialText(*serial)}));
    }
    if (serials.size() < 2)
        return problems;
    if (!change.accessories.empty())
        problems.emplace_back(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                                "A plate or an adapter belongs to one instrument: "
                                                "its values are not registered in several."));
    if (change.network && change.network->DHCPUse == eDHCP_OFF)
        problems.emplace_back(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                                "The settings have a fixed address, which only "
                                                "one instrument can have: use DHCP, or a plan."));
    return problems;
}

ExitStatus applyToSeveral(std::vector<std::int32_t> serials, const ApplyOptions& options,
                          const Change& change, const std::vector<JournalInput>& inputs) {
    std::vector<std::int32_t> attached;
    Text problem = attachedInstruments(attached);
    if (options.all)
        serials = attached;
    if (problem.isEmpty() && serials.empty())
        problem = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "No instrument is attached."));
    if (!problem.isEmpty()) {
        sayToUser(problem);
        return RefusedStatus;
    }
    const std::vector<Text> problems = problemsOf(serials, attached, change);
    for (const Text& each : problems)
        sayToUser(each);
    if (!problems.empty())
        return Usage;
    std::vector<Order> orders(serials.size());
    for (std::size_t i = 0; i < serials.size(); ++i) {
        orders[i].serialNumber = serials[i];
        orders[i].change = change;
    }
    return carryOut(orders, options, inputs);
}

} // namespace

ExitStatus apply(const ApplyOptions& options) {
    if (!options.plan.isEmpty())
        return applyPlan(options);
    const auto serials = requireSerials(options.serials);
    if (!serials)
        return Usage;
    Faults faults;
    std::vector<JournalInput> inputs;
    const Change change = changeFor(options, inputs, faults);
    if (!faults.empty()) {
        sayToUser(faults);
        return Usage;
    }
    if (serials->size() != 1)
        return applyToSeveral(*serials, options, change, inputs);
    Order order;
    order.serialNumber = serials->front();
    order.acceptsImplausible = options.acceptsImplausible;
    order.change = change;
    return canBeConfirmed(options) ? carryOut(order, options, inputs) : Usage;
}
