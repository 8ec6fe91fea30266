#ifndef COMMAND_HTMLREPORT_H
#define COMMAND_HTMLREPORT_H

#include "command/Fault.h"
#include "command/JournalReader.h"

#include <QByteArray>

#include <optional>

/** A run of the journal as one page of HTML, to be looked at, printed and filed away: nothing is
    fetched for it, and nothing in it runs. In the language of the messages; security keys are
    masked. */
namespace HtmlReport {

/** The file's content. Nothing, and a fault in @p faults, where a snapshot of the run is damaged.
    @param journal  path of the journal, to be named */
std::optional<QByteArray> make(const JournalRun& run, const QString& journal, Faults& faults);

} // namespace HtmlReport

#endif
