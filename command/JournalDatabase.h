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
 * A connection to a journal's file, which has been checked from its first byte to its last. Each
 * function that returns a text is empty when it has done its work, and says what went wrong
 * otherwise. One thread.
 */
class JournalDatabase {
public:
    enum class Access {
        Read, ///< nothing is added; but a journal of an older version is migrated
        Write ///< the file is made where there is none, mode 0600
    };
    /** Refuses what is damaged, no journal, of a newer version, and for `Write` what is read-only.
        @return nothing, and why in @p problem; for `Read`, with @p problem empty, where there is no
        file */
    static std::unique_ptr<JournalDatabase> open(const QString& path, Access access, Text& problem);
    /** Closes the file. */
    ~JournalDatabase();
    JournalDatabase(const JournalDatabase&) = delete;
    JournalDatabase& operator=(const JournalDatabase&) = delete;

    const QString& path() const { return m_path; }

    enum class Sync {
        Durable, ///< on the disk, with all before it, when it returns
        Process  ///< outlives the program, however that ends, but not the power
    };
    /** Makes all of @p changes or none of them. */
    Text atomically(Sync sync, const std::function<Text()>& changes);

    /** Adds a row. @param id  set to its number */
    Text insert(const char* table, const QStringList& columns, const QVariantList& values,
                qint64* id = nullptr);
    /** Asks, and calls @p take for each row of the answer. */
    Text select(const QString& statement, const QVariantList& values,
                const std::function<void(const QSqlQuery& row)>& take);

    /** As times are kept. */
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
