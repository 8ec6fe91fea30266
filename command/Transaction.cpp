#include "command/Transaction.h"

#include "command/AccessoryTexts.h"
#include "command/DataFolder.h"
#include "command/Interrupt.h"
#include "command/Snapshot.h"

#include <QStringList>

#include <cstring>
#include <utility>

Transaction::Transaction(const Order& order, const UnfinishedMark& mark, CallWatch& watch,
                         TransactionObserver& observer, TransactionLog& log)
    : m_order(order), m_watch(watch), m_observer(observer), m_log(log), m_mark(mark),
      m_wasUnfinished(mark.exists()) {
    m_verdict.serialNumber = order.serialNumber;
}

Verdict Transaction::run() {
    Text problem = make({{"refuse-unfinished", &Transaction::refuseUnfinished},
                         {"connect", &Transaction::connect},
                         {"read-everything-twice", &Transaction::readEverythingTwice},
                         {"refuse-unfit", &Transaction::refuseUnfit},
                         {"judge-plausibility", &Transaction::judgePlausibility},
                         {"find-difference", &Transaction::findDifference}},
                        Until::Interrupted);
    if (!problem.isEmpty())
        return endSaying(Outcome::Refused, problem);
    if (!m_parts.any())
        return end(Outcome::Unchanged);
    if (m_order.isDryRun)
        return end(Outcome::WouldChange);

    problem = make({{"ask", &Transaction::ask},
                    {"keep-snapshot", &Transaction::keepSnapshot},
                    {"fetch-once-more", &Transaction::fetchOnceMore},
                    {"mark-unfinished", &Transaction::markUnfinished}},
                   Until::Interrupted);
    if (problem.isEmpty()) {
        m_target = &m_wanted;
        problem = make({{"write-calibration", &Transaction::writeCalibration, &Parts::calibration},
                        {"write-power-off", &Transaction::writePowerOff, &Parts::powerOff},
                        {"write-network", &Transaction::writeNetwork, &Parts::network}},
                       Until::Interrupted);
    }
    if (!problem.isEmpty() && !m_mayBeWritten.any())
        return endSaying(Outcome::Refused, problem);

    Interrupt::setPhase(Interrupt::Phase::TakingBack);
    if (problem.isEmpty())
        problem = make({{"verify", &Transaction::verifyWanted}}, Until::Done);
    if (!problem.isEmpty())
        return takeBack(problem);
    if (!m_networkWaits)
        return end(m_order.takesBack ? Outcome::RolledBack : Outcome::Verified);
    return endSaying(Outcome::Waits,
                     Text(QT_TRANSLATE_NOOP(
                         "vq-tl4ctl", "The network settings are stored, and the instrument still "
                                      "answers the old ones, as it may until it has been switched "
                                      "off and on.")));
}

Verdict Transaction::takeBack(const Text& failure) {
    if (m_wasUnfinished)
        return endSaying(Outcome::Unknown, failure, nextStep());
    if (!m_order.rollsBack)
        return endSaying(
            Outcome::Unknown, failure,
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "It was left as it is, as was asked.")),
            nextStep());
    m_target = &m_held;
    m_parts = m_mayBeWritten;
    Text problem = make({{"reconnect", &Transaction::reconnect},
                         {"put-back-calibration", &Transaction::writeCalibration},
                         {"put-back-power-off", &Transaction::writePowerOff},
                         {"put-back-network", &Transaction::writeNetwork},
                         {"verify-put-back", &Transaction::verifyHeld}},
                        Until::Done);
    if (problem.isEmpty())
        return endSaying(Outcome::RolledBack, failure);
    return endSaying(Outcome::Unknown, failure,
                     Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The old state could not be put back.")),
                     problem, nextStep());
}

Verdict Transaction::end(Outcome outcome) {
    // A connection lost from here on does not change the outcome.
    m_log.stepBegins("end");
    m_access.reset();
    const bool hasEnded = outcome == Outcome::Verified || outcome == Outcome::Waits ||
                          (outcome == Outcome::RolledBack && m_order.takesBack);
    const bool isSettled = outcome != Outcome::Unknown && (m_wasUnfinished ? hasEnded : m_isMarked);
    m_verdict.outcome = outcome;
    m_verdict.warnings = m_watch.warnings();
    const Text unkept = m_log.ends(m_verdict, isSettled);
    if (!unkept.isEmpty())
        m_verdict.reasons.push_back(unkept);
    // If the log lacks a row, the outcome is not settled, whatever the instrument holds.
    if (!unkept.isEmpty() && m_mayBeWritten.any()) {
        m_verdict.outcome = Outcome::Unknown;
        m_verdict.reasons.push_back(nextStep());
    }
    Text unremoved;
    if (unkept.isEmpty() && isSettled)
        unremoved = m_mark.removeFile();
    if (!unremoved.isEmpty())
        m_verdict.reasons.push_back(unremoved);
    return m_verdict;
}

Text Transaction::nextStep() const {
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "To end it, run %1. To put the state before back in "
                                               "any case, run: %2"),
                {m_mark.recoverCommand(), m_mark.restoreCommand(m_verdict.snapshot)});
}

/** Runs the steps until one fails. Before each it checks whether the connection was lost, and, if
    allowed, whether there was an interrupt. */
