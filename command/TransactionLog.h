#ifndef COMMAND_TRANSACTIONLOG_H
#define COMMAND_TRANSACTIONLOG_H

#include "command/Snapshot.h"
#include "command/Verdict.h"

/**
 * Records what a transaction does, before it does it. This base class records nothing, for dry
 * runs; a journal's entry records all. A text that is not empty says why something is missing.
 */
class TransactionLog {
public:
    virtual ~TransactionLog() = default;

    virtual void stepBegins(const char* /*name*/) {}
    /** Writing is about to begin: from here on the instrument is unfinished. Synced to the disk by
        the `writeBegins` that follows.
        @param path  of the file that has @p before */
    virtual Text writingBegins(const Snapshot& /*before*/, const QString& /*path*/,
                               const InstrumentState& /*wanted*/, const FieldChanges& /*changes*/) {
        return {};
    }
    /** A call that writes follows. Synced to the disk, with all earlier rows, when it returns. */
    virtual Text writeBegins(const char* /*function*/) { return {}; }
    /** The end. @param isSettled  the instrument is no longer unfinished */
    virtual Text ends(const Verdict& /*verdict*/, bool /*isSettled*/) { return {}; }
};

#endif
