#ifndef COMMAND_RUN_H
#define COMMAND_RUN_H

#include "command/Journal.h"
#include "command/Transaction.h"
#include "command/WriteLock.h"

#include <memory>
#include <vector>

/**
 * One `apply`, `restore` or `recover`: takes the lock, begins a run in the journal, and changes one
 * instrument after the other. A dry run takes no lock and changes no journal.
 */
class Run {
public:
    /** @param inputs  the user's files, for the journal */
    Run(bool isDryRun, const std::vector<JournalInput>& inputs);

    /** Why nothing may be written: every order is refused for this reason. Empty if all is well. */
    const Text& problem() const { return m_problem; }
    /** Null in a dry run, and if there is a problem. */
    Journal* journal() { return m_journal.get(); }

    /** Changes one instrument. */
    Verdict carryOut(const Order& order, TransactionObserver& observer);

    /** Finds what an order would change, as a dry run does; stores nothing in the journal. */
    Verdict lookAt(const Order& order, TransactionObserver& observer);

    /** Stores a verdict that was found without `carryOut` in the journal. */
    void keep(Verdict& verdict);

    /** Ends the run in the journal. Call once, at the end.
        @param least  an exit status that a worse outcome replaces
        @return the status of the worst outcome */
    ExitStatus end(ExitStatus least = Done);

private:
    void note(const Verdict& verdict);

    WriteLock m_lock;
    Text m_problem;
    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<JournalDatabase> m_read; ///< of a dry run
    ExitStatus m_status = Done;
};

#endif
