#include "command/JournalDatabase.h"

#include "command/DurableFile.h"
#include "command/JournalSchema.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QUrl>
#include <QUuid>

#include <cerrno>
#include <sys/stat.h>

namespace {

const QString timeFormat = QStringLiteral("yyyy-MM-dd'T'HH:mm:ss.zzz'Z'");

/** How long to wait while another program writes to the journal. */
const QString busyTimeout = QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000");

/** The whole schema, without the statistics tables that SQLite may add. */
const QString schemaQuery =
    QStringLiteral("SELECT type, name, tbl_name, sql FROM sqlite_master"
                   " WHERE name NOT LIKE 'sqlite_stat%' ORDER BY type, name");

/** Makes the file private, and checks that it is writable. Empty on success. */
Text makePrivate(const QString& path) {
    struct stat status = {};
    const QByteArray name = QFile::encodeName(path);
    if (::stat(name.constData(), &status) != 0)
        return DurableFile::writeFailure(path, errno);
    if (!S_ISREG(status.st_mode))
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 is not a journal of vq-tl4ctl."), {path});
    // The owner removed write permission. The system would still let root write.
    if ((status.st_mode & S_IWUSR) == 0)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The journal %1 is read-only."), {path});
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0 && ::chmod(name.constData(), 0600) != 0)
        return DurableFile::writeFailure(path, errno);
    return {};
}

} // namespace

JournalRow& JournalRow::with(const char* column, const QVariant& value) {
    m_columns.append(QString::fromLatin1(column));
    m_values.append(value);
    return *this;
}

QString JournalRow::statement() const {
    QStringList places;
    for (int i = 0; i < m_columns.size(); ++i)
        places.append(QStringLiteral("?"));
    return QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
        .arg(m_table, m_columns.join(QLatin1Char(',')), places.join(QLatin1Char(',')));
}

JournalDatabase::JournalDatabase(QString path)
    : m_path(std::move(path)), m_name(QUuid::createUuid().toString()) {}

JournalDatabase::~JournalDatabase() {
    m_prepared.clear();
    m_database.close();
    m_database = {};
    QSqlDatabase::removeDatabase(m_name);
}

std::unique_ptr<JournalDatabase> JournalDatabase::open(const QString& path, Access access,
                                                       Text& problem) {
    problem = {};
    if (access == Access::Read && !QFileInfo::exists(path) && !QFileInfo(path).isSymLink())
        return nullptr;
    std::unique_ptr<JournalDatabase> database(
        new JournalDatabase(QFileInfo(path).absoluteFilePath()));
    bool isThere = true;
    problem = database->open(access, isThere);
    if (!problem.isEmpty() || !isThere)
        return nullptr;
    return database;
}

