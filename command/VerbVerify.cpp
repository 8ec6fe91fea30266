#include "command/Change.h"
#include "command/DataFolder.h"
#include "command/Journal.h"
#include "command/Report.h"
#include "command/Snapshot.h"
#include "command/VerbSupport.h"

#include <QJsonArray>

#include <algorithm>

namespace {

/** The result for one instrument. */
struct Finding {
    std::int32_t serialNumber = 0;
    const char* word = "refused"; ///< of JSON; "held", "waits" and "differs" are stored
    Text sentence;
    std::optional<JournalInstrument> part; ///< what was written last
    FieldChanges changes;                  ///< from the state written to the state held

    ExitStatus status() const;
    bool isKept() const { return part && status() != RefusedStatus && status() != UnknownStatus; }
};

ExitStatus Finding::status() const {
    const QLatin1String outcome(word);
    if (outcome == QLatin1String("held") || outcome == QLatin1String("unwritten"))
        return Done;
    if (outcome == QLatin1String("waits"))
        return WaitsStatus;
    if (outcome == QLatin1String("differs"))
        return DifferentStatus;
    return outcome == QLatin1String("unfinished") ? UnknownStatus : RefusedStatus;
}

/** The state that the last write left; nothing if the journal has no valid snapshot of it. */
std::optional<Snapshot> leftBehind(const JournalInstrument& part) {
    const bool wentBack = part.outcome && part.outcome->word == QLatin1String("rolled-back") &&
                          !part.wanted.isEmpty();
    // For a recovery that rolled back, the old state was the wanted one.
    const bool isOld = wentBack && !part.isRecovery;
    Faults faults;
    auto snapshot =
        Snapshot::check({DataFolder::journal(), isOld ? part.before : part.wanted}, faults);
    sayToUser(faults);
    return snapshot;
}

/** Compares what the instrument holds with what was written last. */
void compare(const InstrumentState& held, const InstrumentState& written, Finding& finding) {
    const QString serial = serialText(finding.serialNumber);
    const Parts parts = differingParts(written, held);
    finding.changes = difference(written, held);
    const bool isWaiting =
        finding.part->outcome && finding.part->outcome->word == QLatin1String("waits");
    if (!parts.any()) {
        finding.word = "held";
        finding.sentence =
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: held. It answers what was written last, in "
                                                "every byte."),
                 {serial});
    } else if (isWaiting && parts.network && !parts.calibration && !parts.powerOff) {
        finding.word = "waits";
        finding.sentence =
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: waits. Its network settings come into use "
                                                "when it has been switched off and on."),
                 {serial});
    } else {
        finding.word = "differs";
        finding.sentence = Text(
            QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: differs. It does not hold what was written last."),
            {serial});
    }
}

Finding verifyOne(JournalReader& reader, std::int32_t serialNumber) {
    Finding finding;
    finding.serialNumber = serialNumber;
    const QString serial = serialText(serialNumber);
    const UnfinishedMark mark(serialNumber);
    finding.sentence = reader.lastWritten(serialNumber, finding.part);
    if (!finding.sentence.isEmpty())
        return finding;
    if (mark.exists()) {
        finding.word = "unfinished";
        finding.sentence =
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: unfinished. An earlier write did not end: "
                                                "run vq-tl4ctl recover."),
                 {serial});
        return finding;
    }
    if (!finding.part) {
        finding.word = "unwritten";
        finding.sentence =
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: unwritten. The journal has no write to it."),
                 {serial});
        return finding;
    }
    const auto written = leftBehind(*finding.part);
    CallWatch watch;
    InstrumentState held;
    if (!written) {
        finding.sentence =
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: its snapshot in the journal is damaged."),
                 {serial});
        return finding;
    }
    finding.sentence = readInstrument(watch, serialNumber, held);
    if (finding.sentence.isEmpty())
        compare(held, written->state, finding);
    return finding;
}

QJsonObject toJson(const Finding& finding) {
    QJsonArray changes;
    for (const FieldChange& change : finding.changes)
        changes.append(::toJson(change));
    QJsonObject object;
    object[QStringLiteral("serialNumber")] = serialText(finding.serialNumber);
    object[QStringLiteral("outcome")] = QString::fromLatin1(finding.word);
    object[QStringLiteral("reason")] = finding.sentence.english();
    object[QStringLiteral("run")] = QJsonValue::Null;
    if (finding.part)
        object[QStringLiteral("run")] = finding.part->run;
    object[QStringLiteral("changes")] = changes;
    return object;
}

void report(const Finding& finding, bool asJson) {
    sayToUser(finding.sentence);
    for (const FieldChange& change : finding.changes)
        sayToUser(changeLine(change));
    if (asJson)
        print(toJson(finding));
}

/** Adds the attached instruments. One that was written to and is not attached is added too if all
    are wanted, so that it is refused; otherwise it is only reported.
    @param status  refused if no instrument that was written to is attached */
Text addInstruments(JournalReader& reader, bool wantsAll, std::vector<std::int32_t>& serials,
                    ExitStatus& status) {
    Text problem = attachedInstruments(serials);
    if (!problem.isEmpty())
        return problem;
    std::vector<std::int32_t> written;
    problem = reader.written(written);
    const auto missing =
        std::stable_partition(written.begin(), written.end(), [&](std::int32_t serial) {
            return std::find(serials.begin(), serials.end(), serial) != serials.end();
        });
    if (missing == written.begin() && missing != written.end())
        status = RefusedStatus;
    if (wantsAll) {
        serials.insert(serials.end(), missing, written.end());
        return problem;
    }
    std::for_each(missing, written.end(), [](std::int32_t serial) {
        sayToUser(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 was written to and is not attached: it "
                                                      "is not looked at."),
                       {serialText(serial)}));
    });
    return problem;
}

} // namespace

ExitStatus verify(const VerifyOptions& options) {
    std::vector<std::int32_t> serials;
    for (const QString& text : options.serials) {
        const auto serial = requireSerial(text);
        if (!serial)
            return Usage;
        serials.push_back(*serial);
    }
    Text problem;
    const auto journal = Journal::open(DataFolder::journal(), problem);
    if (!journal) {
        sayToUser(problem);
        return RefusedStatus;
    }
    JournalReader reader(journal->database());
    ExitStatus status = Done;
    if (serials.empty())
        problem = addInstruments(reader, options.all, serials, status);
    if (!problem.isEmpty()) {
        sayToUser(problem);
        status = RefusedStatus;
    }
    for (const std::int32_t serial : serials) {
        const Finding finding = verifyOne(reader, serial);
        report(finding, options.asJson);
        status = graver(status, finding.status());
        if (!finding.isKept())
            continue;
        problem = journal->addVerification(finding.part->id, QString::fromLatin1(finding.word));
        if (problem.isEmpty())
            continue;
        sayToUser(problem);
        status = graver(status, RefusedStatus);
    }
    return status;
}
