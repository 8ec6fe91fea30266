#include "command/DataFolder.h"

#include "command/InstrumentState.h"

#include <QDir>
#include <QStandardPaths>

QString DataFolder::path() {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    // A relative XDG_DATA_HOME is invalid and ignored: the folder must not change with the working
    // folder.
    if (QDir::isRelativePath(folder))
        folder = QDir::homePath() + QStringLiteral("/.local/share");
    return folder + QStringLiteral("/vq-tl4ctl");
}

QString DataFolder::snapshots() {
    return path() + QStringLiteral("/snapshots");
}

QString DataFolder::unfinishedMark(std::int32_t serialNumber) {
    return path() + QStringLiteral("/unfinished/%1.json").arg(serialText(serialNumber));
}

QString DataFolder::lockFile() {
    return path() + QStringLiteral("/write.lock");
}
