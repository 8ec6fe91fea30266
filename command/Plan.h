#ifndef COMMAND_PLAN_H
#define COMMAND_PLAN_H

#include "command/Fault.h"
#include "command/InputFile.h"
#include "command/JournalReader.h"
#include "command/NetworkFields.h"
#include "command/ValueFile.h"

#include <cstdint>
#include <optional>
#include <vector>

/** A row of a plan: the changes to one instrument. */
struct PlanRow {
    int number = 0; ///< as a spreadsheet counts: the header is 1
    std::int32_t serialNumber = 0;
    NetworkFields network;
    std::optional<std::uint8_t> powerOffMode; ///< `eShutdownTime_…`
    std::vector<ValueFile> accessories;
    std::vector<JournalInput> inputs; ///< the files that the row names
};

/** The instruments that a plan needs. */
struct PlanNeeds {
    std::optional<std::vector<std::int32_t>> attached; ///< nothing: not checked
    std::vector<std::int32_t> only;                    ///< some of the plan's; empty for all
};

/**
 * A spreadsheet with a header and a row for each instrument: comma or semicolon between the cells,
 * LF or CR LF, UTF-8 with or without a byte-order mark. An empty cell changes nothing.
 */
struct Plan {
    std::vector<PlanRow> rows; ///< of the needed instruments, each for a different one
    Faults notes;              ///< valid cells that look like mistakes

    /** Nothing, and every error in @p faults, unless the plan and all files that it names are
        valid, and the instruments that it needs are attached. */
    static std::optional<Plan> check(const InputFile& file, const PlanNeeds& needs, Faults& faults);

    /** Whether the file's header has a plan's column of serial numbers. */
    static bool isPlan(const InputFile& file);

    /** A line that says that the plan has no fault. @param path  of its file */
    Text noFault(const QString& path) const;

    /** What the journal stores of the file: the cells of the column "key" are masked. */
    static JournalInput journalInput(const InputFile& file);
};

/** The names of a plan's columns, in the order of a new one. */
const QStringList& planColumns();

#endif
