#ifndef COMMAND_HTMLREPORT_H
#define COMMAND_HTMLREPORT_H

#include "command/Fault.h"
#include "command/JournalReader.h"

#include <QByteArray>

#include <optional>

/** A run of the journal as one HTML page for screen, paper and archive. The page fetches nothing
    and has no script. It is in the language of the messages; security keys are masked. */
namespace HtmlReport {

/** The file's content. Nothing, and a fault in @p faults, if a snapshot of the run is damaged.
    @param journal  path of the journal, for messages */
std::optional<QByteArray> make(const JournalRun& run, const QString& journal, Faults& faults);

} // namespace HtmlReport

#endif
