#ifndef COMMAND_JOURNALTEXT_H
#define COMMAND_JOURNALTEXT_H

#include "command/JournalReader.h"

#include <QJsonObject>

/** Runs of the journal, for people and for programs. */
namespace JournalText {

/** One line: number, time, user, command, the outcome of each instrument. */
QString line(const JournalRun& run);
QJsonObject summary(const JournalRun& run);

/** Everything except the bytes of snapshots and input files. */
QJsonObject whole(const JournalRun& run);
/** Prints the same for people on standard output. */
void printWhole(const JournalRun& run);

} // namespace JournalText

#endif
