#include "command/Console.h"
#include "command/DataFolder.h"
#include "command/Report.h"
#include "command/Run.h"
#include "command/VerbSupport.h"

#include <QDir>

#include <algorithm>

namespace {

/** The two states that a recovery can settle on: the old and the wanted one. */
struct Ends {
    std::optional<Snapshot> wanted;
    std::optional<Snapshot> old;
};

std::optional<Snapshot> snapshotFrom(const InputFile& file, Faults& faults) {
    if (file.content.isEmpty())
        return std::nullopt;
    return Snapshot::check(file, faults);
}

/** From the journal, or from a mark file's snapshot if the journal has nothing. */
Ends endsOf(std::int32_t serialNumber, const std::vector<JournalInstrument>& parts,
            Faults& faults) {
    Ends ends;
    if (!parts.empty()) {
        // The later parts began from an unknown state.
        const QString journal = DataFolder::journal();
        ends.wanted = snapshotFrom({journal, parts.back().wanted}, faults);
        ends.old = snapshotFrom({journal, parts.front().before}, faults);
        return ends;
    }
    const UnfinishedMark mark(serialNumber);
    const auto file = InputFile::read(mark.snapshot(), faults);
    if (file)
        ends.old = Snapshot::check(*file, faults);
    return ends;
}

bool isHeld(const InstrumentState& held, const std::optional<Snapshot>& snapshot) {
    return snapshot && isSameIdentity(held, snapshot->state) &&
           !differingParts(held, snapshot->state).any();
}

/** Reports what the instrument holds, and makes the order that ends the unfinished write. */
Order orderFor(std::int32_t serialNumber, const Ends& ends, const InstrumentState& held) {
    Order order;
    // An earlier recovery that did not end may have wanted the old state.
    const bool isOld = isHeld(held, ends.old);
    order.takesBack = isOld || !isHeld(held, ends.wanted);
    const char* found = QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 answers neither what was wanted nor the "
                                                       "old state. The old state is put back.");
    if (!order.takesBack)
        found = QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 answers what was wanted. It is written once "
                                               "more, so that it is in its memory.");
    else if (isOld)
        found = QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 answers the old state. It is written once "
                                               "more, so that it is in its memory.");
    sayToUser(Text(found, {serialText(serialNumber)}));
    const InstrumentState& state = order.takesBack ? ends.old->state : ends.wanted->state;
    order.serialNumber = serialNumber;
    order.restoresAll = true;
    order.change.network = state.network;
    order.change.powerOffMode = state.powerOffMode;
    order.change.calibration = state.calibration;
    return order;
}

Verdict refused(std::int32_t serialNumber, const Text& reason) {
    Verdict verdict;
    verdict.serialNumber = serialNumber;
    verdict.reasons.push_back(reason);
    return verdict;
}

Verdict unwritten(std::int32_t serialNumber) {
    Verdict verdict =
        refused(serialNumber, Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The earlier run ended before "
                                                                  "anything was written.")));
    verdict.outcome = Outcome::Unchanged;
    return verdict;
}

Verdict recoverOne(Run& run, std::int32_t serialNumber, const RecoverOptions& options) {
    JournalReader reader(run.journal()->database());
    std::vector<JournalInstrument> parts;
    const Text unread = reader.unfinished(serialNumber, parts);
    if (!unread.isEmpty())
        return refused(serialNumber, unread);
    if (parts.empty() && !QFileInfo::exists(DataFolder::unfinishedMark(serialNumber)))
        return unwritten(serialNumber);
    Faults faults;
    const Ends ends = endsOf(serialNumber, parts, faults);
    if (!ends.old) {
        sayToUser(faults);
        return refused(serialNumber,
                       Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                              "The snapshot of the state before cannot be used.")));
    }
    CallWatch watch;
    InstrumentState held;
    const Text problem = readInstrument(watch, serialNumber, held);
    if (!problem.isEmpty())
        return refused(serialNumber, problem);
    Order order = orderFor(serialNumber, ends, held);
    order.allowsLowBattery = options.allowsLowBattery;
    Console console(serialNumber, options.isSure);
    return run.carryOut(order, console);
}

/** The instruments of runs that did not end, and those with a mark file. */
Text findInstruments(JournalReader& reader, std::vector<std::int32_t>& serials) {
    Text problem = reader.withoutVerdict(serials);
    const QDir folder(DataFolder::unfinishedMarks());
    for (const QString& name :
         folder.entryList(QStringList(QStringLiteral("*.json")), QDir::Files)) {
        const auto serial = parseSerial(name.chopped(5));
        if (serial && std::find(serials.begin(), serials.end(), *serial) == serials.end())
            serials.push_back(*serial);
    }
    return problem;
}

Text nothingToRecover() {
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Every run has ended: there is nothing to "
                                               "recover."));
}

/** Without a terminal: an error only if there is something to ask. */
ExitStatus endUnasked() {
    Text problem;
    const auto journal = Journal::open(DataFolder::journal(), problem);
    std::vector<std::int32_t> serials;
    if (journal) {
        JournalReader reader(journal->database());
        problem = findInstruments(reader, serials);
    }
    if (!problem.isEmpty()) {
        sayToUser(problem);
        return RefusedStatus;
    }
    if (serials.empty()) {
        sayToUser(nothingToRecover());
        return Done;
    }
    sayToUser(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Without a terminal nobody can be asked: confirm "
                                                  "the recovery with --yes.")));
    return Usage;
}

} // namespace

ExitStatus recover(const RecoverOptions& options) {
    if (!options.isSure && !Console::hasTerminal())
        return endUnasked();
    Run run(false, {});
    Text problem = run.problem();
    std::vector<std::int32_t> serials;
    if (problem.isEmpty()) {
        JournalReader reader(run.journal()->database());
        problem = findInstruments(reader, serials);
    }
    if (problem.isEmpty() && serials.empty())
        sayToUser(nothingToRecover());
    ExitStatus status = problem.isEmpty() ? Done : RefusedStatus;
    for (const std::int32_t serial : serials) {
        const Verdict verdict = recoverOne(run, serial, options);
        report(verdict, options.asJson);
        status = graver(status, exitStatus(verdict.outcome));
    }
    if (problem.isEmpty())
        problem = run.journal()->closeEarlierRuns();
    if (!problem.isEmpty())
        sayToUser(problem);
    return run.end(status);
}