Text JournalDatabase::openFile(Access access) {
    if (access == Access::Write) {
        bool isTaken = false;
        Text problem = DurableFile::create(m_path, {}, isTaken);
        if (problem.isEmpty())
            problem = makePrivate(m_path);
        if (!problem.isEmpty())
            return problem;
    }
    if (!QFileInfo(m_path).isFile())
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 is not a journal of vq-tl4ctl."), {m_path});
    // A file without write permission has no writer either, so SQLite can open it without its
    // auxiliary files.
    const bool isFixed = access == Access::Read && !QFileInfo(m_path).isWritable() &&
                         !QFileInfo::exists(m_path + QStringLiteral("-wal"));
    QUrl url = QUrl::fromLocalFile(m_path);
    url.setQuery(QStringLiteral("immutable=1"));
    if (!isFixed)
        return connect(m_path, busyTimeout);
    return connect(url.toString(QUrl::FullyEncoded),
                   QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_OPEN_READONLY"));
}

Text JournalDatabase::open(Access access, bool& isThere) {
    Text problem = openFile(access);
    if (problem.isEmpty() && access == Access::Write)
        problem = prepareToWrite();
    bool isNew = false;
    if (problem.isEmpty())
        problem = findNew(isNew);
    // An empty file: a program was killed between creating it and its first table.
    isThere = !isNew;
    if (isNew)
        return problem;
    int version = 0;
    if (problem.isEmpty())
        problem = check(version);
    if (problem.isEmpty() && version < JournalSchema::currentVersion)
        problem = migrate(version);
    if (problem.isEmpty() && access == Access::Read)
        problem = execute(QStringLiteral("PRAGMA query_only = ON"));
    // In KiB. A writer adds rows at the end of each table: it needs few pages again.
    if (problem.isEmpty() && access == Access::Write)
        problem = execute(QStringLiteral("PRAGMA cache_size = -256"));
    return problem;
}

Text JournalDatabase::connect(const QString& file, const QString& options) {
    m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
    m_database.setDatabaseName(file);
    m_database.setConnectOptions(options);
    if (!m_database.open())
        return failure(m_database.lastError().text());
    // The schema of a damaged or foreign file is not trusted.
    for (const char* pragma : {"PRAGMA trusted_schema = OFF", "PRAGMA cell_size_check = ON",
                               "PRAGMA foreign_keys = ON", "PRAGMA synchronous = FULL",
                               "PRAGMA fullfsync = ON", "PRAGMA checkpoint_fullfsync = ON"}) {
        Text problem = execute(QString::fromLatin1(pragma));
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

/** Makes an empty file a journal in one transaction, so that it is never incomplete. */
Text JournalDatabase::prepareToWrite() {
    bool isNew = false;
    Text problem = findNew(isNew);
    int id = 0;
    if (problem.isEmpty())
        problem = number(QStringLiteral("PRAGMA application_id"), id);
    if (!problem.isEmpty())
        return problem;
    if (id != JournalSchema::applicationId && !isNew)
        return {}; // another program's database: refused later, and not changed
    QString mode;
    problem = select(QStringLiteral("PRAGMA journal_mode = WAL"),
                     [&](const QSqlQuery& row) { mode = row.value(0).toString(); });
    if (problem.isEmpty() && mode != QLatin1String("wal"))
        problem = failure(QStringLiteral("journal_mode = ") + mode);
    return problem.isEmpty() && isNew ? migrate(0) : problem;
}

Text JournalDatabase::findNew(bool& isNew) {
    int id = 0;
    int objects = 0;
    Text problem = number(QStringLiteral("PRAGMA application_id"), id);
    if (problem.isEmpty())
        problem = number(QStringLiteral("SELECT count(*) FROM sqlite_master"), objects);
    isNew = problem.isEmpty() && id == 0 && objects == 0;
    return problem;
}

Text JournalDatabase::check(int& version) {
    int id = 0;
    Text problem = number(QStringLiteral("PRAGMA application_id"), id);
    if (problem.isEmpty())
        problem = number(QStringLiteral("PRAGMA user_version"), version);
    if (!problem.isEmpty())
        return problem;
    if (id != JournalSchema::applicationId)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 is not a journal of vq-tl4ctl."), {m_path});
    if (version > JournalSchema::currentVersion)
        return Text(
            QT_TRANSLATE_NOOP("vq-tl4ctl", "The journal %1 has version %2, and this program knows "
                                           "versions up to %3: it was made by a newer one."),
            {m_path, QString::number(version), QString::number(JournalSchema::currentVersion)});
    problem = checkSchema(version);
    if (!problem.isEmpty())
        return problem;
    QString found;
    problem = select(QStringLiteral("PRAGMA integrity_check(1)"),
                     [&](const QSqlQuery& row) { found = row.value(0).toString(); });
    if (problem.isEmpty() && found != QLatin1String("ok"))
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The journal %1 is damaged: %2"),
                    {m_path, found});
    return problem;
}

/** Compares all tables and triggers with those of a new journal of that version. */
Text JournalDatabase::checkSchema(int version) {
    const auto schemaOf = [](JournalDatabase& database, QStringList& schema) {
        return database.select(schemaQuery, [&](const QSqlQuery& row) {
            for (int column = 0; column < 4; ++column)
                schema.append(row.value(column).toString());
        });
    };
    JournalDatabase fresh(m_path);
    Text problem = fresh.connect(QStringLiteral(":memory:"), {});
    for (int i = 1; i <= version; ++i) {
        for (const QString& statement : JournalSchema::statements(i)) {
            if (problem.isEmpty())
                problem = fresh.execute(statement);
        }
    }
    QStringList expected;
    QStringList found;
    if (problem.isEmpty())
        problem = schemaOf(fresh, expected);
    if (problem.isEmpty())
        problem = schemaOf(*this, found);
    if (problem.isEmpty() && (version < 1 || found != expected))
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The journal %1 is damaged: %2"),
                    {m_path, QStringLiteral("its tables are not those of a journal")});
    return problem;
}

Text JournalDatabase::migrate(int version) {
    return atomically(Sync::Durable, [&] {
        // Another program may have migrated it meanwhile.
        int present = version;
        Text problem = number(QStringLiteral("PRAGMA user_version"), present);
        QStringList statements;
        for (int next = present + 1; next <= JournalSchema::currentVersion; ++next)
            statements += JournalSchema::statements(next);
        statements +=
            QStringLiteral("PRAGMA application_id = %1").arg(JournalSchema::applicationId);
        statements += QStringLiteral("PRAGMA user_version = %1").arg(JournalSchema::currentVersion);
        for (const QString& statement : statements) {
            if (problem.isEmpty())
                problem = execute(statement);
        }
        return problem;
    });
}

Text JournalDatabase::setSync(Sync sync) {
    if (sync == m_sync)
        return {};
    Text problem = execute(sync == Sync::Durable ? QStringLiteral("PRAGMA synchronous = FULL")
                                                 : QStringLiteral("PRAGMA synchronous = NORMAL"));
    if (problem.isEmpty())
        m_sync = sync;
    return problem;
}

Text JournalDatabase::atomically(Sync sync, const std::function<Text()>& changes) {
    Text problem = setSync(sync);
    if (problem.isEmpty())
        problem = executeAgain(QStringLiteral("BEGIN IMMEDIATE"));
    if (!problem.isEmpty())
        return problem;
    problem = changes();
    if (problem.isEmpty())
        problem = executeAgain(QStringLiteral("COMMIT"));
    if (!problem.isEmpty())
        execute(QStringLiteral("ROLLBACK")); // SQLite may have done this already
    return problem;
}

Text JournalDatabase::insert(const JournalRow& row, qint64* id) {
    return executeAgain(row.statement(), row.values(), id);
}

Text JournalDatabase::select(const QString& statement, const QVariantList& values,
                             const Take& take) {
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    const bool isPrepared = query.prepare(statement);
    for (const QVariant& value : values)
        query.addBindValue(value);
    if (!isPrepared || !query.exec())
        return failure(query.lastError().text());
    while (query.next())
        take(query);
    if (query.lastError().isValid())
        return failure(query.lastError().text());
    return {};
}

Text JournalDatabase::selectFor(qint64 number, const QString& statement, const Take& take) {
    QVariantList values;
    values.append(number);
    return select(statement, values, take);
}

Text JournalDatabase::execute(const QString& statement) {
    QSqlQuery query(m_database);
    if (!query.exec(statement))
        return failure(query.lastError().text());
    return {};
}

Text JournalDatabase::executeAgain(const QString& statement, const QVariantList& values,
                                   qint64* id) {
    const auto [found, isNew] = m_prepared.try_emplace(statement, m_database);
    QSqlQuery& query = found->second;
    bool done = !isNew || query.prepare(statement);
    for (int i = 0; i < values.size(); ++i)
        query.bindValue(i, values[i]);
    done = done && query.exec();
    if (done && id != nullptr)
        *id = query.lastInsertId().toLongLong();
    if (done)
        return {};
    Text problem = failure(query.lastError().text());
    m_prepared.erase(found);
    return problem;
}

Text JournalDatabase::number(const QString& statement, int& value) {
    return select(statement, [&](const QSqlQuery& row) { value = row.value(0).toInt(); });
}

Text JournalDatabase::failure(const QString& reason) const {
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The journal %1 cannot be used: %2"),
                {m_path, reason.trimmed()});
}

QString JournalDatabase::now() {
    return text(QDateTime::currentDateTimeUtc());
}

QString JournalDatabase::text(const QDateTime& time) {
    return time.toUTC().toString(timeFormat);
}

QDateTime JournalDatabase::time(const QVariant& text) {
    QDateTime result = QDateTime::fromString(text.toString(), timeFormat);
    result.setTimeSpec(Qt::UTC);
    return result;
}
