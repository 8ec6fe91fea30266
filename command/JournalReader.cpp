#include "command/JournalReader.h"

#include "command/JournalDatabase.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSqlQuery>

#include <algorithm>

namespace {

QStringList texts(const QVariant& json) {
    QStringList result;
    for (const QJsonValue text : QJsonDocument::fromJson(json.toString().toUtf8()).array())
        result.append(text.toString());
    return result;
}

JournalRun runFrom(const QSqlQuery& row) {
    JournalRun run;
    run.id = row.value(0).toLongLong();
    run.started = JournalDatabase::time(row.value(1));
    run.arguments = texts(row.value(2));
    run.user = row.value(3).toString();
    run.host = row.value(4).toString();
    run.process = row.value(5).toLongLong();
    run.toolVersion = row.value(6).toString();
    run.libraryPath = row.value(7).toString();
    run.librarySha256 = row.value(8).toByteArray();
    if (!row.value(9).isNull())
        run.ended = JournalDatabase::time(row.value(9));
    if (!row.value(10).isNull())
        run.exitStatus = row.value(10).toInt();
    return run;
}

JournalInstrument instrumentFrom(const QSqlQuery& row) {
    JournalInstrument part;
    part.id = row.value(0).toLongLong();
    part.run = row.value(1).toLongLong();
    part.serialNumber = row.value(2).toInt();
    part.began = JournalDatabase::time(row.value(3));
    if (!row.value(4).isNull())
        part.outcome = JournalOutcome{row.value(4).toString(), texts(row.value(5)),
                                      row.value(6).toInt(), JournalDatabase::time(row.value(7))};
    part.isUnfinished = row.value(8).toInt() != 0;
    part.isRecovery = row.value(9).toInt() != 0;
    return part;
}

const char runQuery[] = "SELECT run.id, started, arguments, user, host, process, tool_version,"
                        " library_path, library_sha256, run_end.ended, exit_status"
                        " FROM run LEFT JOIN run_end ON run_end.run = run.id ";

const char instrumentQuery[] =
    "SELECT instrument.id, instrument.run, serial_number, began, word, reasons, warnings, ended,"
    " mark.instrument IS NOT NULL AND mark_end.mark IS NULL,"
    " EXISTS (SELECT 1 FROM mark_end AS earlier WHERE earlier.ended_by = instrument.id"
    " AND earlier.mark <> instrument.id)"
    " FROM instrument LEFT JOIN outcome ON outcome.instrument = instrument.id"
    " LEFT JOIN mark ON mark.instrument = instrument.id"
    " LEFT JOIN mark_end ON mark_end.mark = mark.instrument ";

} // namespace

/** The rows of an instrument's part of a run, read table by table. */
struct JournalReader::Parts {
    JournalDatabase& database;

    /** @param number  for the one place in @p which */
    Text addInstruments(qint64 number, const QString& which,
                        std::vector<JournalInstrument>& parts) const {
        return database.selectFor(
            number, QString::fromLatin1(instrumentQuery) + which,
            [&](const QSqlQuery& row) { parts.push_back(instrumentFrom(row)); });
    }

    Text addSnapshots(JournalInstrument& part) const {
        return database.selectFor(
            part.id,
            QStringLiteral("SELECT kind, path, content FROM snapshot WHERE instrument = ?"),
            [&](const QSqlQuery& row) {
                const bool isBefore = row.value(0).toString() == QLatin1String("before");
                (isBefore ? part.before : part.wanted) = row.value(2).toByteArray();
                if (isBefore)
                    part.snapshotPath = row.value(1).toString();
            });
    }

    Text addChanges(JournalInstrument& part) const {
        return database.selectFor(
            part.id,
            QStringLiteral("SELECT field, old, new FROM field_change WHERE instrument = ?"
                           " ORDER BY id"),
            [&](const QSqlQuery& row) {
                part.changes.push_back(
                    {row.value(0).toString(), row.value(1).toString(), row.value(2).toString()});
            });
    }

    Text addCalls(JournalInstrument& part) const {
        return database.selectFor(
            part.id,
            QStringLiteral("SELECT name, function, writes, call.began, code, microseconds FROM call"
                           " JOIN step ON step.id = call.step"
                           " LEFT JOIN call_result ON call_result.call = call.id"
                           " WHERE step.instrument = ? ORDER BY call.id"),
            [&](const QSqlQuery& row) {
                JournalCall call;
                call.step = row.value(0).toString();
                call.function = row.value(1).toString();
                call.writes = row.value(2).toInt() != 0;
                call.began = JournalDatabase::time(row.value(3));
                if (!row.value(4).isNull()) {
                    call.result = row.value(4).toInt();
                    call.microseconds = row.value(5).toLongLong();
                }
                part.calls.push_back(call);
            });
    }

    Text addVerifications(JournalInstrument& part) const {
        return database.selectFor(
            part.id,
            QStringLiteral("SELECT at, word FROM verification WHERE instrument = ? ORDER BY id"),
            [&](const QSqlQuery& row) {
                part.verifications.push_back(
                    {JournalDatabase::time(row.value(0)), row.value(1).toString()});
            });
    }

