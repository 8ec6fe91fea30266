#ifndef TESTS_COMMAND_THREEINSTRUMENTS_H
#define TESTS_COMMAND_THREEINSTRUMENTS_H

#include "CommandRun.h"

#include <QJsonDocument>

/** A bench of three instruments, 01000001 to 01000003, for one run of the program after another. */
namespace ThreeInstruments {

constexpr int first = CommandRun::serialNumber;

/** As the usual instrument at first, with other serial number and address. */
inline QJsonObject instrumentNumber(int number) {
    QJsonObject instrument = CommandRun::initialInstrument();
    QJsonObject network = instrument["network"].toObject()["active"].toObject();
    network["IPAddress"] = QString("192.168.7.%1").arg(10 + number);
    instrument["network"] = QJsonObject{{"active", network}};
    instrument["serialNumber"] = first + number;
    return instrument;
}

inline void setBench(const CommandRun& run, const QJsonArray& faults = {}) {
    const QJsonArray instruments = {instrumentNumber(0), instrumentNumber(1), instrumentNumber(2)};
    run.setBench(instruments, faults);
    run.clearTrace();
}

/** What instrument holds: address in force after a power cycle, power-off mode, plate. */
inline QString held(const CommandRun& run, int number) {
    const QJsonObject instrument = run.instruments()[number].toObject();
    const QJsonObject network = instrument["network"].toObject();
    const QJsonObject used =
        (network["pending"].isObject() ? network["pending"] : network["active"]).toObject();
    const QJsonObject record = instrument["calibration"].toObject()["committed"].toObject();
    return QString("%1 %2 %3")
        .arg(used["IPAddress"].toString().section('.', 3),
             QString::number(instrument["powerOffMode"].toInt()),
             record["white"].toObject()["serialNumber"].toString());
}

inline QString heldByAll(const CommandRun& run) {
    return QStringList{held(run, 0), held(run, 1), held(run, 2)}.join(", ");
}

/** "00000001 word" of each object on standard output. */
inline QString outcomes(const CommandResult& result) {
    QStringList lines;
    for (const QByteArray& line : result.standardOutput.trimmed().split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        lines.append(object["outcome"].toString());
    }
    return lines.join(' ');
}

inline QJsonObject faultOf(int number, const char* function, const char* call,
                           const QJsonObject& what) {
    QJsonObject result = rule(function, call, what);
    result["serialNumber"] = first + number;
    return result;
}

} // namespace ThreeInstruments

#endif
