// The strict check of settings files: what it accepts, the tool's reader takes to the same record,
// with switches of 0 or 1; what it refuses, it says why, within the file.
#include "command/SettingsFile.h"
#include "files/CFileIO.h"
#include "tests/fuzz/FaultPlaces.h"
#include "tests/fuzz/FuzzFile.h"

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzFile onDisk(textOf(data, size));
    Faults faults;
    const auto file = InputFile::read(QString::fromLatin1(onDisk.path()), faults);
    if (!file)
        return 0; // too large
    const auto info = SettingsFile::check(*file, faults);
    require(info.has_value() == faults.empty());
    requirePlaces(faults, *file);
    KVA_NETWORKINFO read = {};
    const bool accepted = CFileIO().ReadNetworkIni(onDisk.path(), &read);
    if (info) {
        require(accepted && std::memcmp(&*info, &read, sizeof read) == 0);
        require(info->DHCPUse <= 1 && info->APConnectUse <= 1);
    }
    return 0;
}
