#ifndef COMMAND_UNFINISHEDMARK_H
#define COMMAND_UNFINISHEDMARK_H

#include "command/InstrumentState.h"

#include <QString>

#include <cstdint>

/**
 * A file that says that writing to an instrument began and no verdict was found: what is read from
 * it may be staged and not in its memory.
 */
class UnfinishedMark {
public:
    explicit UnfinishedMark(std::int32_t serialNumber);

    /** Whether there is one, even one that cannot be read. */
    bool exists() const;
    /** The snapshot of what the instrument held before; empty when the mark cannot be read. */
    QString snapshot() const;

    /** Sets the mark, durably. Empty, or why it could not be set.
        @param snapshot  the path of the snapshot that leads back
        @param wanted    what is about to be written */
    Text set(const QString& snapshot, const InstrumentState& wanted) const;
    /** Removes the mark, durably. Empty, or why it could not be removed. */
    Text remove() const;

    /** The command that ends an unfinished write, to be copied to a shell. */
    QString restoreCommand() const;

private:
    std::int32_t m_serialNumber;
    QString m_path;
};

#endif
