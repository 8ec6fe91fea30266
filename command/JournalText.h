#ifndef COMMAND_JOURNALTEXT_H
#define COMMAND_JOURNALTEXT_H

#include "command/JournalReader.h"

#include <QJsonObject>

/** Runs of the journal, for people and for programs. */
namespace JournalText {

/** One line: number, time, user, command, the outcome of each instrument. */
QString line(const JournalRun& run);
QJsonObject summary(const JournalRun& run);

/** All but the snapshots' and the input files' bytes. */
QJsonObject whole(const JournalRun& run);
/** On standard output. */
void printWhole(const JournalRun& run);

} // namespace JournalText

#endif
