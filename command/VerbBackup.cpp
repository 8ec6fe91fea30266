#include "command/Report.h"
#include "command/Snapshot.h"
#include "command/UnfinishedMark.h"
#include "command/VerbSupport.h"

#include <QDir>

namespace {

/** The named instruments, or all. False, after a message, if they cannot be found. */
bool chooseInstruments(const BackupOptions& options, std::vector<std::int32_t>& serials,
                       ExitStatus& status) {
    for (const QString& text : options.serials) {
        const auto serial = requireSerial(text);
        status = Usage;
        if (!serial)
            return false;
        serials.push_back(*serial);
    }
    if (!options.all)
        return true;
    Text problem = attachedInstruments(serials);
    if (problem.isEmpty() && serials.empty())
        problem = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "No instrument is attached."));
    if (problem.isEmpty())
        return true;
    sayToUser(problem);
    status = RefusedStatus;
    return false;
}

Text backUp(std::int32_t serialNumber, const BackupOptions& options) {
    if (UnfinishedMark(serialNumber).exists())
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "%1: an earlier write did not end, so what the instrument "
                                      "answers may not be in its memory: it is not backed up."),
                    {serialText(serialNumber)});
    CallWatch watch;
    InstrumentState state;
    Text problem = readInstrument(watch, serialNumber, state);
    if (!problem.isEmpty())
        return problem;
    Snapshot snapshot = Snapshot::of(state);
    if (options.withoutKey)
        snapshot.removeKey();
    QString path;
    Text failure = snapshot.writeTo(QDir(options.folder).absolutePath(), path);
    if (failure.isEmpty())
        print(path);
    return failure;
}

} // namespace

ExitStatus backup(const BackupOptions& options) {
    std::vector<std::int32_t> serials;
    ExitStatus status = Done;
    if (!chooseInstruments(options, serials, status))
        return status;
    status = Done;
    for (const std::int32_t serial : serials) {
        Text problem = backUp(serial, options);
        if (problem.isEmpty())
            continue;
        sayToUser(problem);
        status = RefusedStatus;
    }
    return status;
}
