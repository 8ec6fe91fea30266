#ifndef COMMAND_JOURNALDATABASE_H
#define COMMAND_JOURNALDATABASE_H

#include "command/Text.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <functional>
#include <map>
#include <memory>
#include <optional>

/** A row to be inserted: its columns with their values. */
class JournalRow {
public:
    /** @param table  a literal, as are the columns' names */
    explicit JournalRow(const char* table) : m_table(QString::fromLatin1(table)) {}
    JournalRow& with(const char* column, const QVariant& value);

    QString statement() const;
    const QVariantList& values() const { return m_values; }

private:
    QString m_table;
    QStringList m_columns;
    QVariantList m_values;
};

/**
 * A connection to a journal's file, whose content has been checked completely. Each function that
 * returns a text returns an empty one on success, and the reason of the failure otherwise. One
 * thread.
 */
class JournalDatabase {
public:
    enum class Access {
        Read, ///< adds no rows, but migrates a journal of an older version
        Write ///< creates a missing file, mode 0600
    };
    /** Refuses a file that is damaged, of a newer version or not a journal, and for `Write` a
        read-only one. @return null, and the reason in @p problem; for `Read` of a missing file
        null with an empty @p problem */
    static std::unique_ptr<JournalDatabase> open(const QString& path, Access access, Text& problem);
    /** Closes the file. */
    ~JournalDatabase();
    JournalDatabase(const JournalDatabase&) = delete;
    JournalDatabase& operator=(const JournalDatabase&) = delete;

    const QString& path() const { return m_path; }

    enum class Sync {
        Durable, ///< synced to the disk, with all earlier rows, when it returns
        Process  ///< survives the end of the program, but not a power failure
    };
    /** Makes @p changes in one transaction. */
    Text atomically(Sync sync, const std::function<Text()>& changes);

    /** Adds a row. @param id  set to its number */
    Text insert(const JournalRow& row, qint64* id = nullptr);
    using Take = std::function<void(const QSqlQuery& row)>;
    /** Runs a query, and calls @p take for each row of the result. */
    Text select(const QString& statement, const Take& take) { return select(statement, {}, take); }
    Text select(const QString& statement, const QVariantList& values, const Take& take);
    /** The same for a statement with one place, for a number. */
    Text selectFor(qint64 number, const QString& statement, const Take& take);

    /** The present time in the form that the journal stores. */
    static QString now();
    static QString text(const QDateTime& time);
    static QDateTime time(const QVariant& text);

private:
    explicit JournalDatabase(QString path);
    Text connect(const QString& file, const QString& options);
    Text open(Access access, bool& isThere);
    Text openFile(Access access);
    Text findNew(bool& isNew);
    Text prepareToWrite();
    Text check(int& version);
    Text checkSchema(int version);
    Text migrate(int version);
    Text setSync(Sync sync);
    Text execute(const QString& statement);
    /** The same for a statement that is made often: it is prepared only once. */
    Text executeAgain(const QString& statement, const QVariantList& values = {},
                      qint64* id = nullptr);
    Text number(const QString& statement, int& value);
    Text failure(const QString& reason) const;

    QString m_path;
    QString m_name; ///< of the connection
    QSqlDatabase m_database;
    std::map<QString, QSqlQuery> m_prepared; ///< by their texts
    std::optional<Sync> m_sync;              ///< none: as SQLite was built
};

#endif
