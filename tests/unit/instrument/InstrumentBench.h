#ifndef TESTS_UNIT_INSTRUMENT_INSTRUMENTBENCH_H
#define TESTS_UNIT_INSTRUMENT_INSTRUMENTBENCH_H

#include "instrument/CKvaSdk_Ctrl.h"
#include "simulator/KvaSim.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/**
 * The simulated instruments as the tests of the controller use them. Functions that return false
 * leave the reason in `KvaSim_LastError`. The thread of the test only.
 */
namespace InstrumentBench {

/** The instrument of `load`. */
constexpr int32_t serialNumber = 1234567;

/** Puts a bench of one USB instrument in place, every setting of it as the .cpp says; no
    connection, no rules, an empty log. */
bool load();

/** The same with other instruments: the items of a JSON array. */
bool load(const QByteArray& instruments);

/** Changes the instrument of `load` by a JSON merge patch. */
bool set(const QByteArray& patch);

/** Lets a function answer @p result. @param call the nth call from now; 0: every call */
bool answer(const char* function, KVA_RESULT result, int call = 0);

/** Enumerates, connects to the first instrument and empties the log. */
bool connect(CKvaSdk_Ctrl& controller);

/** Loses what the instrument has not committed and connects to it again. */
bool powerCycle(CKvaSdk_Ctrl& controller);

/** The functions called since the log was emptied, in order. */
QStringList calls();

/** The same with arguments (JSON, keys sorted, without the serial number of the connection) and
    result: `KVA_SetShutdownTime {"mode":3} 0`. */
QStringList detailedCalls();

/** What the connected instrument answers to a request for its calibration record. */
KVA_JIG_CALREFDATA calibrationRecord();

/** What the connected instrument answers to a request for its network settings. */
KVA_NETWORKINFO networkRecord();

/** Every byte of a record. */
template <typename Record>
QByteArray bytesOf(const Record& record) {
    return QByteArray(reinterpret_cast<const char*>(&record), sizeof record);
}

// ---- Files

/** The value @p index of a value file, exact in single precision. */
float fileValue(int index);

/** A calibration value file: two headings, the serial line, @p valueCount values. */
QByteArray valueFile(const QByteArray& serialLine, int valueCount);

/** Writes the file. @return its path in the local 8-bit encoding, empty on failure */
QByteArray writeFile(const QString& path, const QByteArray& content);

} // namespace InstrumentBench

#endif
