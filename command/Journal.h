#ifndef COMMAND_JOURNAL_H
#define COMMAND_JOURNAL_H

#include "command/JournalDatabase.h"
#include "command/JournalReader.h"
#include "command/TransactionLog.h"
#include "instrument/InstrumentAccess.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

/**
 * Writes a journal: SQLite with a write-ahead log, readable only by its owner. Rows before a call
 * that writes to an instrument, and rows that a verdict depends on, are synced to the disk at once.
 * Rows about reading are handed to the system at once and reach the disk with the next sync. So a
 * killed program loses nothing, and a power failure nothing that matters.
 *
 * Each function returns an empty text on success, and the reason of the failure otherwise.
 */
class Journal {
public:
    /** Opens or creates the journal. @return null, and the reason in @p problem, if it cannot be
        used */
    static std::unique_ptr<Journal> open(const QString& path, Text& problem);

    JournalDatabase& database() { return *m_database; }

    /** Begins a run of this program. */
    Text beginRun(const std::vector<JournalInput>& inputs);
    Text endRun(int exitStatus);
    /** Ends every earlier run that has no end; those of its instruments that were not written get
        the outcome `unchanged`. Only while the lock is held: no other run is active then. */
    Text closeEarlierRuns();
    Text addVerification(qint64 instrument, const QString& word);

    /** The present run; 0 before it began. */
    qint64 run() const { return m_run; }

private:
    explicit Journal(std::unique_ptr<JournalDatabase> database) : m_database(std::move(database)) {}

    std::unique_ptr<JournalDatabase> m_database;
    qint64 m_run = 0;
};

/** An instrument's part of the present run. When a row cannot be stored, the next write is not
    allowed. */
class JournalEntry : public TransactionLog, public CallObserver {
public:
    /** @param journal  must outlive the object; its run has begun */
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
    qint64 m_call = 0;        ///< the call without a result yet; 0 for none
    bool m_isWaiting = false; ///< `writeBegins` has added `m_call`, which is not made yet
    bool m_hasChanges = false;
    std::chrono::steady_clock::time_point m_begin;
    Text m_problem; ///< of the first row that could not be stored
};

/** What the journal stores of a file: the security key of a settings file is masked.
    @param serialNumber  of the only instrument that the file is for */
JournalInput journalInput(const struct InputRole& role, const struct InputFile& file,
                          std::optional<std::int32_t> serialNumber = std::nullopt);

#endif
