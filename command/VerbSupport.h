#ifndef COMMAND_VERBSUPPORT_H
#define COMMAND_VERBSUPPORT_H

#include "command/CallWatch.h"
#include "command/InputFile.h"
#include "command/InstrumentState.h"
#include "command/JournalReader.h"
#include "command/Plan.h"
#include "command/Transaction.h"
#include "command/Verbs.h"

#include <QString>

#include <memory>
#include <optional>

/** What several verbs need. */

/** A serial number as it is typed: digits alone, with leading zeros or without. */
std::optional<std::int32_t> parseSerial(const QString& text);
/** The same, and a word on standard error where it is none. */
std::optional<std::int32_t> requireSerial(const QString& text);

enum class FileKind { Settings, Snapshot, Plan, Values };
/** By the ending `.ini`, by what the content begins with, and by the columns of a plan. */
FileKind kindOf(const InputFile& file);

/** Connects, reads everything twice, disconnects. Empty, or why it could not be read. */
Text readInstrument(CallWatch& watch, std::int32_t serialNumber, InstrumentState& state);

/** The serial numbers that the port list has. Empty, or why it could not be asked for. */
Text attachedInstruments(std::vector<std::int32_t>& serials);

/** A plan without a fault, and the file that it was read from. */
struct CheckedPlan {
    InputFile file;
    Plan plan;
};
/** Reads and checks a plan; says all that is wrong with it on standard error.
    @param isOffline  no instrument has to be attached
    @param only       of the plan's instruments; empty for all
    @return `Done` where @p plan is filled; otherwise the exit status */
ExitStatus requirePlan(const QString& path, bool isOffline, const std::vector<std::int32_t>& only,
                       CheckedPlan& plan);

/** Refuses a question that nobody could answer, before anything is done. */
bool canBeConfirmed(const WriteOptions& options);

/** Puts what the user wants of every write into the order. */
void prepare(Order& order, const WriteOptions& options);

/** Makes the transaction, in a run of its own, and reports its verdict.
    @param inputs  what the journal keeps of the files that the user gave */
ExitStatus carryOut(Order& order, const WriteOptions& options,
                    const std::vector<JournalInput>& inputs);

void report(const Verdict& verdict, bool asJson);

/** Opens the journal that the command line names, or the usual one. @return nothing, and why in
    @p problem, where it cannot be used or is not there */
std::unique_ptr<JournalReader> openJournal(Text& problem);
/** The run of that number. Empty when it is found; otherwise why it is not. */
Text findRun(const QString& number, std::optional<JournalRun>& run);

/** Why a file that the user named cannot be created: its folder is not there, or it is there
    already. Empty when neither is so. */
Text creationProblem(const QString& path);
/** Writes a file that the user named, whole or not at all. Empty when it is written; otherwise why
    not. */
Text createFile(const QString& path, const QByteArray& content);

#endif
