#ifndef COMMAND_DIFFERENCE_H
#define COMMAND_DIFFERENCE_H

#include "command/InstrumentState.h"

#include <QString>

#include <vector>

/** A field that changes. The security key is masked in both. */
struct FieldChange {
    QString field; ///< "network.ssid", "whitePlate.values[3]"
    QString oldText;
    QString newText;
};

using FieldChanges = std::vector<FieldChange>;

/** The fields of the network settings that differ; none when one of the two is missing.
    @param withKey  false: the security key is not compared */
void addDifference(const std::optional<KVA_NETWORKINFO>& from,
                   const std::optional<KVA_NETWORKINFO>& to, bool withKey, FieldChanges& changes);

/** The fields that differ, among those that can be written: network, power-off, calibration. */
FieldChanges difference(const InstrumentState& from, const InstrumentState& to,
                        bool withKey = true);

#endif
