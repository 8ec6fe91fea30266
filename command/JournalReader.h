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
    QString role;       ///< as `InputRole::toStore` has it
    QString path;       ///< as the user gave it
    QByteArray sha256;  ///< of the original file, as 64 hexadecimal digits
    QByteArray content; ///< with the security key masked where `isMasked`
    bool isMasked = false;
};

/** A call to libKVASDK. */
struct JournalCall {
    QString step;     ///< the step of the transaction that made it; an internal word
    QString function; ///< the exported name
    bool writes = false;
    QDateTime began;
    std::optional<std::int32_t> result; ///< nothing if the program ended before the answer
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
    qint64 id = 0; ///< unique in the journal, ascending with the time of the start
    qint64 run = 0;
    std::int32_t serialNumber = 0;
    QDateTime began;
    /** Snapshots for `Snapshot::check`: the old and the wanted state. Empty if writing did not
        begin. */
    QByteArray before;
    QByteArray wanted;
    QString snapshotPath; ///< of the file that has `before`
    FieldChanges changes;
    std::vector<JournalCall> calls;        ///< in their order
    std::optional<JournalOutcome> outcome; ///< nothing if the program ended before
    std::vector<JournalVerification> verifications;
    bool isRecovery = false;   ///< it settled an earlier part: `wanted` is what it settled on
    bool isUnfinished = false; ///< writing began, and its result is not known
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
 * Reads a journal. All times are UTC, to the millisecond. Each function that may fail returns an
 * empty text on success, and the reason of the failure otherwise. One thread.
 */
class JournalReader {
public:
    /** Opens @p path; adds no rows. @return null with an empty @p problem if there is no file; null
        with the reason in @p problem if it cannot be used */
    static std::unique_ptr<JournalReader> open(const QString& path, Text& problem);
    /** Reads through a connection that must outlive the reader. */
    explicit JournalReader(JournalDatabase& database);
    ~JournalReader();
    JournalReader(const JournalReader&) = delete;
    JournalReader& operator=(const JournalReader&) = delete;

    /** The runs, the oldest first, with their instruments and outcomes. Only `run` reads inputs,
        snapshots, changes, calls and verifications. */
    Text runs(const JournalFilter& filter, std::vector<JournalRun>& runs);
    /** All of one run; nothing for an unknown number. */
    Text run(qint64 id, std::optional<JournalRun>& run);

    /** The instrument's parts of runs whose writing has no verdict, the oldest first, with their
        snapshots. */
    Text unfinished(std::int32_t serialNumber, std::vector<JournalInstrument>& parts);
    /** The serial numbers for which `unfinished` has parts, and those of parts that neither ended
        nor wrote. */
    Text withoutVerdict(std::vector<std::int32_t>& serialNumbers);
    /** The last part that wrote to the instrument, with its snapshots; nothing if none did. */
    Text lastWritten(std::int32_t serialNumber, std::optional<JournalInstrument>& part);
    /** The serial numbers of all instruments that were written to. */
    Text written(std::vector<std::int32_t>& serialNumbers);

private:
    struct Parts;
    std::unique_ptr<JournalDatabase> m_own; ///< null if the connection belongs to the caller
    JournalDatabase& m_database;
};

#endif
