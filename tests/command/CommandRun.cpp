#include "CommandRun.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QProcessEnvironment>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

namespace {

QJsonObject accessory(const QString& serial, int count, double first, double step) {
    QJsonArray values;
    for (int i = 0; i < count; ++i)
        values.append(double(qRound((first + step * i) * 10000)) / 10000);
    return {{"serialNumber", serial}, {"values", values}};
}

QJsonObject settings(const QString& address, const QString& ssid, const QString& key) {
    return {{"APConnectUse", 1},    {"DHCPUse", 0},
            {"IPAddress", address}, {"SubnetMask", "255.255.255.0"},
            {"DNS", "192.168.7.2"}, {"DefaultGateway", "192.168.7.1"},
            {"SSID", ssid},         {"EncryptKey", key}};
}

QByteArray settingsFile(const QJsonObject& settings) {
    QByteArray content = "[Network]\n";
    for (const QString& field : settings.keys())
        content += field.toLatin1() + '=' + settings[field].toVariant().toByteArray() + '\n';
    return content;
}

QJsonObject calibration(const QJsonObject& white, const QJsonObject& adapter) {
    QByteArray rest;
    for (int i = 0; i < 2048; ++i)
        rest += static_cast<char>(i * 7 + i / 256);
    return {{"committed", QJsonObject{{"white", white},
                                      {"ambientAdapter", adapter},
                                      {"reserved", QJsonObject{{"hex", QString(rest.toHex())}}}}}};
}

QJsonObject instrumentWith(const QJsonObject& network, int powerOff, const QJsonObject& white,
                           const QJsonObject& adapter) {
    return {{"serialNumber", CommandRun::serialNumber},
            {"startUpMs", 0},
            {"network", QJsonObject{{"active", network}}},
            {"powerOffMode", powerOff},
            {"calibration", calibration(white, adapter)}};
}

QJsonObject networkInForce(const QJsonObject& instrument) {
    const QJsonObject network = instrument["network"].toObject();
    const QJsonValue pending = network["pending"];
    return (pending.isObject() ? pending : network["active"]).toObject();
}

/** Single precision is what the instrument holds. */
QJsonValue inSinglePrecision(const QJsonValue& value) {
    if (value.isDouble())
        return double(static_cast<float>(value.toDouble()));
    if (value.isArray()) {
        QJsonArray result;
        for (const QJsonValue element : value.toArray())
            result.append(inSinglePrecision(element));
        return result;
    }
    if (!value.isObject())
        return value;
    QJsonObject result = value.toObject();
    for (const QString& key : result.keys())
        result[key] = inSinglePrecision(result[key]);
    return result;
}

} // namespace

const char* const CommandRun::keys[2] = {"first-secret-key", "second-secret-key"};

QJsonObject CommandResult::object() const {
    if (standardOutput.count('\n') != 1)
        return {};
    return QJsonDocument::fromJson(standardOutput).object();
}

QByteArray CommandResult::text() const {
    return "exit status " + QByteArray::number(exitStatus) + "\n" + standardOutput + standardError;
}

CommandRun::CommandRun() {
    setBench(initialInstrument());
    const QJsonObject wanted = wantedInstrument();
    const QJsonObject record = wanted["calibration"].toObject()["committed"].toObject();
    write("wanted.ini", settingsFile(networkInForce(wanted)));
    write("plate.csv", valueFile(record["white"].toObject()));
    write("adapter.csv", valueFile(record["ambientAdapter"].toObject()));
}

QJsonObject CommandRun::initialInstrument() {
    return instrumentWith(settings("192.168.7.10", "first-room", keys[0]), 1,
                          accessory("12345678", 38, 85.5, 0.2),
                          accessory("00012345", 75, 0.6, 0.01));
}

QJsonObject CommandRun::wantedInstrument() {
    return instrumentWith(settings("192.168.7.20", "second-room", keys[1]), 3,
                          accessory("12345679", 38, 85.6, 0.2),
                          accessory("00012346", 75, 0.605, 0.01));
}

QString CommandRun::write(const QString& name, const QByteArray& content) const {
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qPrintable(path(name)));
    return path(name);
}

