#ifndef COMMAND_CHANGE_H
#define COMMAND_CHANGE_H

#include "command/InstrumentState.h"
#include "command/NetworkFields.h"
#include "command/ValueFile.h"

#include <optional>
#include <vector>

/** What an instrument is to hold. What is not named stays as it is. */
struct Change {
    std::optional<KVA_NETWORKINFO> network;
    NetworkFields networkFields; ///< some of them; without effect beside `network`
    /** Whether somebody asked for network settings, and not for all that there is. */
    bool namesNetwork = false;
    std::optional<std::uint8_t> powerOffMode;
    std::optional<KVA_JIG_CALREFDATA> calibration; ///< the whole record
    std::vector<ValueFile> accessories;            ///< parts of the record

    /** What an instrument that holds @p held is to hold. */
    InstrumentState appliedTo(const InstrumentState& held) const;
};

/** The parts that are written one by one. */
struct Parts {
    bool calibration = false;
    bool powerOff = false;
    bool network = false;

    bool any() const { return calibration || powerOff || network; }
};

/** The parts of which any byte differs. */
Parts differingParts(const InstrumentState& held, const InstrumentState& wanted);

#endif
