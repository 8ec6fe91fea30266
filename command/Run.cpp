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
    if (!m_problem.isEmpty() || !m_journal) {
        Verdict verdict = lookAt(order, observer);
        note(verdict);
        return verdict;
    }
    JournalEntry entry(*m_journal, order.serialNumber);
    CallWatch watch(&entry);
    const UnfinishedMark mark(order.serialNumber, &m_journal->database());
    Verdict verdict = Transaction(order, mark, watch, observer, entry).run();
    note(verdict);
    return verdict;
}

Verdict Run::lookAt(const Order& order, TransactionObserver& observer) {
    if (!m_problem.isEmpty()) {
        Verdict verdict;
        verdict.serialNumber = order.serialNumber;
        verdict.reasons.push_back(m_problem);
        return verdict;
    }
    Order dry = order;
    dry.isDryRun = true;
    TransactionLog none;
    CallWatch watch;
    const UnfinishedMark mark(order.serialNumber,
                              m_journal ? &m_journal->database() : m_read.get());
    return Transaction(dry, mark, watch, observer, none).run();
}

void Run::keep(Verdict& verdict) {
    Text problem;
    if (m_journal)
        problem = JournalEntry(*m_journal, verdict.serialNumber).ends(verdict, false);
    if (!problem.isEmpty())
        verdict.reasons.push_back(problem);
    note(verdict);
}

void Run::note(const Verdict& verdict) {
    m_status = graver(m_status, exitStatus(verdict.outcome));
}

ExitStatus Run::end(ExitStatus least) {
    m_status = graver(m_status, least);
    Text problem;
    if (m_journal)
        problem = m_journal->endRun(m_status);
    if (!problem.isEmpty())
        sayToUser(problem);
    return m_status;
}
