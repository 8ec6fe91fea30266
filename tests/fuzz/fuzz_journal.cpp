// Journals that are damaged: each is refused, with the reason, or read to its end, and what was
// read makes a report that is well-formed. SQLite itself is the system's, and not instrumented.
#include "command/HtmlReport.h"
#include "tests/fuzz/FuzzFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>
#include <QXmlStreamReader>

#include <algorithm>
#include <memory>
#include <random>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

/** The input as a file. SQLite needs a path, and makes files beside it. */
QString written(const std::uint8_t* data, std::size_t size) {
    static const auto folder = std::make_unique<QTemporaryDir>("/tmp/vqtl4-fuzz-XXXXXX");
    const QString path = folder->filePath("journal.sqlite");
    for (const char* beside : {"", "-wal", "-shm", "-journal"})
        QFile::remove(path + beside);
    QFile file(path);
    require(file.open(QIODevice::WriteOnly));
    require(file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) ==
            static_cast<qint64>(size));
    return path;
}

/** Answers of a statement that may fail: an input need not be a database. */
QStringList ask(QSqlDatabase& database, const QString& statement) {
    QStringList answers;
    QSqlQuery query(database);
    for (query.exec(statement); query.next();)
        answers.append(query.value(0).toString());
    return answers;
}

/** Gives a random cell of a random table other bytes, and leaves the guards as they were. */
void changeCell(QSqlDatabase& database, std::minstd_rand& random) {
    const auto anyOf = [&](const QStringList& names) {
        return names.value(static_cast<int>(random() % (static_cast<unsigned>(names.size()) + 1)));
    };
    const QString table = anyOf(ask(database, "SELECT name FROM sqlite_master WHERE type='table'"));
    const QString column =
        anyOf(ask(database, QString("SELECT name FROM pragma_table_info('%1')").arg(table)));
    const QString row = anyOf(ask(database, QString("SELECT rowid FROM %1").arg(table)));
    const QString guard = ask(database, QString("SELECT sql FROM sqlite_master WHERE name ="
                                                " '%1_update'")
                                            .arg(table))
                              .value(0);
    QSqlQuery query(database);
    if (!query.exec(QString("SELECT %1 FROM %2 WHERE rowid = %3").arg(column, table, row)) ||
        !query.next())
        return;
    constexpr int most = 64; // bytes more than there are
    QByteArray value = query.value(0).toByteArray();
    const auto size = static_cast<std::size_t>(value.size());
    value.resize(value.size() + most);
    value.resize(static_cast<int>(
        LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(value.data()), size, size + most)));
    ask(database, QString("DROP TRIGGER %1_update").arg(table));
    query.prepare(
        QString("UPDATE %1 SET %2 = CAST(? AS TEXT) WHERE rowid = %3").arg(table, column, row));
    query.addBindValue(value);
    query.exec();
    ask(database, guard);
}

void changeCell(const QString& path, std::minstd_rand& random) {
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "mutator");
        database.setDatabaseName(path);
        if (database.open()) {
            ask(database, "PRAGMA synchronous = OFF");
            changeCell(database, random);
        }
    }
    QSqlDatabase::removeDatabase("mutator");
}

void check(const JournalRun& run) {
    Faults faults;
    const auto page = HtmlReport::make(run, "journal.sqlite", faults);
    require(page.has_value() == faults.empty());
    if (!page)
        return;
    QXmlStreamReader reader(*page);
    while (!reader.atEnd())
        reader.readNext();
    require(!reader.hasError());
}

/** Ends at the first function that refuses, as the verbs do. */
Text readAll(JournalReader& journal) {
    std::vector<JournalRun> runs;
    Text problem = journal.runs({}, runs);
    for (std::size_t i = 0; problem.isEmpty() && i < std::min<std::size_t>(runs.size(), 3); ++i) {
        std::optional<JournalRun> run;
        problem = journal.run(runs[i].id, run);
        if (problem.isEmpty() && run)
            check(*run);
        if (problem.isEmpty())
            problem = journal.runs({runs[i].instruments.empty()
                                        ? std::nullopt
                                        : std::optional(runs[i].instruments[0].serialNumber),
                                    runs[i].started},
                                   runs);
    }
    std::vector<std::int32_t> serials;
    if (problem.isEmpty())
        problem = journal.withoutVerdict(serials);
    if (problem.isEmpty())
        problem = journal.written(serials);
    for (const std::int32_t serial : serials) {
        std::vector<JournalInstrument> parts;
        std::optional<JournalInstrument> part;
        if (problem.isEmpty())
            problem = journal.unfinished(serial, parts);
        if (problem.isEmpty())
            problem = journal.lastWritten(serial, part);
    }
    return problem;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    // It finds the driver.
    static const QCoreApplication application(*argc, *argv);
    return 0;
}

/** Changes of bytes are mostly refused; so the others are changes of one cell. */
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed) {
    std::minstd_rand random(seed);
    if (random() % 4 == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    const QString path = written(data, size);
    changeCell(path, random);
    QFile file(path);
    require(file.open(QIODevice::ReadOnly));
    const QByteArray changed = file.readAll();
    if (changed.isEmpty() || static_cast<std::size_t>(changed.size()) > maxSize)
        return LLVMFuzzerMutate(data, size, maxSize);
    std::copy(changed.begin(), changed.end(), data);
    return static_cast<std::size_t>(changed.size());
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Text problem;
    if (const auto journal = JournalReader::open(written(data, size), problem))
        problem = readAll(*journal);
    require(problem.isEmpty() || !problem.english().isEmpty());
    return 0;
}
