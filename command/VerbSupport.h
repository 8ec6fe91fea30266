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

/** Functions that several verbs need. */

/** A typed serial number: only digits, with or without leading zeros. */
std::optional<std::int32_t> parseSerial(const QString& text);
/** The same, with a message on standard error if it is not one. */
std::optional<std::int32_t> requireSerial(const QString& text);

enum class FileKind { Settings, Snapshot, Plan, Values };
/** The kind, by the extension `.ini`, by the beginning of the content, by the columns of a plan. */
FileKind kindOf(const InputFile& file);

/** Connects, reads everything twice, disconnects. Empty, or the reason of the failure. */
Text readInstrument(CallWatch& watch, std::int32_t serialNumber, InstrumentState& state);

/** The serial numbers in the port list. Empty, or the reason of the failure. */
Text attachedInstruments(std::vector<std::int32_t>& serials);

/** A plan without a fault, and the file that it was read from. */
struct CheckedPlan {
    InputFile file;
    Plan plan;
};
/** Reads and checks a plan; reports every fault on standard error.
    @param isOffline  no instrument has to be attached
    @param only       of the plan's instruments; empty for all
    @return `Done` if @p plan is filled; otherwise the exit status */
ExitStatus requirePlan(const QString& path, bool isOffline, const std::vector<std::int32_t>& only,
                       CheckedPlan& plan);

/** Refuses a command that must ask without a terminal, before anything is done. */
bool canBeConfirmed(const WriteOptions& options);

/** Copies the options for writing into the order. */
void prepare(Order& order, const WriteOptions& options);

/** Carries out the order in a run of its own, and reports its verdict.
    @param inputs  what the journal stores of the user's files */
ExitStatus carryOut(Order& order, const WriteOptions& options,
                    const std::vector<JournalInput>& inputs);

void report(const Verdict& verdict, bool asJson);

/** Opens the journal that the command line names, or the usual one. @return null, and the reason in
    @p problem, if it cannot be used or does not exist */
std::unique_ptr<JournalReader> openJournal(Text& problem);
/** The run with that number. Empty if it is found; otherwise the reason. */
Text findRun(const QString& number, std::optional<JournalRun>& run);

/** Why a file that the user named cannot be created: its folder does not exist, or the file does.
    Empty if it can. */
Text creationProblem(const QString& path);
/** Writes a file that the user named, completely or not at all. Empty on success; otherwise the
    reason. */
Text createFile(const QString& path, const QByteArray& content);

#endif
