#include "command/Journal.h"

#include "command/InputFile.h"
#include "command/InputRole.h"
#include "command/Provenance.h"
#include "command/Snapshot.h"
#include "files/IniLine.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSqlQuery>

#include <cstring>
#include <unistd.h>

namespace {

using Sync = JournalDatabase::Sync;

QString jsonText(const QStringList& texts) {
    return QString::fromUtf8(
        QJsonDocument(QJsonArray::fromStringList(texts)).toJson(QJsonDocument::Compact));
}

/** An empty text for a null one, which would be stored as NULL. */
QString present(const QString& text) {
    if (text.isNull())
        return QStringLiteral("");
    return text;
}

QByteArray present(const QByteArray& bytes) {
    if (bytes.isNull())
        return QByteArray("");
    return bytes;
}

bool isWriting(const char* function) {
    for (const char* name :
         {"KVA_SetNetworkInfo", "KVA_SetShutdownTime", "KVA_JIG_SetFactoryCalib_CALREFDATA",
          "KVA_JIG_SetFactoryCalib_WriteSector"}) {
        if (std::strcmp(function, name) == 0)
            return true;
    }
    return false;
}

/** Masks every value that could be read as the key, in any section. */
QByteArray withMaskedKey(const QByteArray& content) {
    QByteArray result;
    for (const QByteArray& line : content.split('\n')) {
        const std::string_view text(line.constData(), static_cast<std::size_t>(line.size()));
        std::string_view value;
        if (!result.isNull())
            result += '\n';
        if (IniLine::assigns(text, "EncryptKey", value) && !value.empty())
            result += line.left(static_cast<int>(value.data() - text.data())) + "********";
        else
            result += line;
    }
    return result;
}

const char unfinishedReason[] = "The program ended before anything was written to the instrument.";

JournalRow outcomeRow(qint64 instrument, Outcome outcome, const QStringList& reasons,
                      std::int32_t warnings) {
    return JournalRow("outcome")
        .with("instrument", instrument)
        .with("word", QString::fromLatin1(outcomeWord(outcome)))
        .with("reasons", jsonText(reasons))
        .with("warnings", warnings)
        .with("ended", JournalDatabase::now());
}

} // namespace

JournalInput journalInput(const InputRole& role, const InputFile& file,
                          std::optional<std::int32_t> serialNumber) {
    const bool isSettings = &role == &InputRole::network;
    const QByteArray content = isSettings ? withMaskedKey(file.content) : file.content;
    return {role.toStore(serialNumber), file.path, file.sha256(), content, isSettings};
}

std::unique_ptr<Journal> Journal::open(const QString& path, Text& problem) {
    auto database = JournalDatabase::open(path, JournalDatabase::Access::Write, problem);
    if (!database)
        return nullptr;
    return std::unique_ptr<Journal>(new Journal(std::move(database)));
}

Text Journal::beginRun(const std::vector<JournalInput>& inputs) {
    return m_database->atomically(Sync::Durable, [&] {
        Text problem = m_database->insert(
            JournalRow("run")
                .with("started", JournalDatabase::now())
                .with("arguments", jsonText(QCoreApplication::arguments().mid(1)))
                .with("user", present(Provenance::user()))
                .with("host", present(Provenance::host()))
                .with("process", static_cast<qint64>(::getpid()))
                .with("tool_version", Provenance::toolVersion())
                .with("library_path", present(Provenance::libraryPath()))
                .with("library_sha256", QString::fromLatin1(Provenance::librarySha256())),
            &m_run);
        for (const JournalInput& input : inputs) {
            if (problem.isEmpty())
                problem = m_database->insert(JournalRow("input_file")
                                                 .with("run", m_run)
                                                 .with("role", input.role)
                                                 .with("path", present(input.path))
                                                 .with("sha256", QString::fromLatin1(input.sha256))
                                                 .with("content", present(input.content))
                                                 .with("is_masked", input.isMasked ? 1 : 0));
        }
        return problem;
    });
}

Text Journal::endRun(int exitStatus) {
    return m_database->atomically(Sync::Durable, [&] {
        return m_database->insert(JournalRow("run_end")
                                      .with("run", m_run)
                                      .with("ended", JournalDatabase::now())
                                      .with("exit_status", exitStatus));
    });
}

Text Journal::closeEarlierRuns() {
    const auto collect = [&](const char* statement, std::vector<qint64>& ids) {
        return m_database->selectFor(
            m_run, QString::fromLatin1(statement),
            [&](const QSqlQuery& row) { ids.push_back(row.value(0).toLongLong()); });
    };
    return m_database->atomically(Sync::Durable, [&] {
        std::vector<qint64> instruments;
        std::vector<qint64> runs;
        Text problem = collect("SELECT id FROM instrument WHERE run < ?"
                               " AND id NOT IN (SELECT instrument FROM outcome)"
                               " AND id NOT IN (SELECT instrument FROM mark)",
                               instruments);
        if (problem.isEmpty())
            problem = collect("SELECT id FROM run WHERE id < ?"
                              " AND id NOT IN (SELECT run FROM run_end)",
                              runs);
        for (const qint64 id : instruments) {
            if (problem.isEmpty())
                problem = m_database->insert(outcomeRow(
                    id, Outcome::Unchanged, QStringList(QString::fromLatin1(unfinishedReason)), 0));
        }
        for (const qint64 id : runs) {
            if (problem.isEmpty())
                problem = m_database->insert(JournalRow("run_end")
                                                 .with("run", id)
                                                 .with("ended", JournalDatabase::now())
                                                 .with("found_by", m_run));
        }
        return problem;
    });
}

