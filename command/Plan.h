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

/** What a row of a plan wants of one instrument. */
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
    std::optional<std::vector<std::int32_t>> attached; ///< nothing: none is looked for
    std::vector<std::int32_t> only;                    ///< of the plan's; empty for all
};

/**
 * A spreadsheet with a header and a row for each instrument: comma or semicolon between the cells,
 * LF or CR LF, UTF-8 with or without a byte-order mark. An empty cell leaves things as they are.
 */
struct Plan {
    std::vector<PlanRow> rows; ///< of the instruments that are needed, each of another one
    Faults notes;              ///< what is right and looks wrong

    /** Nothing, and a fault for everything that is wrong in @p faults, unless the plan and all
        files that it names are right, and the instruments that it needs are attached. */
    static std::optional<Plan> check(const InputFile& file, const PlanNeeds& needs, Faults& faults);

    /** Whether the file's header has a plan's column of serial numbers. */
    static bool isPlan(const InputFile& file);

    /** A line that says that the plan has no fault. @param path  of its file */
    Text noFault(const QString& path) const;

    /** What the journal keeps of the file: with the cells of the column "key" masked. */
    static JournalInput journalInput(const InputFile& file);
};

/** The names of a plan's columns, in the order of a new one. */
const QStringList& planColumns();

#endif
