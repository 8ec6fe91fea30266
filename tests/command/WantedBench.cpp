#include "WantedBench.h"

#include <QJsonDocument>

namespace {

QJsonObject shifted(QJsonObject accessory, const QString& serial, double by) {
    QJsonArray values;
    for (const QJsonValue value : accessory["values"].toArray())
        values.append(double(qRound((value.toDouble() + by) * 10000)) / 10000);
    accessory["serialNumber"] = serial;
    accessory["values"] = values;
    return accessory;
}

/** What the plan of a round makes of an instrument; round 0 is the state at first. No two
    instruments have an address or an accessory in common, and each round changes all of them. */
QJsonObject instrumentAfter(int round, int number) {
    QJsonObject instrument = CommandRun::initialInstrument();
    QJsonObject network = instrument["network"].toObject()["active"].toObject();
    network["IPAddress"] = QString("192.168.7.%1").arg(10 + 100 * (round % 2) + number);
    network["SSID"] = QString("room-%1-%2").arg(round).arg(number);
    network["EncryptKey"] = QString("secret-key-%1-%2").arg(round).arg(number);
    QJsonObject record = instrument["calibration"].toObject()["committed"].toObject();
    const int unlike = 100 * round + number;
    const int shift = (7 * round + number) % 10;
    record["white"] =
        shifted(record["white"].toObject(), QString::number(10000001 + unlike), 0.01 * shift);
    record["ambientAdapter"] =
        shifted(record["ambientAdapter"].toObject(),
                QString("%1").arg(10001 + unlike, 8, 10, QChar('0')), 0.0005 * shift);
    instrument["serialNumber"] = WantedBench::serialNumber(number);
    instrument["network"] = QJsonObject{{"active", network}};
    instrument["powerOffMode"] = (round + number) % 4;
    instrument["calibration"] = QJsonObject{{"committed", record}};
    return instrument;
}

/** The row of a plan, after its value files. */
QByteArray row(const CommandRun& run, const QJsonObject& instrument) {
    static const QStringList powerOff = {"off", "15", "30", "60"};
    const int serial = instrument["serialNumber"].toInt();
    const QJsonObject network = instrument["network"].toObject()["active"].toObject();
    const QJsonObject record = instrument["calibration"].toObject()["committed"].toObject();
    const QString plate = QString("plate-%1.csv").arg(serial);
    const QString adapter = QString("adapter-%1.csv").arg(serial);
    run.write(plate, valueFile(record["white"].toObject()));
    run.write(adapter, valueFile(record["ambientAdapter"].toObject()));
    const QStringList cells = {QString::number(serial),
                               network["SSID"].toString(),
                               network["EncryptKey"].toString(),
                               network["IPAddress"].toString(),
                               powerOff[instrument["powerOffMode"].toInt()],
                               plate,
                               adapter};
    return cells.join(',').toUtf8() + '\n';
}

} // namespace

QString WantedBench::fromOld(const QJsonArray& now, int number) const {
    return differenceBetween(now[number].toObject(), old[static_cast<std::size_t>(number)]);
}

QString WantedBench::fromWanted(const QJsonArray& now, int number) const {
    return differenceBetween(now[number].toObject(), wanted[static_cast<std::size_t>(number)]);
}

WantedBench WantedBench::ofOne(const CommandRun& run) {
    return {run.applyAll(), {CommandRun::initialInstrument()}, {CommandRun::wantedInstrument()}};
}

WantedBench WantedBench::byPlan(const CommandRun& run, int count, int round) {
    WantedBench bench;
    QByteArray plan = "serial,ssid,key,ip,power_off,white_plate,ambient_adapter\n";
    for (int number = 0; number < count; ++number) {
        bench.old.push_back(instrumentAfter(round - 1, number));
        bench.wanted.push_back(instrumentAfter(round, number));
        plan += row(run, bench.wanted.back());
    }
    bench.arguments =
        QStringList{"apply", "--plan", run.write("plan.csv", plan), "--yes", "--json"};
    return bench;
}

void WantedBench::setBench(const CommandRun& run) const {
    QJsonArray instruments;
    for (const QJsonObject& instrument : old)
        instruments.append(instrument);
    run.setBench(instruments);
}

std::vector<WritingCall> writesIn(const QByteArray& trace) {
    std::vector<WritingCall> writes;
    for (const QByteArray& line : trace.split('\n')) {
        const QJsonObject call = QJsonDocument::fromJson(line).object();
        const QString function = call["function"].toString();
        if (function.contains("_Set"))
            writes.push_back({function, call["arguments"].toObject()["serialNumber"].toInt(),
                              call["result"].toInt()});
    }
    return writes;
}

std::vector<WritingCall> writesKept(const CommandRun& run, const QString& where) {
    std::vector<WritingCall> writes;
    for (const QVariantList& row :
         run.ask("SELECT function, serial_number, code FROM call"
                 " JOIN step ON step.id = step JOIN instrument ON instrument.id = step.instrument"
                 " LEFT JOIN call_result ON call = call.id WHERE writes = 1 AND " +
                 where + " ORDER BY call.id"))
        writes.push_back(
            {row[0].toString(), row[1].toInt(), row[2].isNull() ? QVariant() : row[2]});
    return writes;
}

QString unlikeWrites(const std::vector<WritingCall>& made, const std::vector<WritingCall>& kept) {
    const bool isLastOpen = !kept.empty() && !kept.back().result.isValid();
    const bool hasAll =
        made.size() == kept.size() || (isLastOpen && made.size() + 1 == kept.size());
    if (!hasAll)
        return QString("%1 writes made, %2 kept").arg(made.size()).arg(kept.size());
    for (std::size_t i = 0; i < made.size(); ++i) {
        const bool isOpen = isLastOpen && i + 1 == kept.size();
        const bool isSame = kept[i].function == made[i].function &&
                            kept[i].serialNumber == made[i].serialNumber &&
                            (isOpen || kept[i].result == made[i].result);
        if (!isSame)
            return QString("write %1 made: %2 %3 %4; kept: %5 %6 %7")
                .arg(i)
                .arg(made[i].function)
                .arg(made[i].serialNumber)
                .arg(made[i].result.toInt())
                .arg(kept[i].function)
                .arg(kept[i].serialNumber)
                .arg(kept[i].result.toString());
    }
    return {};
}
