#include "command/DataFolder.h"
#include "command/DurableFile.h"
#include "command/JournalText.h"
#include "command/Report.h"
#include "command/VerbSupport.h"

#include <QFileInfo>

#include <algorithm>

namespace {

/** The journal, and where it cannot be used, or is not there, why. */
std::unique_ptr<JournalReader> openJournal(Text& problem) {
    auto reader = JournalReader::open(DataFolder::journal(), problem);
    if (!reader && problem.isEmpty())
        problem = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "There is no journal yet: %1"),
                       {DataFolder::journal()});
    return reader;
}

ExitStatus refuse(const Text& problem) {
    sayToUser(problem);
    return RefusedStatus;
}

/** A day begins at midnight here; a time without a zone is one of here. */
std::optional<QDateTime> parseTime(const QString& text) {
    const QDate day = QDate::fromString(text, Qt::ISODate);
    const QDateTime time = day.isValid() && text.size() == 10
                               ? day.startOfDay()
                               : QDateTime::fromString(text, Qt::ISODate);
    return time.isValid() ? std::optional<QDateTime>(time) : std::nullopt;
}

Text findRun(const QString& text, std::optional<JournalRun>& run) {
    Text problem;
    const auto reader = openJournal(problem);
    if (!reader)
        return problem;
    problem = reader->run(text.toLongLong(), run);
    if (problem.isEmpty() && !run)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The journal has no run %1."), {text});
    return problem;
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
    bool isTaken = false;
    problem =
        DurableFile::create(QFileInfo(options.file).absoluteFilePath(), part->before, isTaken);
    if (isTaken)
        problem = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 is there already, and stays as it is."),
                       {options.file});
    return problem.isEmpty() ? Done : refuse(problem);
}