QByteArray CommandRun::read(const QString& name) const {
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void CommandRun::setBench(const QJsonArray& instruments, const QJsonArray& faults) const {
    const QJsonObject bench = {{"version", 1}, {"instruments", instruments}, {"faults", faults}};
    write("bench.json", QJsonDocument(bench).toJson());
}

QJsonArray CommandRun::instruments() const {
    return QJsonDocument::fromJson(read("bench.json")).object()["instruments"].toArray();
}

void CommandRun::setFaults(const QJsonArray& faults) const {
    setBench(instrument(), faults);
}

std::unique_ptr<QProcess> CommandRun::start(const QStringList& arguments,
                                            const QStringList& environment) const {
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert("KVASIM_BENCH", path("bench.json"));
    variables.insert("KVASIM_TRACE", path("trace"));
    variables.insert("XDG_DATA_HOME", path("data"));
    variables.insert("HOME", path("home"));
    variables.insert("LC_ALL", "C.UTF-8");
    // The shim comes before a sanitizer's library, and has nothing that it could miss.
    const QString sanitizer = variables.value("ASAN_OPTIONS");
    variables.insert("ASAN_OPTIONS", sanitizer + ":verify_asan_link_order=0");
    for (const QString& entry : environment)
        variables.insert(entry.section('=', 0, 0), entry.section('=', 1));
    process->setProcessEnvironment(variables);
    process->start(VQTL4CTL, arguments);
    if (!process->waitForStarted())
        qFatal("%s cannot be started", VQTL4CTL);
    return process;
}

CommandResult CommandRun::finish(QProcess& process) {
    CommandResult result;
    constexpr int patienceMs = 60000;
    if (!process.waitForFinished(patienceMs))
        process.kill();
    if (process.exitStatus() == QProcess::NormalExit)
        result.exitStatus = process.exitCode();
    result.standardOutput = process.readAllStandardOutput();
    result.standardError = process.readAllStandardError();
    return result;
}

CommandResult CommandRun::run(const QStringList& arguments, const QStringList& environment) const {
    const auto process = start(arguments, environment);
    process->closeWriteChannel();
    return finish(*process);
}

QStringList CommandRun::applyAll() const {
    return {"apply",
            QString::number(serialNumber),
            "--network",
            path("wanted.ini"),
            "--power-off",
            "60",
            "--white-plate",
            path("plate.csv"),
            "--ambient-adapter",
            path("adapter.csv"),
            "--yes",
            "--json"};
}

QStringList CommandRun::calls() const {
    QStringList names;
    for (const QByteArray& line : read("trace").split('\n')) {
        if (!line.isEmpty())
            names.append(QJsonDocument::fromJson(line).object()["function"].toString());
    }
    return names;
}

QStringList CommandRun::writingCalls() const {
    QStringList names;
    for (const QString& name : calls()) {
        if (name.contains("_Set"))
            names.append(name);
    }
    return names;
}

void CommandRun::clearTrace() const {
    QFile::remove(path("trace"));
}

QStringList CommandRun::snapshots() const {
    const QDir folder(dataFolder() + "/snapshots");
    QStringList paths;
    for (const QString& name : folder.entryList(QDir::Files))
        paths.append(folder.filePath(name));
    return paths;
}

std::vector<QVariantList> CommandRun::ask(const QString& query, const QString& folder) const {
    const QDir from(folder.isEmpty() ? dataFolder() : folder);
    const QTemporaryDir copies;
    for (const QString& name : from.entryList({"journal.sqlite*"}, QDir::Files))
        QFile::copy(from.filePath(name), copies.filePath(name));
    std::vector<QVariantList> rows;
    const QString connection = copies.path();
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", connection);
        database.setDatabaseName(copies.filePath("journal.sqlite"));
        if (!database.open())
            qFatal("the journal cannot be opened");
        QSqlQuery answer(query, database);
        while (answer.next()) {
            QVariantList row;
            for (int column = 0; column < answer.record().count(); ++column)
                row.append(answer.value(column));
            rows.push_back(row);
        }
    }
    QSqlDatabase::removeDatabase(connection);
    return rows;
}

bool CommandRun::isMarked(const QString& folder) const {
    return !ask("SELECT 1 FROM mark WHERE instrument NOT IN (SELECT mark FROM mark_end)", folder)
                .empty();
}

QJsonObject rule(const QString& function, const QString& call, const QJsonObject& what) {
    QJsonObject result = what;
    result["function"] = function;
    result["call"] = call;
    return result;
}

QByteArray valueFile(const QJsonObject& accessory) {
    QStringList values;
    for (const QJsonValue value : accessory["values"].toArray())
        values.append(QString::number(value.toDouble(), 'f', 4));
    return "Values\nSerial number, values\n" + accessory["serialNumber"].toString().toLatin1() +
           '\n' + values.join(',').toLatin1() + '\n';
}

void editSnapshots(const QString& journal) {
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "edit");
        database.setDatabaseName(journal);
        QVERIFY(database.open());
        QSqlQuery query(database);
        QVERIFY(query.exec("SELECT sql FROM sqlite_master WHERE name = 'snapshot_update'"));
        QVERIFY(query.next());
        const QString guard = query.value(0).toString();
        query.finish();
        for (const QString& statement :
             {QString("DROP TRIGGER snapshot_update"),
              QString("UPDATE snapshot SET content = replace(content, '-room', '-hall')"), guard})
            QVERIFY2(query.exec(statement), qPrintable(query.lastError().text()));
    }
    QSqlDatabase::removeDatabase("edit");
}

QByteArray withValue(const QByteArray& file, int index, const QByteArray& text) {
    QList<QByteArray> lines = file.split('\n');
    QList<QByteArray> values = lines[3].split(',');
    values[index] = text;
    lines[3] = values.join(',');
    return lines.join('\n');
}

QString differenceBetween(const QJsonObject& instrument, const QJsonObject& expected) {
    QStringList differing;
    if (networkInForce(instrument) != networkInForce(expected))
        differing.append("network");
    if (instrument["powerOffMode"] != expected["powerOffMode"])
        differing.append("power-off");
    const QJsonObject calibration = instrument["calibration"].toObject();
    if (inSinglePrecision(calibration["committed"]) !=
        inSinglePrecision(expected["calibration"].toObject()["committed"]))
        differing.append("calibration");
    if (calibration["staged"].isObject())
        differing.append("staged");
    return differing.join(' ');
}
