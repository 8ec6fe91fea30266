#ifndef COMMAND_TRANSACTIONLOG_H
#define COMMAND_TRANSACTIONLOG_H

#include "command/Snapshot.h"
#include "command/Verdict.h"

/**
 * Keeps what a transaction does, before it does it. This one keeps nothing, as a dry run does; a
 * journal's entry keeps all. A text that is not empty says why something could not be kept.
 */
class TransactionLog {
public:
    virtual ~TransactionLog() = default;

    virtual void stepBegins(const char* /*name*/) {}
    /** Writing is about to begin: from here on the instrument is unfinished. On the disk when it
        returns.
        @param path  of the file that has @p before */
    virtual Text writingBegins(const Snapshot& /*before*/, const QString& /*path*/,
                               const InstrumentState& /*wanted*/, const FieldChanges& /*changes*/) {
        return {};
    }
    /** A call that writes is about to be made. On the disk, with all before it, when it returns. */
    virtual Text writeBegins(const char* /*function*/) { return {}; }
    /** The end. @param isSettled  the instrument is not unfinished any more */
    virtual Text ends(const Verdict& /*verdict*/, bool /*isSettled*/) { return {}; }
};

#endif
