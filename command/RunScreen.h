#ifndef COMMAND_RUNSCREEN_H
#define COMMAND_RUNSCREEN_H

#include "command/Transaction.h"

#include <chrono>
#include <optional>
#include <vector>

/** A row of the table at the end. Nothing else is kept, as there may be many instruments. */
struct EndedOrder {
    std::int32_t serialNumber = 0;
    Outcome outcome = Outcome::NotReached;
    std::size_t changeCount = 0;
};

/** Shows a run over several instruments on standard error: a progress bar, a line for each
    instrument as it ends, and a table of all. */
class RunScreen : public TransactionObserver {
public:
    /** @param showsDifferences  shows each difference, field by field, when it is found */
    explicit RunScreen(bool showsDifferences) : m_showsDifferences(showsDifferences) {}
    /** Removes the progress bar. */
    ~RunScreen() override;
    RunScreen(const RunScreen&) = delete;
    RunScreen& operator=(const RunScreen&) = delete;

    /** Begins a pass over all instruments.
        @param isRepeated  an earlier pass has already shown the differences */
    void passBegins(std::size_t count, bool isRepeated);
    void instrumentBegins(std::int32_t serialNumber);
    void instrumentEnds();

    static void sayVerdict(const Verdict& verdict);
    static void recap(const std::vector<EndedOrder>& orders);

    /** The state read from the present instrument; nothing if it could not be read. */
    const std::optional<InstrumentState>& state() const { return m_state; }

    void stepBegins(const char* name) override;
    void foundState(const InstrumentState& held) override { m_state = held; }
    void foundImplausible(const CalibrationAccessory& accessory, const Implausible& value) override;
    void foundDifference(const FieldChanges& changes) override;
    /** The question was asked before, for all of them. */
    bool confirms() override { return true; }

private:
    void show() const;
    QString timeLeft() const;

    bool m_showsDifferences;
    bool m_isRepeated = false;
    std::size_t m_count = 0;
    std::size_t m_done = 0;
    std::int32_t m_serialNumber = 0;
    QString m_step;
    std::chrono::steady_clock::time_point m_begin;
    std::optional<InstrumentState> m_state;
};

#endif
