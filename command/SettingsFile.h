#ifndef COMMAND_SETTINGSFILE_H
#define COMMAND_SETTINGSFILE_H

#include "command/Fault.h"
#include "command/InputFile.h"
#include "instrument/KvaSdk.h"

#include <optional>

/**
 * The content of a network settings file, checked strictly: a file that is accepted here gives the
 * same record in the tool's reader. In addition to the tool's rules, each address must be four
 * numbers from 0 to 255, each switch a number, and no value may have a NUL or a CR.
 */
namespace SettingsFile {

/** Nothing, and every error in @p faults, unless the file is valid. */
std::optional<KVA_NETWORKINFO> check(const InputFile& file, Faults& faults);

} // namespace SettingsFile

#endif
