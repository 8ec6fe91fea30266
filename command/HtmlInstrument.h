#ifndef COMMAND_HTMLINSTRUMENT_H
#define COMMAND_HTMLINSTRUMENT_H

#include "command/HtmlWriter.h"
#include "command/JournalReader.h"
#include "command/Snapshot.h"

#include <QDateTime>
#include <QString>

#include <optional>

/** The part of a report that is about one instrument of a run. */
struct HtmlInstrument {
    const JournalRun& run;
    const JournalInstrument& part; ///< of `run`
    std::optional<Snapshot> before;
    std::optional<Snapshot> wanted;
    QString id; ///< of its section, as a link names it

    /** The word for what became of it; "unfinished" where the run ended before. */
    QString outcome() const;
    void write(HtmlWriter& html) const;
};

namespace HtmlTexts {

/** In place of an empty text. */
QString orNone(const QString& text);
/** The table of input files. @param isOfRun  all of a run's, not those of one instrument */
HtmlWriter::Table inputs(const std::vector<JournalInput>& inputs, bool isOfRun);

} // namespace HtmlTexts

#endif
