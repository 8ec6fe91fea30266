#ifndef COMMAND_JOURNALDATABASE_H
#define COMMAND_JOURNALDATABASE_H

#include "command/Text.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>

class QSqlQuery;

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
    Text insert(const char* table, const QStringList& columns, const QVariantList& values,
                qint64* id = nullptr);
    /** Runs a query, and calls @p take for each row of the result. */
    Text select(const QString& statement, const QVariantList& values,
                const std::function<void(const QSqlQuery& row)>& take);

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
    Text execute(const QString& statement);
    Text number(const QString& statement, int& value);
    Text failure(const QString& reason) const;

    QString m_path;
    QString m_name; ///< of the connection
    QSqlDatabase m_database;
};

#endif
