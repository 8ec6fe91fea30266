#include "command/JournalText.h"

#include "command/FieldTexts.h"
#include "command/InstrumentState.h"
#include "command/Report.h"

namespace {

QJsonValue timeJson(const std::optional<QDateTime>& time) {
    if (!time)
        return QJsonValue::Null;
    return time->toString(Qt::ISODateWithMs);
}

/** Null for nothing. */
template <typename Number>
QJsonValue numberJson(const std::optional<Number>& number) {
    if (!number)
        return QJsonValue::Null;
    return *number;
}

/** The word for its outcome; "unfinished" if that is not known. */
QString outcomeOf(const JournalInstrument& part) {
    if (part.isUnfinished || !part.outcome)
        return QStringLiteral("unfinished");
    return part.outcome->word;
}

QJsonObject callJson(const JournalCall& call) {
    QJsonObject object;
    object[QStringLiteral("step")] = call.step;
    object[QStringLiteral("function")] = call.function;
    object[QStringLiteral("writes")] = call.writes;
    object[QStringLiteral("began")] = timeJson(call.began);
    object[QStringLiteral("result")] = QJsonValue::Null;
    if (call.result)
        object[QStringLiteral("result")] = resultText(*call.result);
    object[QStringLiteral("microseconds")] = numberJson(call.microseconds);
    return object;
}

QJsonObject summaryOf(const JournalInstrument& part) {
    QJsonObject object;
    object[QStringLiteral("serialNumber")] = serialText(part.serialNumber);
    object[QStringLiteral("outcome")] = outcomeOf(part);
    return object;
}

QJsonObject verificationJson(const JournalVerification& verification) {
    QJsonObject object;
    object[QStringLiteral("at")] = timeJson(verification.at);
    object[QStringLiteral("outcome")] = verification.word;
    return object;
}

void addOutcome(QJsonObject& object, const std::optional<JournalOutcome>& outcome) {
    object[QStringLiteral("ended")] = QJsonValue::Null;
    object[QStringLiteral("reason")] = QString();
    object[QStringLiteral("warnings")] = QJsonArray();
    if (!outcome)
        return;
    object[QStringLiteral("ended")] = timeJson(outcome->ended);
    object[QStringLiteral("reason")] = outcome->reasons.join(QLatin1Char(' '));
    object[QStringLiteral("warnings")] = warningsJson(outcome->warnings);
}

QJsonObject wholeOf(const JournalInstrument& part) {
    QJsonObject object = summaryOf(part);
    QJsonArray changes;
    for (const FieldChange& change : part.changes)
        changes.append(toJson(change));
    QJsonArray calls;
    for (const JournalCall& call : part.calls)
        calls.append(callJson(call));
    QJsonArray verifications;
    for (const JournalVerification& verification : part.verifications)
        verifications.append(verificationJson(verification));
    addOutcome(object, part.outcome);
    object[QStringLiteral("began")] = timeJson(part.began);
    object[QStringLiteral("changes")] = changes;
    object[QStringLiteral("snapshot")] = pathJson(part.snapshotPath);
    object[QStringLiteral("calls")] = calls;
    object[QStringLiteral("verifications")] = verifications;
    return object;
}

template <typename ToJson>
QJsonObject runJson(const JournalRun& run, const ToJson& toJson) {
    QJsonArray instruments;
    for (const JournalInstrument& part : run.instruments)
        instruments.append(toJson(part));
    QJsonObject object;
    object[QStringLiteral("run")] = run.id;
    object[QStringLiteral("started")] = timeJson(run.started);
    object[QStringLiteral("ended")] = timeJson(run.ended);
    object[QStringLiteral("exitStatus")] = numberJson(run.exitStatus);
    object[QStringLiteral("arguments")] = QJsonArray::fromStringList(run.arguments);
    object[QStringLiteral("user")] = run.user;
    object[QStringLiteral("host")] = run.host;
    object[QStringLiteral("instruments")] = instruments;
    return object;
}

/** A mark before a call that writes. */
QString markOf(const JournalCall& call) {
    return call.writes ? QStringLiteral("*") : QStringLiteral(" ");
}

QString answerOf(const JournalCall& call) {
    if (call.result)
        return resultText(*call.result);
    return translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "(no answer)"));
}