Text Journal::addVerification(qint64 instrument, const QString& word) {
    return m_database->atomically(Sync::Durable, [&] {
        return m_database->insert(JournalRow("verification")
                                      .with("instrument", instrument)
                                      .with("at", JournalDatabase::now())
                                      .with("word", word));
    });
}

JournalEntry::JournalEntry(Journal& journal, std::int32_t serialNumber)
    : m_database(journal.database()), m_serialNumber(serialNumber) {
    note(m_database.atomically(Sync::Process, [&] {
        return m_database.insert(JournalRow("instrument")
                                     .with("run", journal.run())
                                     .with("serial_number", serialNumber)
                                     .with("began", JournalDatabase::now()),
                                 &m_id);
    }));
}

void JournalEntry::note(const Text& problem) {
    if (m_problem.isEmpty())
        m_problem = problem;
}

void JournalEntry::stepBegins(const char* name) {
    note(m_database.atomically(Sync::Process, [&] {
        return m_database.insert(JournalRow("step")
                                     .with("instrument", m_id)
                                     .with("name", QString::fromLatin1(name))
                                     .with("began", JournalDatabase::now()),
                                 &m_step);
    }));
}

Text JournalEntry::addChanges(const FieldChanges& changes) {
    if (m_hasChanges)
        return {};
    for (const FieldChange& change : changes) {
        Text problem = m_database.insert(JournalRow("field_change")
                                             .with("instrument", m_id)
                                             .with("field", change.field)
                                             .with("old", present(change.oldText))
                                             .with("new", present(change.newText)));
        if (!problem.isEmpty())
            return problem;
    }
    m_hasChanges = true;
    return {};
}

Text JournalEntry::writingBegins(const Snapshot& before, const QString& path,
                                 const InstrumentState& wanted, const FieldChanges& changes) {
    if (!m_problem.isEmpty())
        return m_problem;
    const auto addSnapshot = [&](const char* kind, const Snapshot& snapshot, const QString& file) {
        return m_database.insert(JournalRow("snapshot")
                                     .with("instrument", m_id)
                                     .with("kind", QString::fromLatin1(kind))
                                     .with("path", present(file))
                                     .with("content", snapshot.toJson()));
    };
    // `writeBegins` syncs it, together with the call, before anything is written.
    return m_database.atomically(Sync::Process, [&] {
        Text problem = addSnapshot("before", before, path);
        if (problem.isEmpty())
            problem = addSnapshot("wanted", Snapshot::of(wanted), {});
        if (problem.isEmpty())
            problem = addChanges(changes);
        if (problem.isEmpty())
            problem = m_database.insert(JournalRow("mark").with("instrument", m_id));
        return problem;
    });
}

Text JournalEntry::addCall(const char* function, Sync sync) {
    return m_database.atomically(sync, [&] {
        return m_database.insert(JournalRow("call")
                                     .with("step", m_step)
                                     .with("function", QString::fromLatin1(function))
                                     .with("writes", isWriting(function) ? 1 : 0)
                                     .with("began", JournalDatabase::now()),
                                 &m_call);
    });
}

Text JournalEntry::writeBegins(const char* function) {
    if (m_problem.isEmpty())
        note(addCall(function, Sync::Durable));
    m_isWaiting = m_problem.isEmpty();
    return m_problem;
}

void JournalEntry::callBegins(const char* function) {
    if (!m_isWaiting) {
        m_call = 0;
        note(addCall(function, Sync::Process));
    }
    m_isWaiting = false;
    m_begin = std::chrono::steady_clock::now();
}

void JournalEntry::callEnded(const CallResult& result) {
    const auto taken = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - m_begin);
    if (m_call == 0)
        return; // a problem was reported already
    note(m_database.atomically(Sync::Process, [&] {
        return m_database.insert(JournalRow("call_result")
                                     .with("call", m_call)
                                     .with("code", result.code)
                                     .with("microseconds", static_cast<qint64>(taken.count())));
    }));
    m_call = 0;
}

Text JournalEntry::ends(const Verdict& verdict, bool isSettled) {
    if (!m_problem.isEmpty())
        return m_problem;
    QStringList reasons;
    for (const Text& reason : verdict.reasons)
        reasons.append(reason.english());
    std::vector<qint64> marks;
    return m_database.atomically(Sync::Durable, [&] {
        Text problem = addChanges(verdict.changes);
        if (problem.isEmpty())
            problem =
                m_database.insert(outcomeRow(m_id, verdict.outcome, reasons, verdict.warnings));
        if (problem.isEmpty() && isSettled)
            problem = m_database.selectFor(
                m_serialNumber,
                QStringLiteral("SELECT mark.instrument FROM mark"
                               " JOIN instrument ON instrument.id = mark.instrument"
                               " WHERE instrument.serial_number = ?"
                               " AND mark.instrument NOT IN (SELECT mark FROM mark_end)"),
                [&](const QSqlQuery& row) { marks.push_back(row.value(0).toLongLong()); });
        for (const qint64 mark : marks) {
            if (problem.isEmpty())
                problem = m_database.insert(
                    JournalRow("mark_end").with("mark", mark).with("ended_by", m_id));
        }
        return problem;
    });
}
