// The journal of vq-tl4ctl, through the program: what it keeps, and that no run writes to an
// instrument without it.
#include "CommandRun.h"
#include "command/Journal.h"
#include "tests/support/TestMain.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSqlError>
#include <QSqlQuery>

#include <random>
#include <sys/stat.h>

namespace {

const QString serial = "1000001";

QByteArray content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void overwrite(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

/** Changes a journal behind the program's back. @return what went wrong */
QString execute(const QString& path, const QStringList& statements) {
    QString problem;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "behind");
        database.setDatabaseName(path);
        database.open();
        QSqlQuery query(database);
        for (const QString& statement : statements) {
            if (!query.exec(statement))
                problem = query.lastError().text();
        }
    }
    QSqlDatabase::removeDatabase("behind");
    return problem;
}

unsigned mode(const QString& path) {
    struct stat status = {};
    ::stat(QFile::encodeName(path), &status);
    return status.st_mode & 07777U;
}

QStringList words(const std::vector<QVariantList>& rows) {
    QStringList result;
    for (const QVariantList& row : rows)
        result.append(row[0].toString());
    return result;
}

/** What is done to a journal. */
using Harm = std::function<void(const QString& path)>;

} // namespace

Q_DECLARE_METATYPE(Harm)

class TestCommandJournal : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_done.run(m_done.applyAll()).exitStatus == 0); }
    void keepsWhatWasDone();
    void keepsEveryCallWithItsAnswer();
    void syncsBeforeEachCallThatWrites();
    void keepsWhatWasGiven();
    void isForItsOwnerAlone();
    void neverChangesRows_data();
    void neverChangesRows();
    void refusesBeforeAnyCall_data();
    void refusesBeforeAnyCall();
    void keepsNothingOfADryRun();
    void migratesVersion1();
    void outlivesDamage();

private:
    const CommandRun m_done; ///< after an `apply` of all four things
};

void TestCommandJournal::keepsWhatWasDone() {
    const auto runs = m_done.ask("SELECT arguments, user, host, tool_version, library_path,"
                                 " library_sha256, exit_status FROM run JOIN run_end ON run = id");
    QCOMPARE(runs.size(), std::size_t(1));
    const QVariantList& run = runs[0];
    QCOMPARE(QJsonDocument::fromJson(run[0].toByteArray()).array(),
             QJsonArray::fromStringList(m_done.applyAll()));
    for (int column : {1, 2, 3})
        QVERIFY2(!run[column].toString().isEmpty(), qPrintable(QString::number(column)));
    QFile library(run[4].toString());
    QVERIFY(library.open(QIODevice::ReadOnly));
    QCOMPARE(run[5].toByteArray(),
             QCryptographicHash::hash(library.readAll(), QCryptographicHash::Sha256).toHex());
    QCOMPARE(run[6].toInt(), 0);

    QCOMPARE(words(m_done.ask("SELECT word FROM outcome")), QStringList{"verified"});
    QCOMPARE(m_done.ask("PRAGMA user_version")[0][0].toInt(), 2);
    QCOMPARE(m_done.ask("PRAGMA journal_mode")[0][0].toString(), QString("wal"));
    const auto snapshot = m_done.ask("SELECT path, content FROM snapshot WHERE kind = 'before'");
    QCOMPARE(snapshot.size(), std::size_t(1));
    QCOMPARE(m_done.snapshots(), QStringList{snapshot[0][0].toString()});
    QCOMPARE(snapshot[0][1].toByteArray(), content(snapshot[0][0].toString()));
}

void TestCommandJournal::keepsEveryCallWithItsAnswer() {
    QCOMPARE(words(m_done.ask("SELECT function FROM call ORDER BY id")), m_done.calls());
    QCOMPARE(words(m_done.ask("SELECT function FROM call WHERE writes = 1 ORDER BY id")),
             m_done.writingCalls());
    QStringList answers;
    for (const QByteArray& line : m_done.read("trace").split('\n')) {
        if (!line.isEmpty())
            answers.append(QJsonDocument::fromJson(line).object()["result"].toVariant().toString());
    }
    QCOMPARE(words(m_done.ask("SELECT code FROM call_result ORDER BY call")), answers);
}

