#include "command/Report.h"

#include "command/AccessoryTexts.h"
#include "command/InstrumentState.h"
#include "command/Terminal.h"
#include "instrument/ResultNames.h"

#include <QJsonDocument>

#include <cstdio>

Text outcomeSentence(Outcome outcome, const QString& serial) {
    switch (outcome) {
    case Outcome::Unchanged:
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: unchanged. Nothing was written."),
                    {serial});
    case Outcome::Verified:
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "%1: verified. It was written, read back independently, "
                                      "and is equal in every byte."),
                    {serial});
    case Outcome::Refused:
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: refused. Nothing was written."), {serial});
    case Outcome::RolledBack:
        return Text(
            QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: rolled-back. The old state is back, and verified."),
            {serial});
    case Outcome::Unknown:
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "%1: unknown. What the instrument holds could not be "
                                      "verified."),
                    {serial});
    case Outcome::Waits:
        return Text(
            QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: waits. All but the network settings is verified."),
            {serial});
    case Outcome::WouldChange:
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: would-change. Nothing was written."),
                    {serial});
    case Outcome::NotReached:
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: not-reached. The run stopped before it."),
                    {serial});
    }
    return {};
}

void sayToUser(const QString& line) {
    Terminal::writeLine(stderr, line.toLocal8Bit());
}

void sayToUser(const Text& text) {
    sayToUser(text.translated());
}

void sayToUser(const Faults& faults) {
    for (const Fault& fault : faults)
        sayToUser(fault.toString());
}

void print(const QString& line) {
    Terminal::writeLine(stdout, line.toLocal8Bit());
}

void print(const QJsonObject& object) {
    Terminal::writeLine(stdout, QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QString changeLine(const FieldChange& change) {
    return QStringLiteral("  ~ %1: \"%2\" -> \"%3\"%4")
        .arg(change.field, change.oldText, change.newText, changeNote(change));
}

QString changeNote(const FieldChange& change) {
    const bool isMasked =
        change.field == QLatin1String("network.key") && change.oldText == change.newText;
    if (!isMasked)
        return {};
    return translated(QT_TRANSLATE_NOOP("vq-tl4ctl", " (another key)"));
}

Text implausibleText(const CalibrationAccessory& accessory, const Implausible& value) {
    return Text(AccessoryTexts::of(accessory).implausible,
                {QString::number(value.index + 1), QString::number(accessory.valueCount),
                 QString::number(value.index), QString::number(double(value.value)),
                 value.expected.translated(), value.why.translated()});
}

namespace {

const char* headingOf(std::size_t changeCount) {
    switch (changeCount) {
    case 0:
        return QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1, no changes.");
    case 1:
        return QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1, 1 change:");
    default:
        return QT_TRANSLATE_NOOP("vq-tl4ctl", "Instrument %1, %2 changes:");
    }
}

} // namespace

void sayDifference(std::int32_t serialNumber, const FieldChanges& changes) {
    sayToUser(Text(headingOf(changes.size()),
                   {serialText(serialNumber), QString::number(changes.size())}));
    for (const FieldChange& change : changes)
        sayToUser(changeLine(change));
}

QJsonObject toJson(const FieldChange& change) {
    QJsonObject object;
    object[QStringLiteral("field")] = change.field;
    object[QStringLiteral("old")] = change.oldText;
    object[QStringLiteral("new")] = change.newText;
    return object;
}

QJsonArray warningsJson(std::int32_t warnings) {
    QJsonArray names;
    for (const char* name : warningNames(warnings))
        names.append(QString::fromLatin1(name));
    return names;
}

QJsonValue pathJson(const QString& path) {
    if (path.isEmpty())
        return QJsonValue::Null;
    return path;
}

QJsonObject toJson(const Verdict& verdict) {
    QStringList reasons;
    for (const Text& reason : verdict.reasons)
        reasons.append(reason.english());
    QJsonArray changes;
    for (const FieldChange& change : verdict.changes)
        changes.append(toJson(change));
    QJsonObject object;
    object[QStringLiteral("serialNumber")] = serialText(verdict.serialNumber);
    object[QStringLiteral("outcome")] = QString::fromLatin1(outcomeWord(verdict.outcome));
    object[QStringLiteral("reason")] = reasons.join(QLatin1Char(' '));
    object[QStringLiteral("changes")] = changes;
    object[QStringLiteral("snapshot")] = pathJson(verdict.snapshot);
    object[QStringLiteral("warnings")] = warningsJson(verdict.warnings);
    return object;
}

void sayVerdict(const Verdict& verdict) {
    for (const char* name : warningNames(verdict.warnings))
        sayToUser(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The library warned: %1"),
                       {QString::fromLatin1(name)}));
    sayToUser(outcomeSentence(verdict.outcome, serialText(verdict.serialNumber)));
    for (const Text& reason : verdict.reasons)
        sayToUser(reason);
    if (!verdict.snapshot.isEmpty())
        sayToUser(
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The state before is in %1"), {verdict.snapshot}));
}
