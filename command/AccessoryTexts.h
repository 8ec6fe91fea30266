#ifndef COMMAND_ACCESSORYTEXTS_H
#define COMMAND_ACCESSORYTEXTS_H

#include "command/InputRole.h"

/** How the command writes of a calibration accessory. Constant; any thread. */
struct AccessoryTexts {
    static const AccessoryTexts all[2]; ///< white plate, ambient adapter

    static const AccessoryTexts& of(const CalibrationAccessory& accessory);

    const CalibrationAccessory& accessory;
    const InputRole& role;   ///< of its value files
    const char* field;       ///< its name in a difference and in JSON
    const char* shown;       ///< of the serial number %1; not translated, as the others
    const char* noFault;     ///< of the value file %1
    const char* implausible; ///< of a value; its arguments are in implausibleText()
};

#endif