/** So that a power failure loses nothing about what may have been written. */
void TestCommandJournal::syncsBeforeEachCallThatWrites() {
    const CommandRun run;
    const QString file = run.path("unsynced");
    const QStringList environment = {"LD_PRELOAD=" COMMAND_SHIM, "SHIM_UNSYNCED=" + file};
    QCOMPARE(run.run(run.applyAll(), environment).exitStatus, 0);
    QCOMPARE(QString(run.read("unsynced")), run.writingCalls().join('\n') + '\n');
}

void TestCommandJournal::keepsWhatWasGiven() {
    const auto inputs =
        m_done.ask("SELECT role, path, sha256, content, is_masked FROM input_file ORDER BY id");
    QCOMPARE(inputs.size(), std::size_t(3));
    for (const QVariantList& input : inputs) {
        const QByteArray bytes = content(input[1].toString());
        QVERIFY(!bytes.isEmpty());
        QCOMPARE(input[2].toByteArray(),
                 QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
        QByteArray kept = bytes;
        if (input[0] == "network")
            kept.replace(CommandRun::keys[1], "********");
        QCOMPARE(input[3].toByteArray(), kept);
        QCOMPARE(input[4].toBool(), input[0] == "network");
    }
    // Only a snapshot has a key.
    for (const char* table : {"run", "input_file", "field_change", "outcome", "call", "step"}) {
        for (const QVariantList& row : m_done.ask(QString("SELECT * FROM %1").arg(table))) {
            for (const QVariant& value : row) {
                for (const char* key : CommandRun::keys)
                    QVERIFY2(!value.toByteArray().contains(key), table);
            }
        }
    }
}

void TestCommandJournal::isForItsOwnerAlone() {
    QCOMPARE(mode(m_done.journal()), 0600U);
    CommandRun run;
    QCOMPARE(run.run({"apply", serial, "--power-off", "60", "--yes"}).exitStatus, 0);
    ::chmod(QFile::encodeName(run.journal()), 0644);
    QCOMPARE(run.run({"apply", serial, "--power-off", "15", "--yes"}).exitStatus, 0);
    QCOMPARE(mode(run.journal()), 0600U);
}

void TestCommandJournal::neverChangesRows_data() {
    QTest::addColumn<QString>("table");
    for (const char* table :
         {"run", "run_end", "input_file", "instrument", "snapshot", "field_change", "step", "call",
          "call_result", "mark", "mark_end", "outcome", "verification"})
        QTest::newRow(table) << table;
}

void TestCommandJournal::neverChangesRows() {
    QFETCH(QString, table);
    const QTemporaryDir folder;
    const QString copy = folder.filePath("journal.sqlite");
    QVERIFY(QFile::copy(m_done.journal(), copy));
    if (table == "verification")
        QCOMPARE(execute(copy, {"INSERT INTO verification VALUES (1, 1, '', '')"}), QString());
    const QByteArray before = content(copy);
    for (const QString& statement :
         {QString("UPDATE %1 SET rowid = rowid + 1000"), QString("DELETE FROM %1"),
          QString("INSERT OR REPLACE INTO %1 SELECT * FROM %1"),
          QString("REPLACE INTO %1 SELECT * FROM %1")}) {
        const QString problem = execute(copy, {statement.arg(table)});
        QVERIFY2(problem.contains("rows of the journal are never changed"),
                 qPrintable(statement + ": " + problem));
    }
    QCOMPARE(content(copy), before);
}

void TestCommandJournal::refusesBeforeAnyCall_data() {
    QTest::addColumn<Harm>("harm");
    QTest::addColumn<QString>("reason");
    const auto sql = [](const QStringList& statements) {
        return Harm(
            [statements](const QString& path) { QCOMPARE(execute(path, statements), QString()); });
    };
    const auto add = [](const char* name, const Harm& harm, const char* reason) {
        QTest::newRow(name) << harm << reason;
    };
    add(
        "a page overwritten",
        [](const QString& path) {
            QByteArray bytes = content(path);
            overwrite(path, bytes.replace(4096 * 3, 4096, QByteArray(4096, '\x5a')));
        },
        "is damaged");
    add(
        "cut in half", [](const QString& path) { overwrite(path, content(path).left(30000)); },
        "cannot be used");
    add(
        "no database", [](const QString& path) { overwrite(path, "This is no journal.\n"); },
        "not a database");
    add(
        "another program's database",
        [&](const QString& path) {
            QFile::remove(path);
            QCOMPARE(execute(path, {"CREATE TABLE other (id)"}), QString());
        },
        "is not a journal");
    add("a newer version", sql({"PRAGMA user_version = 3"}), "made by a newer one");
    add("a trigger removed", sql({"DROP TRIGGER call_delete"}), "its tables are not");
    add("a table added", sql({"CREATE TABLE other (id)"}), "its tables are not");
    add(
        "read-only", [](const QString& path) { ::chmod(QFile::encodeName(path), 0400); },
        "is read-only");
    add(
        "a folder",
        [](const QString& path) {
            QFile::remove(path);
            QVERIFY(QDir().mkdir(path));
        },
        "is not a journal");
}

void TestCommandJournal::refusesBeforeAnyCall() {
    QFETCH(Harm, harm);
    QFETCH(QString, reason);
    CommandRun run;
    QVERIFY(QDir().mkpath(run.dataFolder()));
    QVERIFY(QFile::copy(m_done.journal(), run.journal()));
    harm(run.journal());
    const QByteArray before = content(run.journal());
    for (const QStringList& arguments :
         {run.applyAll(), QStringList{"recover", "--yes"}, QStringList{"verify"}}) {
        const CommandResult got = run.run(arguments);
        QVERIFY2(got.exitStatus == 3, got.text());
        QVERIFY2(got.standardError.contains(reason.toUtf8()), got.text());
    }
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("refused"));
    QCOMPARE(run.calls(), QStringList());
    QCOMPARE(content(run.journal()), before);
}

