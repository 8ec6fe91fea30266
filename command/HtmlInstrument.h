#ifndef COMMAND_HTMLINSTRUMENT_H
#define COMMAND_HTMLINSTRUMENT_H

#include "command/HtmlWriter.h"
#include "command/JournalReader.h"
#include "command/Snapshot.h"

#include <QDateTime>
#include <QString>

#include <optional>

/** The part of a report about one instrument of a run. */
struct HtmlInstrument {
    const JournalRun& run;
    const JournalInstrument& part; ///< of `run`
    std::optional<Snapshot> before;
    std::optional<Snapshot> wanted;
    QString id; ///< of its section, for links

    /** The word for its outcome; "unfinished" if the run ended before. */
    QString outcome() const;
    void write(HtmlWriter& html) const;
};

namespace HtmlTexts {

/** The text, or a word for "none" if it is empty. */
QString orNone(const QString& text);
/** The table of input files. @param isOfRun  all of a run's, not those of one instrument */
HtmlWriter::Table inputs(const std::vector<JournalInput>& inputs, bool isOfRun);

} // namespace HtmlTexts

#endif
