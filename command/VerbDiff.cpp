#include "command/Report.h"
#include "command/SettingsFile.h"
#include "command/Snapshot.h"
#include "command/VerbSupport.h"

#include <QJsonArray>

namespace {

/** One of the two sides that are compared. */
struct Side {
    std::optional<std::int32_t> serialNumber; ///< of an instrument, which is read later
    InstrumentState state;
    bool isSettings = false; ///< only network settings
    bool hasKey = true;
};

/** Nothing, with the reasons in @p faults, if the file cannot be compared. */
std::optional<Side> readSide(const QString& name, Faults& faults) {
    Side side;
    side.serialNumber = parseSerial(name);
    if (side.serialNumber)
        return side;
    const auto file = InputFile::read(name, faults);
    if (!file)
        return std::nullopt;
    switch (kindOf(*file)) {
    case FileKind::Settings: {
        const auto settings = SettingsFile::check(*file, faults);
        if (!settings)
            return std::nullopt;
        side.isSettings = true;
        side.state.network = normalized(*settings);
        return side;
    }
    case FileKind::Snapshot: {
        const auto snapshot = Snapshot::check(*file, faults);
        if (!snapshot)
            return std::nullopt;
        side.state = snapshot->state;
        side.hasKey = snapshot->hasKey;
        return side;
    }
    case FileKind::Plan:
    case FileKind::Values:
        break;
    }
    faults.push_back(
        {name, 0, 0,
         Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Only an instrument, a snapshot and network settings "
                                             "can be compared."))});
    return std::nullopt;
}

Text readInstrumentOf(Side& side, CallWatch& watch) {
    if (!side.serialNumber)
        return {};
    return readInstrument(watch, *side.serialNumber, side.state);
}

Text compare(const Side& left, const Side& right, FieldChanges& changes) {
    const bool withKey = left.hasKey && right.hasKey;
    const bool networkAlone = left.isSettings || right.isSettings;
    if (networkAlone && (!left.state.network || !right.state.network))
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "There are no network settings to compare with: the "
                                      "instrument has no wireless module."));
    if (networkAlone)
        addDifference(left.state.network, right.state.network, withKey, changes);
    else
        changes = difference(left.state, right.state, withKey);
    return {};
}

} // namespace

ExitStatus diff(const DiffOptions& options) {
    Faults faults;
    auto left = readSide(options.left, faults);
    auto right = readSide(options.right, faults);
    if (!left || !right) {
        sayToUser(faults);
        return Usage;
    }
    CallWatch watch;
    FieldChanges changes;
    Text problem = readInstrumentOf(*left, watch);
    if (problem.isEmpty())
        problem = readInstrumentOf(*right, watch);
    if (problem.isEmpty())
        problem = compare(*left, *right, changes);
    if (!problem.isEmpty()) {
        sayToUser(problem);
        return RefusedStatus;
    }
    QJsonArray array;
    for (const FieldChange& change : changes) {
        if (options.asJson)
            array.append(toJson(change));
        else
            print(changeLine(change));
    }
    QJsonObject object;
    object[QStringLiteral("changes")] = array;
    if (options.asJson)
        print(object);
    return changes.empty() ? Done : DifferentStatus;
}
