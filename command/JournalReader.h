#ifndef COMMAND_JOURNALREADER_H
#define COMMAND_JOURNALREADER_H

#include "command/Difference.h"
#include "command/Text.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

class JournalDatabase;

/** A file that a run was given. */
struct JournalInput {
    QString role;       ///< "network", "white-plate", "ambient-adapter", "snapshot", "plan"
    QString path;       ///< as the user gave it
    QByteArray sha256;  ///< of the file as it was read, as 64 hexadecimal digits
    QByteArray content; ///< with the security key masked where `isMasked`
    bool isMasked = false;
};

/** A call to libKVASDK. */
struct JournalCall {
    QString step;     ///< the step of the transaction that made it; a word, not for people
    QString function; ///< the exported name
    bool writes = false;
    QDateTime began;
    std::optional<std::int32_t> result; ///< nothing where the program ended before the answer
    std::optional<qint64> microseconds; ///< how long it took; with the result
};

/** How an instrument's part of a run ended. */
struct JournalOutcome {
    QString word;        ///< of `outcomeWord`
    QStringList reasons; ///< English sentences
    std::int32_t warnings = 0;
    QDateTime ended;
};

/** What `verify` found of what was written. */
struct JournalVerification {
    QDateTime at;
    QString word; ///< "held", "waits", "differs"
};

/** An instrument's part of a run. */
struct JournalInstrument {
    qint64 id = 0; ///< within the journal, in the order of their beginning
    qint64 run = 0;
    std::int32_t serialNumber = 0;
    QDateTime began;
    /** Snapshots, as `Snapshot::check` takes them: what it held, and what it was to hold. Empty
        where it was not about to be written. */
    QByteArray before;
    QByteArray wanted;
    QString snapshotPath; ///< of the file that has `before`
    FieldChanges changes;
    std::vector<JournalCall> calls;        ///< in their order
    std::optional<JournalOutcome> outcome; ///< nothing where the program ended before
    std::vector<JournalVerification> verifications;
    bool isRecovery = false;   ///< it settled an earlier part: `wanted` is what it settled on
    bool isUnfinished = false; ///< writing began, and what it came to is not known
};

/** One `apply`, `restore` or `recover`. */
struct JournalRun {
    qint64 id = 0;
    QDateTime started;
    QStringList arguments; ///< the command line, without the program
    QString user;
    QString host;
    qint64 process = 0;
    QString toolVersion;
    QString libraryPath;
    QByteArray librarySha256;
    std::optional<QDateTime> ended;
    std::optional<int> exitStatus;
    std::vector<JournalInput> inputs;
    std::vector<JournalInstrument> instruments;
};

/** Which runs are asked for. */
struct JournalFilter {
    std::optional<std::int32_t> serialNumber;
    std::optional<QDateTime> since;
};

/**
 * Reads a journal. All times are UTC, to the millisecond. Each function that may fail is empty when
 * it has done its work, and says what went wrong otherwise. One thread.
 */
class JournalReader {
public:
    /** Opens @p path, which nobody changes by that. @return nothing, and @p problem empty, where
        there is no file; nothing, and why in @p problem, where it cannot be used */
    static std::unique_ptr<JournalReader> open(const QString& path, Text& problem);
    /** Reads through a connection that outlives the reader. */
    explicit JournalReader(JournalDatabase& database);
    ~JournalReader();
    JournalReader(const JournalReader&) = delete;
    JournalReader& operator=(const JournalReader&) = delete;

    /** The runs, the oldest first, with their instruments and outcomes, but without what `run`
        alone reads: inputs, snapshots, changes, calls, verifications. */
    Text runs(const JournalFilter& filter, std::vector<JournalRun>& runs);
    /** All of one run; nothing where there is none of that number. */
    Text run(qint64 id, std::optional<JournalRun>& run);

    /** The instrument's parts of runs whose writing has no verdict, the oldest first, with their
        snapshots. */
    Text unfinished(std::int32_t serialNumber, std::vector<JournalInstrument>& parts);
    /** The serial numbers that `unfinished` has something for, and those of parts that did not end
        and wrote nothing. */
    Text withoutVerdict(std::vector<std::int32_t>& serialNumbers);
    /** The last part that wrote to the instrument, with its snapshots; nothing where none did. */
    Text lastWritten(std::int32_t serialNumber, std::optional<JournalInstrument>& part);
    /** The serial numbers of all instruments that were written to. */
    Text written(std::vector<std::int32_t>& serialNumbers);

private:
    struct Parts;
    std::unique_ptr<JournalDatabase> m_own; ///< nothing where the connection is another's
    JournalDatabase& m_database;
};

#endif
