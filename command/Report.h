#ifndef COMMAND_REPORT_H
#define COMMAND_REPORT_H

#include "command/Fault.h"
#include "command/Plausibility.h"
#include "command/Verdict.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

/** A line for people, on standard error. Any thread. */
void sayToUser(const Text& text);
void sayToUser(const QString& line);
/** Every fault, a line each. */
void sayToUser(const Faults& faults);

/** A line of the result, on standard output. */
void print(const QString& line);
/** One object, on a line of its own, on standard output. */
void print(const QJsonObject& object);

/** A field with its old and its new text: `~ network.ssid: "a" -> "b"`. */
QString changeLine(const FieldChange& change);
/** A note after a change: " (another key)" if both texts are masked; mostly empty. */
QString changeNote(const FieldChange& change);
/** An implausible value as a sentence, with its place from 1 and its index from 0. */
Text implausibleText(const CalibrationAccessory& accessory, const Implausible& value);

/** The difference of an instrument, on standard error. */
void sayDifference(std::int32_t serialNumber, const FieldChanges& changes);

QJsonObject toJson(const FieldChange& change);
/** The names of the library's warnings. */
QJsonArray warningsJson(std::int32_t warnings);
/** Null for an empty path. */
QJsonValue pathJson(const QString& path);
QJsonObject toJson(const Verdict& verdict);
/** The meaning of an outcome, as a sentence. @param serial  of the instrument */
Text outcomeSentence(Outcome outcome, const QString& serial);
/** The verdict for people, on standard error. */
void sayVerdict(const Verdict& verdict);

#endif
