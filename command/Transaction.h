#ifndef COMMAND_TRANSACTION_H
#define COMMAND_TRANSACTION_H

#include "command/CallWatch.h"
#include "command/Change.h"
#include "command/Plausibility.h"
#include "command/Snapshot.h"
#include "command/TransactionLog.h"
#include "command/UnfinishedMark.h"
#include "command/Verdict.h"

#include <initializer_list>
#include <optional>
#include <vector>

/** An order to change one instrument. Its input has been checked. */
struct Order {
    std::int32_t serialNumber = 0;
    Change change;
    bool isRestore = false; ///< an instrument held these values before: plausibility is not checked
    /** Whether a whole snapshot is restored: only that ends an unfinished write. */
    bool restoresAll = false;
    /** Whether that snapshot is the state before a run that did not end. */
    bool takesBack = false;
    bool isDryRun = false;
    bool rollsBack = true; ///< false: nothing is rolled back after a failure
    bool acceptsImplausible = false;
    bool allowsLowBattery = false;
    /** The instrument's state when the user confirmed its difference. */
    std::optional<InstrumentState> confirmed = {};
};

/** Notified of the steps, and asked for confirmation. */
class TransactionObserver {
public:
    virtual ~TransactionObserver() = default;
    virtual void stepBegins(const char* /*name*/) {}
    virtual void foundState(const InstrumentState& /*held*/) {}
    virtual void foundImplausible(const CalibrationAccessory& accessory,
                                  const Implausible& value) = 0;
    virtual void foundDifference(const FieldChanges& changes) = 0;
    /** Whether the difference may be written. */
    virtual bool confirms() = 0;
};

/**
 * Changes one instrument or leaves it unchanged, and reports which.
 *
 * Each step is a function that returns an empty text on success, and the reason of the failure
 * otherwise. The steps run one after the other until one fails. Before the first call that writes,
 * the order is then refused; after it, the changes are rolled back.
 */
class Transaction {
public:
    /** All arguments must outlive the object. The lock is held, except in a dry run. */
    Transaction(const Order& order, const UnfinishedMark& mark, CallWatch& watch,
                TransactionObserver& observer, TransactionLog& log);

    /** Call once. Runs all steps; the instrument is disconnected afterwards. */
    Verdict run();

private:
    struct Step {
        const char* name;
        Text (Transaction::*make)();
        bool Parts::*part = nullptr; ///< unless this part is to be written, it does nothing
    };
    enum class Until { Interrupted, Done };
    Text make(std::initializer_list<Step> steps, Until until);

    // Nothing is written.
    Text refuseUnfinished();
    Text connect();
    Text readEverythingTwice();
    Text refuseUnfit();
    Text refuseNetwork() const;
    Text judgePlausibility();
    Text findDifference();
    Text ask();
    Text keepSnapshot();
    Text fetchOnceMore();
    Text markUnfinished();

    // Writes `m_target`.
    template <typename Call>
    CallResult write(const char* function, bool& part, const Call& call);
    Text problemOf(const CallResult& result) const;
    Text writeCalibration();
    Text commitProvably();
    Text writePowerOff();
    Text writeNetwork();

    Text verifyWanted();
    Text reconnect();
    Text verifyHeld();
    Text readBackIndependently();
    Text compare(const InstrumentState& expected) const;

    Text refuseLowBattery() const;
    Verdict takeBack(const Text& failure);
    Verdict end(Outcome outcome);
    template <typename... Reasons>
    Verdict endSaying(Outcome outcome, const Reasons&... reasons) {
        (m_verdict.reasons.push_back(reasons), ...);
        return end(outcome);
    }
    Text nextStep() const;

    const Order& m_order;
    CallWatch& m_watch;
    TransactionObserver& m_observer;
    TransactionLog& m_log;
    Text m_logProblem; ///< why the log could not store the last call that writes
    std::optional<InstrumentAccess> m_access;
    const UnfinishedMark& m_mark;

    const bool m_wasUnfinished; ///< an earlier write of this instrument has no verdict
    bool m_isMarked = false;    ///< by this transaction
    std::optional<Snapshot> m_snapshot;
    InstrumentState m_held; ///< the instrument's state before
    InstrumentState m_wanted;
    InstrumentState m_readBack;
    const InstrumentState* m_target = nullptr;
    Parts m_parts;        ///< to be written
    Parts m_mayBeWritten; ///< parts for which a call that writes was made
    bool m_networkWaits = false;
    Verdict m_verdict;
};

#endif
