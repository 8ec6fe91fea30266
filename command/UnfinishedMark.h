#ifndef COMMAND_UNFINISHEDMARK_H
#define COMMAND_UNFINISHEDMARK_H

#include "command/Text.h"

#include <QString>

#include <cstdint>

class JournalDatabase;

/**
 * Whether writing to an instrument began and no verdict was found: what is read from it may be
 * staged and not in its memory. The journal says so, and so does a mark file of an earlier version
 * of this program. It is looked for when the object is made.
 */
class UnfinishedMark {
public:
    /** @param database  the journal's, used in the constructor; null: it is opened */
    explicit UnfinishedMark(std::int32_t serialNumber, JournalDatabase* database = nullptr);

    /** Whether there is one, even one that cannot be read. */
    bool exists() const { return m_exists; }
    /** Why the journal could not be looked into; empty where it was. */
    const Text& problem() const { return m_problem; }
    /** The snapshot of what the instrument held before; empty when it is not known. */
    const QString& snapshot() const { return m_snapshot; }

    /** Removes a mark file, durably. Empty, or why it could not be removed. */
    Text removeFile() const;

    /** What a mark means, with the commands that end it. */
    Text told() const;
    /** The command that ends an unfinished write with the state before, to be copied to a shell.
        @param snapshot  to be named where the mark names none */
    QString restoreCommand(const QString& snapshot = {}) const;

private:
    QString withJournal(const QString& command) const;
    void lookInto(const QString& journal, JournalDatabase* database);
    void lookIntoFile();

    std::int32_t m_serialNumber;
    bool m_exists = false;
    QString m_snapshot;
    QString m_journal; ///< to be named; empty for the usual one
    Text m_problem;
};

#endif
