#ifndef COMMAND_CHANGE_H
#define COMMAND_CHANGE_H

#include "command/InstrumentState.h"
#include "command/NetworkFields.h"
#include "command/ValueFile.h"

#include <optional>
#include <vector>

/** The wanted state of an instrument. Parts that are not named stay unchanged. */
struct Change {
    std::optional<KVA_NETWORKINFO> network;
    NetworkFields networkFields; ///< some of them; without effect beside `network`
    std::optional<std::uint8_t> powerOffMode;
    std::optional<KVA_JIG_CALREFDATA> calibration; ///< the whole record
    std::vector<ValueFile> accessories;            ///< parts of the record

    /** The wanted state of an instrument that holds @p held. */
    InstrumentState appliedTo(const InstrumentState& held) const;
};

/** The parts that are written separately. */
struct Parts {
    bool calibration = false;
    bool powerOff = false;
    bool network = false;

    bool any() const { return calibration || powerOff || network; }
};

/** The parts that differ in any byte. */
Parts differingParts(const InstrumentState& held, const InstrumentState& wanted);

#endif
