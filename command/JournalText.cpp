#include "command/JournalText.h"

#include "command/FieldTexts.h"
#include "command/InstrumentState.h"
#include "command/Report.h"
#include "instrument/ResultNames.h"

#include <QJsonArray>

namespace {

QJsonValue timeJson(const std::optional<QDateTime>& time) {
    return time ? QJsonValue(time->toString(Qt::ISODateWithMs)) : QJsonValue(QJsonValue::Null);
}

QString resultText(std::int32_t code) {
    const std::string name = resultName(code);
    return name.empty() ? QString::number(code) : QString::fromStdString(name);
}

/** The word for its outcome; "unfinished" if that is not known. */
QString outcomeOf(const JournalInstrument& part) {
    return part.isUnfinished || !part.outcome ? QStringLiteral("unfinished") : part.outcome->word;
}

QJsonObject callJson(const JournalCall& call) {
    const QJsonValue none(QJsonValue::Null);
    return {{QStringLiteral("step"), call.step},
            {QStringLiteral("function"), call.function},
            {QStringLiteral("writes"), call.writes},
            {QStringLiteral("began"), timeJson(call.began)},
            {QStringLiteral("result"), call.result ? QJsonValue(resultText(*call.result)) : none},
            {QStringLiteral("microseconds"),
             call.microseconds ? QJsonValue(*call.microseconds) : none}};
}

QJsonObject summaryOf(const JournalInstrument& part) {
    return {{QStringLiteral("serialNumber"), serialText(part.serialNumber)},
            {QStringLiteral("outcome"), outcomeOf(part)}};
}

QJsonObject wholeOf(const JournalInstrument& part) {
    QJsonObject object = summaryOf(part);
    QJsonArray changes;
    for (const FieldChange& change : part.changes)
        changes.append(toJson(change));
    QJsonArray calls;
    for (const JournalCall& call : part.calls)
        calls.append(callJson(call));
    QJsonArray warnings;
    QJsonArray verifications;
    if (part.outcome) {
        for (const char* name : warningNames(part.outcome->warnings))
            warnings.append(QString::fromLatin1(name));
    }
    for (const JournalVerification& verification : part.verifications)
        verifications.append(QJsonObject{{QStringLiteral("at"), timeJson(verification.at)},
                                         {QStringLiteral("outcome"), verification.word}});
    object[QStringLiteral("began")] = timeJson(part.began);
    object[QStringLiteral("ended")] =
        timeJson(part.outcome ? std::make_optional(part.outcome->ended) : std::nullopt);
    object[QStringLiteral("reason")] =
        part.outcome ? part.outcome->reasons.join(QLatin1Char(' ')) : QString();
    object[QStringLiteral("changes")] = changes;
    object[QStringLiteral("snapshot")] =
        part.snapshotPath.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(part.snapshotPath);
    object[QStringLiteral("warnings")] = warnings;
    object[QStringLiteral("calls")] = calls;
    object[QStringLiteral("verifications")] = verifications;
    return object;
}

template <typename ToJson>
QJsonObject runJson(const JournalRun& run, const ToJson& toJson) {
    QJsonArray instruments;
    for (const JournalInstrument& part : run.instruments)
        instruments.append(toJson(part));
    return {{QStringLiteral("run"), run.id},
            {QStringLiteral("started"), timeJson(run.started)},
            {QStringLiteral("ended"), timeJson(run.ended)},
            {QStringLiteral("exitStatus"),
             run.exitStatus ? QJsonValue(*run.exitStatus) : QJsonValue(QJsonValue::Null)},
            {QStringLiteral("arguments"), QJsonArray::fromStringList(run.arguments)},
            {QStringLiteral("user"), run.user},
            {QStringLiteral("host"), run.host},
            {QStringLiteral("instruments"), instruments}};
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
        print(
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "  The state before is in %1"), {part.snapshotPath})
                .translated());
    for (const JournalCall& call : part.calls) {
        const QString result =
            call.result ? resultText(*call.result)
                        : Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "(no answer)")).translated();
        print(QStringLiteral("  %1 %2  %3: %4")
                  .arg(call.writes ? QStringLiteral("*") : QStringLiteral(" "),
                       FieldTexts::time(call.began), call.function, result));
    }
    for (const JournalVerification& verification : part.verifications)
        print(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "  %1  looked at again: %2"),
                   {FieldTexts::time(verification.at), verification.word})
                  .translated());
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
    for (const JournalInput& input : run.inputs)
        inputs.append(QJsonObject{{QStringLiteral("role"), input.role},
                                  {QStringLiteral("path"), input.path},
                                  {QStringLiteral("sha256"), QString::fromLatin1(input.sha256)}});
    object[QStringLiteral("process")] = run.process;
    object[QStringLiteral("toolVersion")] = run.toolVersion;
    object[QStringLiteral("libraryPath")] = run.libraryPath;
    object[QStringLiteral("librarySha256")] = QString::fromLatin1(run.librarySha256);
    object[QStringLiteral("inputs")] = inputs;
    return object;
}

void JournalText::printWhole(const JournalRun& run) {
    const auto field = [](const char* source, const QString& value) {
        print(Text(source, {value}).translated());
    };
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Run:           %1"), QString::number(run.id));
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Command:       %1"),
          run.arguments.join(QLatin1Char(' ')));
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Began:         %1"), FieldTexts::time(run.started));
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Ended:         %1"),
          run.ended ? FieldTexts::time(*run.ended) : QStringLiteral("-"));
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Exit status:   %1"),
          run.exitStatus ? QString::number(*run.exitStatus) : QStringLiteral("-"));
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "User, host:    %1"),
          run.user + QStringLiteral(", ") + run.host);
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "vq-tl4ctl:     %1"), run.toolVersion);
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Library:       %1"), run.libraryPath);
    field(QT_TRANSLATE_NOOP("vq-tl4ctl", "Its SHA-256:   %1"),
          QString::fromLatin1(run.librarySha256));
    for (const JournalInput& input : run.inputs)
        print(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Input (%1): %2, SHA-256 %3"),
                   {input.role, input.path, QString::fromLatin1(input.sha256)})
                  .translated());
    for (const JournalInstrument& part : run.instruments)
        printInstrument(part);
}
