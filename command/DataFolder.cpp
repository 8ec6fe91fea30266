#include "command/DataFolder.h"

#include "command/InstrumentState.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

QString& namedJournal() {
    static QString path;
    return path;
}

} // namespace

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
    return unfinishedMarks() + QStringLiteral("/%1.json").arg(serialText(serialNumber));
}

QString DataFolder::unfinishedMarks() {
    return path() + QStringLiteral("/unfinished");
}

QString DataFolder::lockFile() {
    return path() + QStringLiteral("/write.lock");
}

QString DataFolder::journal() {
    if (!namedJournal().isEmpty())
        return namedJournal();
    return usualJournal();
}

QString DataFolder::usualJournal() {
    return path() + QStringLiteral("/journal.sqlite");
}

void DataFolder::useJournal(const QString& path) {
    namedJournal() = QFileInfo(path).absoluteFilePath();
}
