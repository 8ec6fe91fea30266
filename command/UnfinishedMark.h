#ifndef COMMAND_UNFINISHEDMARK_H
#define COMMAND_UNFINISHEDMARK_H

#include "command/Text.h"

#include <QString>

#include <cstdint>

class JournalDatabase;

/**
 * Whether writing to an instrument began and did not reach a verdict: data read from it may be
 * staged and not in its memory. The mark is in the journal, or in a file of an earlier version of
 * this program. The constructor looks for it.
 */
class UnfinishedMark {
public:
    /** @param database  the journal's, used only in the constructor; null: opens the journal */
    explicit UnfinishedMark(std::int32_t serialNumber, JournalDatabase* database = nullptr);

    /** Whether there is a mark, even one that cannot be read. */
    bool exists() const { return m_exists; }
    /** Why the journal could not be read; empty if it was. */
    const Text& problem() const { return m_problem; }
    /** The snapshot of the instrument's state before; empty if it is not known. */
    const QString& snapshot() const { return m_snapshot; }

    /** Removes a mark file and syncs its folder. Empty, or the reason of the failure. */
    Text removeFile() const;

    /** The meaning of the mark, with the commands that remove it. */
    Text told() const;
    /** The shell command that finishes an unfinished write or takes it back. */
    QString recoverCommand() const;
    /** The shell command that ends an unfinished write by restoring the state before.
        @param snapshot  used if the mark names none */
    QString restoreCommand(const QString& snapshot = {}) const;

private:
    QString withJournal(const QString& command) const;
    void lookInto(const QString& journal, JournalDatabase* database);
    void lookIntoFile();

    std::int32_t m_serialNumber;
    bool m_exists = false;
    QString m_snapshot;
    QString m_journal; ///< path for the commands; empty for the usual one
    Text m_problem;
};

#endif
