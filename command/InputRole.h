#ifndef COMMAND_INPUTROLE_H
#define COMMAND_INPUTROLE_H

#include "instrument/CalibrationAccessory.h"

#include <QString>

#include <cstdint>
#include <optional>

/** What an input file is for. Constant; any thread. */
struct InputRole {
    static const InputRole network;
    static const InputRole whitePlate;
    static const InputRole ambientAdapter;
    static const InputRole snapshot;
    static const InputRole plan;

    /** The role that the journal stored; null if it is none of these. */
    static const InputRole* stored(const QString& text);
    /** The serial number that was stored with the role; empty if none was. */
    static QString storedSerial(const QString& text) { return text.section(QLatin1Char(' '), 1); }

    /** As the journal stores it.
        @param serialNumber  of the only instrument that the file is for, stored behind a blank */
    QString toStore(std::optional<std::int32_t> serialNumber) const;

    const char* word;                      ///< of the journal
    const char* name;                      ///< for people, not translated
    const CalibrationAccessory* accessory; ///< whose values the file has; null if it has none
};

#endif