Text Transaction::make(std::initializer_list<Step> steps, Until until) {
    for (const Step& step : steps) {
        if (until == Until::Interrupted && Interrupt::isRequested())
            return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "It was interrupted."));
        // Only "reconnect" can run after the connection was lost.
        if (step.make != &Transaction::reconnect && m_access &&
            InstrumentAccess::isConnectionLost())
            return Text(
                QT_TRANSLATE_NOOP("vq-tl4ctl", "The connection to the instrument was lost."));
        m_log.stepBegins(step.name);
        if (step.part == nullptr || m_parts.*step.part)
            m_observer.stepBegins(step.name);
        Text problem = (this->*step.make)();
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

Text Transaction::refuseUnfinished() {
    if (!m_mark.problem().isEmpty())
        return m_mark.problem();
    if (!m_wasUnfinished || m_order.restoresAll)
        return {};
    return m_mark.told();
}

Text Transaction::connect() {
    m_access.emplace(m_watch);
    if (m_access->registration().failed())
        return callFailure(m_access->registration());
    return openInstrument(*m_access, m_order.serialNumber);
}

Text Transaction::readEverythingTwice() {
    Text problem = readTwice(*m_access, m_order.serialNumber, m_held);
    if (problem.isEmpty())
        m_observer.foundState(m_held);
    return problem;
}

Text Transaction::refuseUnfit() {
    if (isBlank(m_held.calibration))
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "All bytes of the instrument's calibration record are 0x00 "
                                      "or 0xFF: that is no record."));
    m_wanted = m_order.change.appliedTo(m_held);
    if (isBlank(m_wanted.calibration))
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "All bytes of the calibration record to be written are 0x00 "
                                      "or 0xFF: that is no record."));
    Text problem = refuseNetwork();
    if (problem.isEmpty())
        problem = refuseLowBattery();
    return problem;
}

Text Transaction::refuseNetwork() const {
    const bool wantsNetwork =
        m_order.change.networkFields.any() || !isSame(m_held.network, m_wanted.network);
    if (wantsNetwork && m_held.wirelessModule == 0)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "The instrument has no wireless module and takes no network "
                                      "settings."));
    // A complete set of settings is written as given. Single settings are merged with the
    // instrument's, so the resulting addresses are checked.
    if (!m_order.change.networkFields.any() || !m_held.network)
        return {};
    return changedAddressFault(*m_held.network, *m_wanted.network);
}

Text Transaction::refuseLowBattery() const {
    const bool isLow = (m_watch.warnings() & KVA_WARNING_BATTERY_EMPTY) != 0;
    if (!isLow || m_order.allowsLowBattery)
        return {};
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                  "The instrument's battery is empty (KVA_WARNING_BATTERY_EMPTY). "
                                  "Charge it, or allow it with --allow-low-battery."));
}

Text Transaction::judgePlausibility() {
    QStringList fields;
    for (const ValueFile& file : m_order.change.accessories) {
        if (m_order.isRestore)
            break;
        const CalibrationAccessory& accessory = *file.accessory;
        const float* held = accessory.values(m_held.calibration);
        const std::size_t size = accessory.valueCount * sizeof(float);
        // Values that the instrument already holds change nothing.
        if (std::memcmp(held, file.values.data(), size) == 0)
            continue;
        for (const Implausible& value : findImplausible(accessory, file.values.data(), held)) {
            m_observer.foundImplausible(accessory, value);
            fields.append(QStringLiteral("%1.values[%2]")
                              .arg(QLatin1String(AccessoryTexts::of(accessory).field))
                              .arg(value.index));
        }
    }
    if (fields.isEmpty())
        return {};
    const QString list = fields.join(QStringLiteral(", "));
    if (!m_order.acceptsImplausible)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "Implausible values: %1. If they are right, accept them "
                                      "with --accept-implausible."),
                    {list});
    m_verdict.reasons.push_back(
        Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Implausible values were accepted: %1."), {list}));
    return {};
}

Text Transaction::findDifference() {
    const auto& confirmed = m_order.confirmed;
    if (confirmed &&
        (!isSameIdentity(m_held, *confirmed) || differingParts(m_held, *confirmed).any()))
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The instrument has changed since its "
                                                   "difference was shown and confirmed."));
    m_verdict.changes = difference(m_held, m_wanted);
    m_parts = differingParts(m_held, m_wanted);
    // After an unfinished write, a part that reads equal may be only staged or pending.
    if (m_wasUnfinished)
        m_parts = {true, true, m_wanted.network.has_value()};
    if (m_parts.any())
        m_observer.foundDifference(m_verdict.changes);
    return {};
}

Text Transaction::ask() {
    if (m_observer.confirms())
        return {};
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The change was not confirmed."));
}

Text Transaction::keepSnapshot() {
    QString path;
    m_snapshot = Snapshot::of(m_held);
    Text problem = m_snapshot->writeTo(DataFolder::snapshots(), path);
    if (problem.isEmpty())
        m_verdict.snapshot = path;
    return problem;
}

Text Transaction::fetchOnceMore() {
    if (!m_parts.calibration)
        return {};
    Text problem = requireCalibration(*m_access, m_held.calibration);
    if (problem.isEmpty())
        problem = refuseLowBattery();
    return problem;
}

Text Transaction::markUnfinished() {
    Text problem =
        m_log.writingBegins(*m_snapshot, m_verdict.snapshot, m_wanted, m_verdict.changes);
    m_isMarked = problem.isEmpty();
    return problem;
}
