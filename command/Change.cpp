#include "command/Change.h"

InstrumentState Change::appliedTo(const InstrumentState& held) const {
    InstrumentState wanted = held;
    if (network)
        wanted.network = normalized(*network);
    else if (wanted.network)
        networkFields.mergeInto(*wanted.network);
    wanted.powerOffMode = powerOffMode.value_or(held.powerOffMode);
    if (calibration)
        wanted.calibration = *calibration;
    for (const ValueFile& accessory : accessories)
        accessory.mergeInto(wanted.calibration);
    return wanted;
}

Parts differingParts(const InstrumentState& held, const InstrumentState& wanted) {
    return {!isSame(held.calibration, wanted.calibration), held.powerOffMode != wanted.powerOffMode,
            !isSame(held.network, wanted.network)};
}
