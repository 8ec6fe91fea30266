#ifndef COMMAND_RUNSCREEN_H
#define COMMAND_RUNSCREEN_H

#include "command/Transaction.h"

#include <chrono>
#include <optional>
#include <vector>

/** What the table at the end has of an instrument: no more, as there may be many. */
struct EndedOrder {
    std::int32_t serialNumber = 0;
    Outcome outcome = Outcome::NotReached;
    std::size_t changeCount = 0;
};

/** A run over several instruments as people see it, on standard error: what is shown and done at
    present, a line for each instrument as it ends, and a table of all. */
class RunScreen : public TransactionObserver {
public:
    /** @param showsDifferences  field by field, as each is found */
    explicit RunScreen(bool showsDifferences) : m_showsDifferences(showsDifferences) {}
    /** Takes the progress bar away. */
    ~RunScreen() override;
    RunScreen(const RunScreen&) = delete;
    RunScreen& operator=(const RunScreen&) = delete;

    /** Begins to go through all instruments, from the first.
        @param isRepeated  an earlier pass has shown what this one finds again */
    void passBegins(std::size_t count, bool isRepeated);
    void instrumentBegins(std::int32_t serialNumber);
    void instrumentEnds();

    static void sayVerdict(const Verdict& verdict);
    static void recap(const std::vector<EndedOrder>& orders);

    /** What the present instrument was found to hold; nothing where it could not be read. */
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
