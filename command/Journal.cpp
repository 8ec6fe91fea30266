#include "command/Journal.h"

#include "command/InputFile.h"
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
    return text.isNull() ? QStringLiteral("") : text;
}

QByteArray present(const QByteArray& bytes) {
    return bytes.isNull() ? QByteArray("") : bytes;
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

} // namespace

JournalInput journalInput(const QString& role, const InputFile& file) {
    const bool isSettings = role == QLatin1String("network");
    const QByteArray content = isSettings ? withMaskedKey(file.content) : file.content;
    return {role, file.path, file.sha256(), content, isSettings};
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
            "run",
            {QStringLiteral("started"), QStringLiteral("arguments"), QStringLiteral("user"),
             QStringLiteral("host"), QStringLiteral("process"), QStringLiteral("tool_version"),
             QStringLiteral("library_path"), QStringLiteral("library_sha256")},
            {JournalDatabase::now(), jsonText(QCoreApplication::arguments().mid(1)),
             present(Provenance::user()), present(Provenance::host()),
             static_cast<qint64>(::getpid()), Provenance::toolVersion(),
             present(Provenance::libraryPath()), QString::fromLatin1(Provenance::librarySha256())},
            &m_run);
        for (const JournalInput& input : inputs) {
            if (problem.isEmpty())
                problem = m_database->insert(
                    "input_file",
                    {QStringLiteral("run"), QStringLiteral("role"), QStringLiteral("path"),
                     QStringLiteral("sha256"), QStringLiteral("content"),
                     QStringLiteral("is_masked")},
                    {m_run, input.role, present(input.path), QString::fromLatin1(input.sha256),
                     present(input.content), input.isMasked ? 1 : 0});
        }
        return problem;
    });
}

Text Journal::endRun(int exitStatus) {
    return m_database->atomically(Sync::Durable, [&] {
        return m_database->insert(
            "run_end",
            {QStringLiteral("run"), QStringLiteral("ended"), QStringLiteral("exit_status")},
            {m_run, JournalDatabase::now(), exitStatus});
    });
}

Text Journal::closeEarlierRuns() {
    const auto collect = [&](const char* statement, std::vector<qint64>& ids) {
        return m_database->select(
            QString::fromLatin1(statement), {m_run},
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
                problem = m_database->insert(
                    "outcome",
                    {QStringLiteral("instrument"), QStringLiteral("word"),
                     QStringLiteral("reasons"), QStringLiteral("warnings"),
                     QStringLiteral("ended")},
                    {id, QString::fromLatin1(outcomeWord(Outcome::Unchanged)),
                     jsonText({QString::fromLatin1(unfinishedReason)}), 0, JournalDatabase::now()});
        }
        for (const qint64 id : runs) {
            if (problem.isEmpty())
                problem = m_database->insert(
                    "run_end",
                    {QStringLiteral("run"), QStringLiteral("ended"), QStringLiteral("found_by")},
                    {id, JournalDatabase::now(), m_run});
        }
        return problem;
    });
}

Text Journal::addVerification(qint64 instrument, const QString& word) {
    return m_database->atomically(Sync::Durable, [&] {
        return m_database->insert(
            "verification",
            {QStringLiteral("instrument"), QStringLiteral("at"), QStringLiteral("word")},
            {instrument, JournalDatabase::now(), word});
    });
}

JournalEntry::JournalEntry(Journal& journal, std::int32_t serialNumber)
    : m_database(journal.database()), m_serialNumber(serialNumber) {
    note(m_database.atomically(Sync::Process, [&] {
        return m_database.insert(
            "instrument",
            {QStringLiteral("run"), QStringLiteral("serial_number"), QStringLiteral("began")},
            {journal.run(), serialNumber, JournalDatabase::now()}, &m_id);
    }));
}

void JournalEntry::note(const Text& problem) {
    if (m_problem.isEmpty())
        m_problem = problem;
}

void JournalEntry::stepBegins(const char* name) {
    note(m_database.atomically(Sync::Process, [&] {
        return m_database.insert(
            "step", {QStringLiteral("instrument"), QStringLiteral("name"), QStringLiteral("began")},
            {m_id, QString::fromLatin1(name), JournalDatabase::now()}, &m_step);
    }));
}

Text JournalEntry::addChanges(const FieldChanges& changes) {
    if (m_hasChanges)
        return {};
    for (const FieldChange& change : changes) {
        Text problem = m_database.insert(
            "field_change",
            {QStringLiteral("instrument"), QStringLiteral("field"), QStringLiteral("old"),
             QStringLiteral("new")},
            {m_id, change.field, present(change.oldText), present(change.newText)});
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
        return m_database.insert(
            "snapshot",
            {QStringLiteral("instrument"), QStringLiteral("kind"), QStringLiteral("path"),
             QStringLiteral("content")},
            {m_id, QString::fromLatin1(kind), present(file), snapshot.toJson()});
    };
    return m_database.atomically(Sync::Durable, [&] {
        Text problem = addSnapshot("before", before, path);
        if (problem.isEmpty())
            problem = addSnapshot("wanted", Snapshot::of(wanted), {});
        if (problem.isEmpty())
            problem = addChanges(changes);
        return problem.isEmpty() ? m_database.insert("mark", {QStringLiteral("instrument")}, {m_id})
                                 : problem;
    });
}

Text JournalEntry::addCall(const char* function, Sync sync) {
    return m_database.atomically(sync, [&] {
        return m_database.insert("call",
                                 {QStringLiteral("step"), QStringLiteral("function"),
                                  QStringLiteral("writes"), QStringLiteral("began")},
                                 {m_step, QString::fromLatin1(function),
                                  isWriting(function) ? 1 : 0, JournalDatabase::now()},
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
        return m_database.insert(
            "call_result",
            {QStringLiteral("call"), QStringLiteral("code"), QStringLiteral("microseconds")},
            {m_call, result.code, static_cast<qint64>(taken.count())});
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
            problem = m_database.insert(
                "outcome",
                {QStringLiteral("instrument"), QStringLiteral("word"), QStringLiteral("reasons"),
                 QStringLiteral("warnings"), QStringLiteral("ended")},
                {m_id, QString::fromLatin1(outcomeWord(verdict.outcome)), jsonText(reasons),
                 verdict.warnings, JournalDatabase::now()});
        if (problem.isEmpty() && isSettled)
            problem = m_database.select(
                QStringLiteral("SELECT mark.instrument FROM mark"
                               " JOIN instrument ON instrument.id = mark.instrument"
                               " WHERE instrument.serial_number = ?"
                               " AND mark.instrument NOT IN (SELECT mark FROM mark_end)"),
                {m_serialNumber},
                [&](const QSqlQuery& row) { marks.push_back(row.value(0).toLongLong()); });
        for (const qint64 mark : marks) {
            if (problem.isEmpty())
                problem = m_database.insert(
                    "mark_end", {QStringLiteral("mark"), QStringLiteral("ended_by")}, {mark, m_id});
        }
        return problem;
    });
}
