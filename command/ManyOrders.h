#ifndef COMMAND_MANYORDERS_H
#define COMMAND_MANYORDERS_H

#include "command/Run.h"
#include "command/RunScreen.h"
#include "command/Verbs.h"

#include <map>
#include <vector>

/**
 * Orders for several instruments, carried out one after the other in one run.
 *
 * If a person is to be asked, all instruments are read and all differences shown first, then one
 * question is asked for all. An instrument whose state changes after that is refused. The first
 * outcome that is not `unchanged`, `verified` or `waits` stops the run, unless `--keep-going` was
 * given; the remaining instruments are `not-reached`. A dry run reads all of them.
 */
class ManyOrders {
public:
    /** @param orders  at least one, prepared; they must outlive the object */
    ManyOrders(std::vector<Order>& orders, const ApplyOptions& options,
               const std::vector<JournalInput>& inputs);

    /** Call once. */
    ExitStatus carryOut();

private:
    /** @param wasShown  the differences were shown and confirmed */
    void carryOutEach(bool wasShown);
    /** Whether the orders may be carried out. Otherwise all have their verdicts. */
    bool isConfirmed();
    void keepAll(std::vector<Verdict>& found);
    bool stops(Outcome outcome) const;
    void report(const Verdict& verdict);
    void reportNotReached(std::int32_t serialNumber);

    std::vector<Order>& m_orders;
    const ApplyOptions& m_options;
    Run m_run;
    CallWatch m_signals; ///< watches no call: its thread receives signals between two instruments
    RunScreen m_screen;
    std::map<std::int32_t, Verdict> m_refused; ///< before the question: they are not tried again
    std::vector<EndedOrder> m_ended;
};

#endif
