// The steps that write to the instrument, and those that verify the result.

#include "command/Interrupt.h"
#include "command/Transaction.h"

namespace {

/** Defers interrupts from the stage to the commit. */
class CommitPhase {
public:
    explicit CommitPhase(Interrupt::Phase after) : m_after(after) {
        Interrupt::setPhase(Interrupt::Phase::Committing);
    }
    ~CommitPhase() { Interrupt::setPhase(m_after); }
    CommitPhase(const CommitPhase&) = delete;
    CommitPhase& operator=(const CommitPhase&) = delete;

private:
    Interrupt::Phase m_after;
};

} // namespace

/** Makes a call that writes, once the log has stored it. A rollback makes it in any case: otherwise
    the instrument would stay half written.
    @param part  of `m_mayBeWritten` */
template <typename Call>
CallResult Transaction::write(const char* function, bool& part, const Call& call) {
    m_logProblem = m_log.writeBegins(function);
    if (m_target == &m_held)
        m_logProblem = {};
    if (!m_logProblem.isEmpty())
        return {function, KVA_ERROR};
    part = true;
    return call();
}

Text Transaction::problemOf(const CallResult& result) const {
    if (!m_logProblem.isEmpty())
        return m_logProblem;
    return result.failed() ? callFailure(result) : Text();
}

Text Transaction::writeCalibration() {
    if (!m_parts.calibration)
        return {};
    const bool isWayBack = m_target == &m_held;
    const CommitPhase phase(isWayBack ? Interrupt::Phase::TakingBack
                                      : Interrupt::Phase::BetweenSteps);
    Text problem = problemOf(write("KVA_JIG_SetFactoryCalib_CALREFDATA", m_mayBeWritten.calibration,
                                   [this] { return m_access->stage(m_target->calibration); }));
    if (problem.isEmpty())
        problem = requireCalibration(*m_access, m_target->calibration);
    return problem.isEmpty() ? commitProvably() : problem;
}

/**
 * After a commit that did nothing, the library may still return the staged record, so reading it
 * back equal proves nothing. The proof is another commit that answers that nothing is staged. Each
 * commit writes the record staged last, so an extra one does no harm.
 */
Text Transaction::commitProvably() {
    const auto commit = [this] {
        return write("KVA_JIG_SetFactoryCalib_WriteSector", m_mayBeWritten.calibration,
                     [this] { return m_access->commit(); });
    };
    Text problem = problemOf(commit());
    if (!problem.isEmpty())
        return problem;
    constexpr int furtherCommits = 3;
    for (int i = 0; i < furtherCommits; ++i) {
        if (commit().code == KVA_ERROR_NO_DATA)
            return {};
        if (!m_logProblem.isEmpty())
            return m_logProblem;
    }
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                  "The library reports a commit, and does not confirm that "
                                  "nothing is staged any more: the record may not be in the "
                                  "instrument's memory."));
}

Text Transaction::writePowerOff() {
    if (!m_parts.powerOff)
        return {};
    return problemOf(write("KVA_SetShutdownTime", m_mayBeWritten.powerOff,
                           [this] { return m_access->writePowerOffMode(m_target->powerOffMode); }));
}

Text Transaction::writeNetwork() {
    if (!m_parts.network)
        return {};
    return problemOf(write("KVA_SetNetworkInfo", m_mayBeWritten.network,
                           [this] { return m_access->write(*m_target->network); }));
}

Text Transaction::readBackIndependently() {
    const CallResult closed = m_access->disconnect();
    if (closed.failed())
        return callFailure(closed);
    Text problem = openInstrument(*m_access, m_order.serialNumber);
    return problem.isEmpty() ? readTwice(*m_access, m_order.serialNumber, m_readBack) : problem;
}

/** Connects again, whether the connection was lost or not. */
Text Transaction::reconnect() {
    m_access->disconnect();
    return openInstrument(*m_access, m_order.serialNumber);
}

Text Transaction::verifyWanted() {
    Text problem = readBackIndependently();
    if (!problem.isEmpty())
        return problem;
    InstrumentState expected = m_wanted;
    // Settings take effect with a power cycle, and an instrument may return the old ones until
    // then. After an unfinished write it is not known which settings are the old ones.
    m_networkWaits = m_mayBeWritten.network && !isSame(m_readBack.network, m_wanted.network) &&
                     isSame(m_readBack.network, m_held.network);
    if (m_networkWaits)
        expected.network = m_held.network;
    return compare(expected);
}

Text Transaction::verifyHeld() {
    Text problem = readBackIndependently();
    return problem.isEmpty() ? compare(m_held) : problem;
}

Text Transaction::compare(const InstrumentState& expected) const {
    if (!isSameIdentity(m_readBack, expected) ||
        m_readBack.wirelessModule != expected.wirelessModule)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "The instrument that was read back is not the one that was "
                                      "written."));
    QStringList fields;
    for (const FieldChange& change : difference(expected, m_readBack))
        fields.append(change.field);
    if (differingParts(expected, m_readBack).any())
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "What was read back differs: %1."),
                    {fields.join(QStringLiteral(", "))});
    return {};
}