void TestCommandJournal::keepsNothingOfADryRun() {
    CommandRun run;
    QCOMPARE(run.run(run.applyAll() << "--dry-run").exitStatus, 7);
    QVERIFY(!QFileInfo::exists(run.journal()));
}

void TestCommandJournal::migratesVersion1() {
    CommandRun run;
    QVERIFY(QDir().mkpath(run.dataFolder()));
    QVERIFY(QFile::copy(COMMAND_DATA "/journal-1.sqlite", run.journal()));
    QVERIFY(QFile::setPermissions(run.journal(), QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(run.ask("PRAGMA user_version")[0][0].toInt(), 1);
    const auto before = run.ask("SELECT * FROM call ORDER BY id");

    const CommandResult listed = run.run({"journal", "--json"});
    QVERIFY2(listed.standardOutput.count('\n') == 2, listed.text());
    QCOMPARE(run.ask("PRAGMA user_version")[0][0].toInt(), 2);
    QCOMPARE(run.ask("SELECT * FROM call ORDER BY id"), before);
    // The second run was killed between stage and commit.
    QVERIFY(run.isMarked());
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("refused"));
    QCOMPARE(run.run({"recover", "--yes", "--json"}).outcome(), QString("rolled-back"));
    QCOMPARE(differenceBetween(run.instrument(), CommandRun::initialInstrument()), QString());
    QVERIFY(!run.isMarked());
}

/** Bytes of a journal changed at random: it is refused, or read to its end. */
void TestCommandJournal::outlivesDamage() {
    const QByteArray whole = content(m_done.journal());
    const QTemporaryDir folder;
    const QString path = folder.filePath("journal.sqlite");
    std::mt19937 random(20261120);
    const auto below = [&](int limit) {
        return std::uniform_int_distribution<int>(0, limit - 1)(random);
    };
    const int rounds = qMax(400, qgetenv("VQTL4_JOURNAL_ROUNDS").toInt());
    int refused = 0;
    int read = 0;
    for (int round = 0; round < rounds; ++round) {
        QByteArray bytes = whole;
        for (int flips = 1 + below(20); flips > 0; --flips)
            bytes[below(int(bytes.size()))] = static_cast<char>(below(256));
        if (below(10) == 0)
            bytes.truncate(below(int(bytes.size())));
        overwrite(path, bytes);
        Text problem;
        const auto reader = JournalReader::open(path, problem);
        std::vector<JournalRun> runs;
        if (reader)
            problem = reader->runs({}, runs);
        for (const JournalRun& found : runs) {
            std::optional<JournalRun> run;
            if (problem.isEmpty())
                problem = reader->run(found.id, run);
        }
        ++(problem.isEmpty() ? read : refused);
    }
    qInfo() << rounds << "damaged journals:" << refused << "refused," << read << "read";
    QVERIFY(refused > 0);
    QVERIFY(read > 0);
}

TEST_CLASS(TestCommandJournal)
#include "tst_command_journal.moc"
