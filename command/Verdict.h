#ifndef COMMAND_VERDICT_H
#define COMMAND_VERDICT_H

#include "command/Difference.h"
#include "command/Text.h"

#include <QString>

#include <cstdint>
#include <vector>

/** The outcome for an instrument. */
enum class Outcome {
    Unchanged,   ///< it already held everything; nothing was written
    Verified,    ///< written, read back independently, equal in every byte
    Refused,     ///< nothing was written
    RolledBack,  ///< a step failed or a value differed; the old state is restored and verified
    Unknown,     ///< the state could not be verified or restored
    Waits,       ///< network settings are stored but not returned yet; the rest is verified
    WouldChange, ///< a dry run found something to change; nothing was written
    NotReached,  ///< the run stopped before it; nothing was written
};

/** The word for it in JSON. */
const char* outcomeWord(Outcome outcome);

/** The exit status of the program. */
enum ExitStatus {
    Done = 0,
    Usage = 2, ///< also input that is refused before anything is connected
    RefusedStatus = 3,
    RolledBackStatus = 4,
    UnknownStatus = 5,
    WaitsStatus = 6,
    DifferentStatus = 7, ///< of `--dry-run` and of `diff`
};

ExitStatus exitStatus(Outcome outcome);

/** The status of several instruments: that of the worst outcome. */
ExitStatus graver(ExitStatus left, ExitStatus right);

/** Everything that is reported about one instrument at the end. */
struct Verdict {
    std::int32_t serialNumber = 0;
    Outcome outcome = Outcome::Refused;
    std::vector<Text> reasons; ///< sentences, in their order
    FieldChanges changes;
    QString snapshot;          ///< path; empty if none was made
    std::int32_t warnings = 0; ///< bits of all answers
};

#endif
