#ifndef TESTS_COMMAND_COMMANDRUN_H
#define TESTS_COMMAND_COMMANDRUN_H

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

#include <memory>
#include <vector>

/** What one run of the program left behind. */
struct CommandResult {
    int exitStatus = -1; ///< -1: it did not end by itself
    QByteArray standardOutput;
    QByteArray standardError;

    /** The only object on standard output; empty where there is another number of lines. */
    QJsonObject object() const;
    QString outcome() const { return object()["outcome"].toString(); }
    /** All of it, to tell why a test failed. */
    QByteArray text() const;
};

/**
 * vq-tl4ctl as a child process, on simulated instruments and with a data folder of its own. One
 * instrument, 01000001, unless the bench is replaced; input files that change all four things.
 */
class CommandRun {
public:
    CommandRun();

    static constexpr int serialNumber = 1000001;
    /** A security key of the instrument and of the settings file: nobody may see it. */
    static const char* const keys[2];

    /** The instrument as it is at first, and as `applyAll` wants it. */
    static QJsonObject initialInstrument();
    static QJsonObject wantedInstrument();

    /** Replaces the bench: this instrument, or these, and these rules for faults. */
    void setBench(const QJsonObject& instrument, const QJsonArray& faults = {}) const {
        setBench(QJsonArray{instrument}, faults);
    }
    void setBench(const QJsonArray& instruments, const QJsonArray& faults = {}) const;
    /** The instrument, with other rules. */
    void setFaults(const QJsonArray& faults) const;
    /** The instrument as the bench has it now; the first of several. */
    QJsonObject instrument() const { return instruments()[0].toObject(); }
    QJsonArray instruments() const;

    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString write(const QString& name, const QByteArray& content) const;
    QByteArray read(const QString& name) const;

    /** Runs it to its end. @param environment  "NAME=value" beside the usual */
    CommandResult run(const QStringList& arguments, const QStringList& environment = {}) const;
    /** The same as a process that runs on, for tests that disturb it. */
    std::unique_ptr<QProcess> start(const QStringList& arguments,
                                    const QStringList& environment = {}) const;
    static CommandResult finish(QProcess& process);

    /** `apply` of all four things, without a question, with JSON. */
    QStringList applyAll() const;
    /** The calls since the trace was last cleared, by name. */
    QStringList calls() const;
    /** Those of them that write. */
    QStringList writingCalls() const;
    void clearTrace() const;

    QString dataFolder() const { return path("data/vq-tl4ctl"); }
    QStringList snapshots() const; ///< paths
    QString journal() const { return dataFolder() + "/journal.sqlite"; }
    /** What a copy of the journal answers, row by row; the journal stays as a run left it.
        @param folder  that has the journal; empty for the usual one */
    std::vector<QVariantList> ask(const QString& query, const QString& folder = {}) const;
    bool isMarked(const QString& folder = {}) const;

private:
    QTemporaryDir m_folder;
};

/** A rule for faults: the calls of a function, as the bench file names them, and what happens. */
QJsonObject rule(const QString& function, const QString& call, const QJsonObject& what);

/** A file of calibration values as the bench has them. */
QByteArray valueFile(const QJsonObject& accessory);

/** Changes the snapshots in a journal behind the back of the program and of the journal's guards.
 */
void editSnapshots(const QString& journal);

/** The value file with another text for one of its values. */
QByteArray withValue(const QByteArray& file, int index, const QByteArray& text);

/** What of two instruments is not the same: settings in force after a power cycle, power-off mode,
    calibration record in memory; empty where all is. A record that is only staged is told of. */
QString differenceBetween(const QJsonObject& instrument, const QJsonObject& expected);

#endif
