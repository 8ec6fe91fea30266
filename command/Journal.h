#ifndef COMMAND_JOURNAL_H
#define COMMAND_JOURNAL_H

#include "command/JournalDatabase.h"
#include "command/JournalReader.h"
#include "command/TransactionLog.h"
#include "instrument/InstrumentAccess.h"

#include <chrono>
#include <memory>
#include <vector>

/**
 * Writes a journal: SQLite with a write-ahead log, for its owner alone. What is written before a
 * call that writes to an instrument, and what a verdict rests on, is on the disk before it goes on;
 * what only reads is handed to the system at once and reaches the disk with the next of those. So
 * the end of the program loses nothing, and the end of the power nothing that matters.
 *
 * Each function is empty when it has done its work, and says what went wrong otherwise.
 */
class Journal {
public:
    /** Opens the journal, or makes it. @return nothing, and why in @p problem, where it cannot be
        used */
    static std::unique_ptr<Journal> open(const QString& path, Text& problem);

    JournalDatabase& database() { return *m_database; }

    /** Begins a run of this program. */
    Text beginRun(const std::vector<JournalInput>& inputs);
    Text endRun(int exitStatus);
    /** Gives every earlier run its end, and what was not written to the outcome `unchanged`. Only
        while the lock is held: no other run is alive then. */
    Text closeEarlierRuns();
    Text addVerification(qint64 instrument, const QString& word);

    /** The present run; 0 before it began. */
    qint64 run() const { return m_run; }

private:
    explicit Journal(std::unique_ptr<JournalDatabase> database) : m_database(std::move(database)) {}

    std::unique_ptr<JournalDatabase> m_database;
    qint64 m_run = 0;
};

/** An instrument's part of the present run. Where a row cannot be kept, the next write is not
    allowed. */
class JournalEntry : public TransactionLog, public CallObserver {
public:
    /** @param journal  outlives the object; its run has begun */
    JournalEntry(Journal& journal, std::int32_t serialNumber);

    void stepBegins(const char* name) override;
    Text writingBegins(const Snapshot& before, const QString& path, const InstrumentState& wanted,
                       const FieldChanges& changes) override;
    Text writeBegins(const char* function) override;
    Text ends(const Verdict& verdict, bool isSettled) override;

    void callBegins(const char* function) override;
    void callEnded(const CallResult& result) override;

private:
    void note(const Text& problem);
    Text addCall(const char* function, JournalDatabase::Sync sync);
    Text addChanges(const FieldChanges& changes);

    JournalDatabase& m_database;
    std::int32_t m_serialNumber;
    qint64 m_id = 0;
    qint64 m_step = 0;
    qint64 m_call = 0;        ///< that has no result yet; 0 where there is none
    bool m_isWaiting = false; ///< `m_call` was added by `writeBegins`, and not made yet
    bool m_hasChanges = false;
    std::chrono::steady_clock::time_point m_begin;
    Text m_problem; ///< of the first row that could not be kept
};

/** What the journal keeps of a file: with the security key of a settings file masked. */
JournalInput journalInput(const QString& role, const struct InputFile& file);

#endif
