#ifndef COMMAND_SETTINGSFILE_H
#define COMMAND_SETTINGSFILE_H

#include "command/Fault.h"
#include "command/InputFile.h"
#include "instrument/KvaSdk.h"

#include <optional>

/**
 * The content of a network settings file, checked strictly: what is accepted here, the tool's
 * reader takes to the same record. Beyond what the tool refuses, each address has to be four
 * numbers from 0 to 255, each switch a number, and no value may hold a NUL or a CR.
 */
namespace SettingsFile {

/** Nothing, and a fault for everything that is wrong in @p faults, unless the file is right. */
std::optional<KVA_NETWORKINFO> check(const InputFile& file, Faults& faults);

} // namespace SettingsFile

#endif