    Text addInputs(JournalRun& run) const {
        return database.selectFor(
            run.id,
            QStringLiteral("SELECT role, path, sha256, content, is_masked FROM input_file"
                           " WHERE run = ? ORDER BY id"),
            [&](const QSqlQuery& row) {
                run.inputs.push_back({row.value(0).toString(), row.value(1).toString(),
                                      row.value(2).toByteArray(), row.value(3).toByteArray(),
                                      row.value(4).toInt() != 0});
            });
    }

    Text serialNumbers(const char* statement, std::vector<std::int32_t>& serials) const {
        return database.select(QString::fromLatin1(statement), [&](const QSqlQuery& row) {
            serials.push_back(row.value(0).toInt());
        });
    }
};

std::unique_ptr<JournalReader> JournalReader::open(const QString& path, Text& problem) {
    auto database = JournalDatabase::open(path, JournalDatabase::Access::Read, problem);
    if (!database)
        return nullptr;
    auto reader = std::make_unique<JournalReader>(*database);
    reader->m_own = std::move(database);
    return reader;
}

JournalReader::JournalReader(JournalDatabase& database) : m_database(database) {}

JournalReader::~JournalReader() = default;

Text JournalReader::runs(const JournalFilter& filter, std::vector<JournalRun>& runs) {
    runs.clear();
    QString where = QStringLiteral("WHERE 1 ");
    QVariantList values;
    if (filter.serialNumber) {
        where += QStringLiteral("AND id IN (SELECT run FROM instrument WHERE serial_number = ?) ");
        values << *filter.serialNumber;
    }
    if (filter.since) {
        where += QStringLiteral("AND started >= ? ");
        values << JournalDatabase::text(*filter.since);
    }
    Text problem =
        m_database.select(QString::fromLatin1(runQuery) + where + QStringLiteral("ORDER BY run.id"),
                          values, [&](const QSqlQuery& row) { runs.push_back(runFrom(row)); });
    const Parts parts = {m_database};
    for (JournalRun& run : runs) {
        if (problem.isEmpty())
            problem = parts.addInstruments(
                run.id, QStringLiteral("WHERE run = ? ORDER BY instrument.id"), run.instruments);
    }
    return problem;
}

Text JournalReader::run(qint64 id, std::optional<JournalRun>& run) {
    run.reset();
    Text problem =
        m_database.selectFor(id, QString::fromLatin1(runQuery) + QStringLiteral("WHERE id = ?"),
                             [&](const QSqlQuery& row) { run = runFrom(row); });
    if (!problem.isEmpty() || !run)
        return problem;
    const Parts parts = {m_database};
    problem = parts.addInputs(*run);
    if (problem.isEmpty())
        problem = parts.addInstruments(id, QStringLiteral("WHERE run = ? ORDER BY instrument.id"),
                                       run->instruments);
    for (JournalInstrument& part : run->instruments) {
        for (const auto add : {&Parts::addSnapshots, &Parts::addChanges, &Parts::addCalls,
                               &Parts::addVerifications}) {
            if (problem.isEmpty())
                problem = (parts.*add)(part);
        }
    }
    return problem;
}

Text JournalReader::unfinished(std::int32_t serialNumber, std::vector<JournalInstrument>& found) {
    found.clear();
    const Parts parts = {m_database};
    Text problem =
        parts.addInstruments(serialNumber,
                             QStringLiteral("WHERE serial_number = ? AND mark.instrument IS NOT"
                                            " NULL AND mark_end.mark IS NULL"
                                            " ORDER BY instrument.id"),
                             found);
    for (JournalInstrument& part : found) {
        if (problem.isEmpty())
            problem = parts.addSnapshots(part);
    }
    return problem;
}

Text JournalReader::withoutVerdict(std::vector<std::int32_t>& serialNumbers) {
    serialNumbers.clear();
    return Parts{m_database}.serialNumbers(
        "SELECT serial_number FROM instrument"
        " WHERE id IN (SELECT instrument FROM mark WHERE instrument NOT IN"
        " (SELECT mark FROM mark_end))"
        " OR id NOT IN (SELECT instrument FROM outcome UNION SELECT instrument FROM mark)"
        " GROUP BY serial_number ORDER BY min(id)",
        serialNumbers);
}

Text JournalReader::lastWritten(std::int32_t serialNumber, std::optional<JournalInstrument>& part) {
    part.reset();
    std::vector<JournalInstrument> found;
    const Parts parts = {m_database};
    Text problem =
        parts.addInstruments(serialNumber,
                             QStringLiteral("WHERE serial_number = ? AND mark.instrument IS NOT"
                                            " NULL AND ifnull(word, '') <> 'refused'"
                                            " ORDER BY instrument.id DESC LIMIT 1"),
                             found);
    if (!problem.isEmpty() || found.empty())
        return problem;
    part = found.front();
    return parts.addSnapshots(*part);
}

Text JournalReader::written(std::vector<std::int32_t>& serialNumbers) {
    serialNumbers.clear();
    return Parts{m_database}.serialNumbers(
        "SELECT serial_number FROM instrument WHERE id IN (SELECT instrument FROM mark)"
        " GROUP BY serial_number ORDER BY serial_number",
        serialNumbers);
}
