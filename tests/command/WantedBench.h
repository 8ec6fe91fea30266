#ifndef TESTS_COMMAND_WANTEDBENCH_H
#define TESTS_COMMAND_WANTEDBENCH_H

#include "CommandRun.h"

/** The instruments of a bench, 01000001 and on, what an `apply` makes of each, and its arguments.
 */
struct WantedBench {
    QStringList arguments;
    std::vector<QJsonObject> old;
    std::vector<QJsonObject> wanted;

    int count() const { return static_cast<int>(old.size()); }
    static int serialNumber(int number) { return CommandRun::serialNumber + number; }
    /** What of an instrument as it is now is not as it was, and not as it is wanted. */
    QString fromOld(const QJsonArray& now, int number) const;
    QString fromWanted(const QJsonArray& now, int number) const;

    /** The usual instrument, and the options that change all four things of it. */
    static WantedBench ofOne(const CommandRun& run);
    /** A plan that changes all four things of each instrument; it and its value files are written.
        @param round  of several plans in turn, from 1: the old state is what the one before it
                      wants */
    static WantedBench byPlan(const CommandRun& run, int count, int round = 1);

    /** Replaces the bench by the old state. */
    void setBench(const CommandRun& run) const;
};

/** A call that writes, as the library's log has it, and as the journal has it. */
struct WritingCall {
    QString function;
    int serialNumber;
    QVariant result; ///< none: the journal does not know
};

/** Of a trace file. */
std::vector<WritingCall> writesIn(const QByteArray& trace);
/** Of the journal. @param where  of its tables run, instrument, step, call, call_result */
std::vector<WritingCall> writesKept(const CommandRun& run, const QString& where = "1");

/** Every call of one process that was made is kept, and no other one. The last one may be there
    without a result, and then it may not have been made.
    @return what is not so; empty where all is */
QString unlikeWrites(const std::vector<WritingCall>& made, const std::vector<WritingCall>& kept);

#endif
