#include "command/UnfinishedMark.h"

#include "command/DataFolder.h"
#include "command/DurableFile.h"
#include "command/InstrumentState.h"
#include "command/JournalReader.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

QString quotedForShell(const QString& path) {
    static const QRegularExpression special(QStringLiteral("[^A-Za-z0-9_./:@%+=,-]"));
    if (!path.contains(special))
        return path;
    QString quoted = path;
    quoted.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

/** Empty for the usual journal, which a command need not name. */
QString nameForUser(const QString& journal) {
    if (journal == DataFolder::usualJournal())
        return {};
    return journal;
}

} // namespace

UnfinishedMark::UnfinishedMark(std::int32_t serialNumber, JournalDatabase* database)
    : m_serialNumber(serialNumber), m_journal(nameForUser(DataFolder::journal())) {
    lookIntoFile();
    lookInto(DataFolder::journal(), database);
    // `--journal` does not hide a mark in the usual journal.
    if (!m_exists && DataFolder::journal() != DataFolder::usualJournal())
        lookInto(DataFolder::usualJournal(), nullptr);
}

void UnfinishedMark::lookIntoFile() {
    QFile file(DataFolder::unfinishedMark(m_serialNumber));
    m_exists = QFileInfo(file).isSymLink() || file.exists();
    if (file.open(QIODevice::ReadOnly))
        m_snapshot =
            QJsonDocument::fromJson(file.readAll()).object()[QStringLiteral("snapshot")].toString();
}

void UnfinishedMark::lookInto(const QString& journal, JournalDatabase* database) {
    Text problem;
    std::unique_ptr<JournalReader> reader;
    if (database != nullptr)
        reader = std::make_unique<JournalReader>(*database);
    else
        reader = JournalReader::open(journal, problem);
    std::vector<JournalInstrument> parts;
    if (reader)
        problem = reader->unfinished(m_serialNumber, parts);
    if (!problem.isEmpty()) {
        m_problem = problem;
        m_exists = true;
    } else if (!parts.empty()) {
        m_exists = true;
        m_journal = nameForUser(journal);
        // The state before the first part: the later ones began from an unknown state.
        if (m_snapshot.isEmpty())
            m_snapshot = parts.front().snapshotPath;
    }
}

Text UnfinishedMark::removeFile() const {
    return DurableFile::remove(DataFolder::unfinishedMark(m_serialNumber));
}

QString UnfinishedMark::withJournal(const QString& command) const {
    if (m_journal.isEmpty())
        return command;
    return command + QStringLiteral(" --journal ") + quotedForShell(m_journal);
}

Text UnfinishedMark::told() const {
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                  "An earlier write to this instrument did not end: what it "
                                  "answers may not be in its memory. To end it, run %1. To put the "
                                  "state before back in any case, run: %2"),
                {recoverCommand(), restoreCommand()});
}

QString UnfinishedMark::recoverCommand() const {
    return withJournal(QStringLiteral("vq-tl4ctl recover"));
}

QString UnfinishedMark::restoreCommand(const QString& snapshot) const {
    const QString path = m_snapshot.isEmpty() ? snapshot : m_snapshot;
    QString file = QStringLiteral("SNAPSHOT");
    if (!path.isEmpty())
        file = quotedForShell(path);
    return withJournal(QStringLiteral("vq-tl4ctl restore %1 ").arg(serialText(m_serialNumber)) +
                       file);
}
