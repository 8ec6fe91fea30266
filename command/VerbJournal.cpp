#include "command/DataFolder.h"
#include "command/JournalText.h"
#include "command/Report.h"
#include "command/VerbSupport.h"

#include <algorithm>

namespace {

ExitStatus refuse(const Text& problem) {
    sayToUser(problem);
    return RefusedStatus;
}

/** A date means local midnight; a time without a zone is local. */
std::optional<QDateTime> parseTime(const QString& text) {
    const QDate day = QDate::fromString(text, Qt::ISODate);
    QDateTime time = QDateTime::fromString(text, Qt::ISODate);
    if (day.isValid() && text.size() == 10)
        time = day.startOfDay();
    if (!time.isValid())
        return std::nullopt;
    return time;
}

} // namespace

ExitStatus journalList(const JournalOptions& options) {
    JournalFilter filter;
    if (!options.serial.isEmpty()) {
        filter.serialNumber = requireSerial(options.serial);
        if (!filter.serialNumber)
            return Usage;
    }
    if (!options.since.isEmpty()) {
        filter.since = parseTime(options.since);
        if (!filter.since) {
            sayToUser(Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                             "\"%1\" is no date: write it as 2026-11-20, or with a "
                                             "time as 2026-11-20T09:30:00."),
                           {options.since}));
            return Usage;
        }
    }
    Text problem;
    const auto reader = openJournal(problem);
    std::vector<JournalRun> runs;
    if (reader)
        problem = reader->runs(filter, runs);
    if (!problem.isEmpty())
        return refuse(problem);
    for (const JournalRun& run : runs) {
        if (options.asJson)
            print(JournalText::summary(run));
        else
            print(JournalText::line(run));
    }
    return Done;
}

ExitStatus journalShow(const JournalShowOptions& options) {
    std::optional<JournalRun> run;
    const Text problem = findRun(options.run, run);
    if (!problem.isEmpty())
        return refuse(problem);
    if (options.asJson)
        print(JournalText::whole(*run));
    else
        JournalText::printWhole(*run);
    return Done;
}

ExitStatus journalSnapshot(const JournalSnapshotOptions& options) {
    const auto serial = requireSerial(options.serial);
    if (!serial)
        return Usage;
    std::optional<JournalRun> run;
    Text problem = findRun(options.run, run);
    if (!problem.isEmpty())
        return refuse(problem);
    const auto part = std::find_if(
        run->instruments.begin(), run->instruments.end(), [&](const JournalInstrument& candidate) {
            return candidate.serialNumber == *serial && !candidate.before.isEmpty();
        });
    if (part == run->instruments.end())
        return refuse(Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                             "Run %1 has no snapshot of instrument %2: nothing was "
                                             "written to it."),
                           {options.run, serialText(*serial)}));
    Faults faults;
    if (!Snapshot::check({DataFolder::journal(), part->before}, faults)) {
        sayToUser(faults);
        return RefusedStatus;
    }
    problem = createFile(options.file, part->before);
    if (!problem.isEmpty())
        return refuse(problem);
    return Done;
}