void printInstrument(const JournalInstrument& part) {
    print(QStringLiteral("\n%1: %2").arg(serialText(part.serialNumber), outcomeOf(part)));
    if (part.outcome) {
        for (const QString& reason : part.outcome->reasons)
            print(QStringLiteral("  ") + reason);
    }
    for (const FieldChange& change : part.changes)
        print(changeLine(change));
    if (!part.snapshotPath.isEmpty())
        print(translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "  The state before is in %1"),
                         {part.snapshotPath}));
    for (const JournalCall& call : part.calls)
        print(QStringLiteral("  %1 %2  %3: %4")
                  .arg(markOf(call), FieldTexts::time(call.began), call.function, answerOf(call)));
    for (const JournalVerification& verification : part.verifications)
        print(translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "  %1  looked at again: %2"),
                         {FieldTexts::time(verification.at), verification.word}));
}

QString endOf(const JournalRun& run) {
    if (run.ended)
        return FieldTexts::time(*run.ended);
    return QStringLiteral("-");
}

QString exitStatusOf(const JournalRun& run) {
    if (run.exitStatus)
        return QString::number(*run.exitStatus);
    return QStringLiteral("-");
}

} // namespace

QString JournalText::line(const JournalRun& run) {
    QStringList outcomes;
    for (const JournalInstrument& part : run.instruments)
        outcomes.append(serialText(part.serialNumber) + QLatin1Char(' ') + outcomeOf(part));
    return QStringLiteral("%1  %2  %3  %4  %5")
        .arg(run.id, 5)
        .arg(FieldTexts::time(run.started), run.user, run.arguments.join(QLatin1Char(' ')),
             outcomes.join(QStringLiteral(", ")));
}

QJsonObject JournalText::summary(const JournalRun& run) {
    return runJson(run, summaryOf);
}

QJsonObject JournalText::whole(const JournalRun& run) {
    QJsonObject object = runJson(run, wholeOf);
    QJsonArray inputs;
    for (const JournalInput& input : run.inputs) {
        QJsonObject file;
        file[QStringLiteral("role")] = input.role;
        file[QStringLiteral("path")] = input.path;
        file[QStringLiteral("sha256")] = QString::fromLatin1(input.sha256);
        inputs.append(file);
    }
    object[QStringLiteral("process")] = run.process;
    object[QStringLiteral("toolVersion")] = run.toolVersion;
    object[QStringLiteral("libraryPath")] = run.libraryPath;
    object[QStringLiteral("librarySha256")] = QString::fromLatin1(run.librarySha256);
    object[QStringLiteral("inputs")] = inputs;
    return object;
}

void JournalText::printWhole(const JournalRun& run) {
    const auto field = [](const char* source, const QString& value) {
        print(translated(source, {value}));
    };
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Run:           %1"), QString::number(run.id));
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Command:       %1"),
          run.arguments.join(QLatin1Char(' ')));
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Began:         %1"), FieldTexts::time(run.started));
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Ended:         %1"), endOf(run));
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Exit status:   %1"), exitStatusOf(run));
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "User, host:    %1"),
          run.user + QStringLiteral(", ") + run.host);
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "vq-tl4ctl:     %1"), run.toolVersion);
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Library:       %1"), run.libraryPath);
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Its SHA-256:   %1"),
          QString::fromLatin1(run.librarySha256));
    for (const JournalInput& input : run.inputs)
        print(translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Input (%1): %2, SHA-256 %3"),
                         {input.role, input.path, QString::fromLatin1(input.sha256)}));
    for (const JournalInstrument& part : run.instruments)
        printInstrument(part);
}
