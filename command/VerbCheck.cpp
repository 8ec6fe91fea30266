#include "command/AccessoryTexts.h"
#include "command/Report.h"
#include "command/SettingsFile.h"
#include "command/Snapshot.h"
#include "command/VerbSupport.h"

namespace {

/** The kind of a valid file, as a sentence; empty if the file has faults. */
Text checkFile(const QString& path, Faults& faults) {
    const auto file = InputFile::read(path, faults);
    if (!file)
        return {};
    switch (kindOf(*file)) {
    case FileKind::Settings:
        if (SettingsFile::check(*file, faults))
            return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: network settings, no fault"), {path});
        break;
    case FileKind::Snapshot:
        if (Snapshot::check(*file, faults))
            return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: a snapshot, no fault"), {path});
        break;
    case FileKind::Plan:
        if (const auto plan = Plan::check(*file, {}, faults)) {
            sayToUser(plan->notes);
            return plan->noFault(path);
        }
        break;
    case FileKind::Values:
        const CalibrationAccessory& accessory = ValueFile::likelyAccessory(*file);
        if (ValueFile::check(*file, accessory, faults))
            return Text(AccessoryTexts::of(accessory).noFault, {path});
        break;
    }
    return {};
}

} // namespace

ExitStatus check(const CheckOptions& options) {
    Faults faults;
    for (const QString& path : options.files) {
        const Text good = checkFile(path, faults);
        if (!good.isEmpty())
            print(good.translated());
    }
    sayToUser(faults);
    return faults.empty() ? Done : Usage;
}
