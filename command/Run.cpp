#include "command/Run.h"

#include "command/DataFolder.h"
#include "command/Interrupt.h"
#include "command/Report.h"

Run::Run(bool isDryRun, const std::vector<JournalInput>& inputs) {
    Interrupt::install();
    if (isDryRun) {
        m_read =
            JournalDatabase::open(DataFolder::journal(), JournalDatabase::Access::Read, m_problem);
        return;
    }
    m_problem = m_lock.take();
    if (m_problem.isEmpty())
        m_journal = Journal::open(DataFolder::journal(), m_problem);
    if (m_journal)
        m_problem = m_journal->beginRun(inputs);
    if (!m_problem.isEmpty())
        m_journal.reset();
}

Verdict Run::carryOut(const Order& order, TransactionObserver& observer) {
    Verdict verdict;
    if (!m_problem.isEmpty()) {
        verdict.serialNumber = order.serialNumber;
        verdict.reasons = {m_problem};
    } else if (m_journal) {
        JournalEntry entry(*m_journal, order.serialNumber);
        CallWatch watch(&entry);
        const UnfinishedMark mark(order.serialNumber, &m_journal->database());
        verdict = Transaction(order, mark, watch, observer, entry).run();
    } else {
        TransactionLog none;
        CallWatch watch;
        const UnfinishedMark mark(order.serialNumber, m_read.get());
        verdict = Transaction(order, mark, watch, observer, none).run();
    }
    m_status = graver(m_status, exitStatus(verdict.outcome));
    return verdict;
}

ExitStatus Run::end(ExitStatus least) {
    m_status = graver(m_status, least);
    const Text problem = m_journal ? m_journal->endRun(m_status) : Text();
    if (!problem.isEmpty())
        sayToUser(problem);
    return m_status;
}
