#ifndef TESTS_SUPPORT_TESTBENCH_H
#define TESTS_SUPPORT_TESTBENCH_H

#include "instrument/KvaSdk.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

/**
 * The simulated instruments, in the memory of the test's process: their JSON, what they answer, and
 * what they were asked. A call that the library refuses ends the program: the test itself is wrong
 * then. The thread of the test only.
 */
namespace TestBench {

/** The first instrument of `load`. */
constexpr int serialNumber = 1234567;

/** A USB instrument, every setting of it as the .cpp says. */
QJsonObject instrument(int serial = serialNumber);

/** Puts a bench of these instruments in place: no connection, no rules, an empty call log, and the
    flag of a lost connection cleared. */
void load(const QJsonArray& instruments = {instrument()});

/** Changes an instrument by a JSON merge patch. */
void set(const QByteArray& patch, int serial = serialNumber);

/** Lets a function answer @p result. @param call the nth call from now; 0: every call */
void answer(const QString& function, int result = KVA_ERROR, int call = 0);

/** Adds a rule for faults. */
void addFault(const QJsonObject& rule);

/** What an instrument holds. */
QJsonObject state(int serial = serialNumber);

/** A record of the connected instrument: `held(KVA_GetNetworkInfo)`; zeros where it is refused. */
template <typename Record>
Record held(KVA_RESULT (*get)(Record*)) {
    Record record = {};
    get(&record);
    return record;
}

/** The functions called, in order. */
QStringList calls();
/** The same with arguments (JSON, keys sorted, without the serial number of the connection) and
    result: `KVA_SetShutdownTime {"mode":3} 0`. */
QStringList detailedCalls();
void clearCalls();

/** Delivers a device event, and returns when it has been handled. */
void emitEvent(quint32 code);
/** Unplugs an instrument, and returns when the event has been handled. */
void unplug(int serial = serialNumber);
void plug(int serial = serialNumber);
/** Switches an instrument off and on: what it has not committed is lost. */
void powerCycle(int serial = serialNumber);

// ---- Value files

/** The value @p index of a value file, exact in single precision. */
float fileValue(int index);
/** A calibration value file: two headings, the serial line, @p count values. */
QByteArray valueFile(const QByteArray& serialLine, int count);

/** The values of a `valueFile` as debug lines show them. */
QStringList valueTexts(int count);
/** The debug lines of checking a file with this number and these values. The name in them is the
    same for both accessories. */
QStringList checkLines(int serial, const QStringList& values);

/** Every byte of a record. */
template <typename Record>
QByteArray bytesOf(const Record& record) {
    return QByteArray(reinterpret_cast<const char*>(&record), sizeof record);
}

} // namespace TestBench

#endif
