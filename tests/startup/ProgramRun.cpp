#include "tests/startup/ProgramRun.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

namespace {

constexpr int patience = 100'000; // ms; the user inside gives up earlier

QString textOf(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toString();
}

QVector<QJsonObject> readLines(const QString& path) {
    QVector<QJsonObject> objects;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return objects;
    while (!file.atEnd())
        objects.append(QJsonDocument::fromJson(file.readLine()).object());
    return objects;
}

bool isToolLine(const QJsonObject& event) {
    return textOf(event, "event") == QLatin1String("log") &&
           event.value(QLatin1String("isDebug")).toBool() &&
           textOf(event, "category") == QLatin1String("default");
}

bool isWatchTick(const QJsonObject& event) {
    return textOf(event, "text") == QLatin1String("eEventCode_DisConnect check \n");
}

/** The event as a line of the story; empty for one that is not part of it. */
QString storyLine(const QJsonObject& event) {
    const QString kind = textOf(event, "event");
    if (kind == QLatin1String("shown") || kind == QLatin1String("hidden") ||
        kind == QLatin1String("destroyed"))
        return kind + QLatin1Char(' ') + textOf(event, "window");
    if (kind == QLatin1String("call"))
        return textOf(event, "function");
    if (isToolLine(event) && !isWatchTick(event))
        return QStringLiteral("log ") + textOf(event, "text");
    return kind == QLatin1String("application ends") ? kind : QString();
}

bool isForTheChildAlone(const QString& variable) {
    return variable.startsWith(QLatin1String("LC_")) ||
           variable.startsWith(QLatin1String("LANG")) ||
           variable.startsWith(QLatin1String("QT_")) ||
           variable.startsWith(QLatin1String("KVASIM_"));
}

} // namespace

QJsonObject instrument(int serialNumber, const QString& portName) {
    const QJsonObject port = {{QStringLiteral("type"), portName.isEmpty() ? 1 : 2},
                              {QStringLiteral("name"), portName}};
    const QJsonObject device = {
        {QStringLiteral("serialNumber"), serialNumber},
        {QStringLiteral("firmware"), QJsonArray{1, 2, 3}},
        {QStringLiteral("macAddress"), QStringLiteral("02:00:00:0a:0b:0c")}};
    return {{QStringLiteral("serialNumber"), serialNumber},
            {QStringLiteral("plugged"), true},
            {QStringLiteral("port"), port},
            {QStringLiteral("device"), device},
            {QStringLiteral("wirelessModule"), true},
            {QStringLiteral("powerOffMode"), 2}};
}

QJsonObject benchOf(int instruments, const QJsonArray& faults) {
    const QVector<QJsonObject> all = {instrument(1000001),
                                      instrument(1000002, QStringLiteral("192.168.0.20")),
                                      instrument(1000003)};
    QJsonArray attached;
    for (int i = 0; i < instruments; ++i)
        attached.append(all.at(i));
    return {{QStringLiteral("version"), 1},
            {QStringLiteral("instruments"), attached},
            {QStringLiteral("faults"), faults}};
}

QJsonObject fault(const QString& function, int call, const QString& result) {
    return {{QStringLiteral("function"), function},
            {QStringLiteral("call"),
             call == 0 ? QJsonValue(QStringLiteral("every")) : QJsonValue(call)},
            {QStringLiteral("result"), result}};
}

QString textIn(const QJsonObject& state, const char* objectName) {
    return state.value(QLatin1String("texts"))
        .toObject()
        .value(QLatin1String(objectName))
        .toString();
}

QStringList namesIn(const QJsonObject& state, const char* list) {
    QStringList names;
    const QJsonArray array = state.value(QLatin1String(list)).toArray();
    for (const QJsonValue name : array)
        names.append(name.toString());
    return names;
}

ProgramRun::ProgramRun()
    : program(QStringLiteral(VQTL4_PROGRAM)), locale(QStringLiteral("en_US.UTF-8")),
      bench(benchOf(2)) {}

bool ProgramRun::run() {
    QFile file(path(QStringLiteral("bench.json")));
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(bench).toJson()) < 0) {
        m_problem = "The bench cannot be written.";
        return false;
    }
    file.close();
    QFile::remove(path(QStringLiteral("record")));
    QFile::remove(path(QStringLiteral("trace")));
    QProcess process;
    process.setProcessEnvironment(childEnvironment());
    process.setWorkingDirectory(m_folder.path());
    process.start(program, QStringList());
    if (!process.waitForFinished(patience)) {
        process.kill();
        process.waitForFinished();
    }
    m_standardError = process.readAllStandardError();
    m_events = readLines(path(QStringLiteral("record")));
    m_problem = findProblem(process);
    return m_problem.isEmpty();
}

QByteArray ProgramRun::problem() const {
    return m_problem + "\nstory:\n  " + story().join(QStringLiteral("\n  ")).toUtf8() +
           "\nstandard error:\n" + m_standardError;
}

QStringList ProgramRun::story() const {
    QStringList lines;
    for (const QJsonObject& event : m_events) {
        const QString line = storyLine(event);
        if (!line.isEmpty())
            lines.append(line);
    }
    return lines;
}

QStringList ProgramRun::shownWindows() const {
    QStringList windows;
    for (const QJsonObject& event : m_events) {
        if (textOf(event, "event") == QLatin1String("shown"))
            windows.append(textOf(event, "window"));
    }
    return windows;
}

QStringList ProgramRun::debugLines() const {
    QStringList lines;
    for (const QJsonObject& event : m_events) {
        if (isToolLine(event) && !isWatchTick(event))
            lines.append(textOf(event, "text"));
    }
    return lines;
}

QVector<QJsonObject> ProgramRun::calls() const {
    return readLines(path(QStringLiteral("trace")));
}

QStringList ProgramRun::calledFunctions() const {
    QStringList functions;
    for (const QJsonObject& call : calls())
        functions.append(textOf(call, "function"));
    return functions;
}

QVector<QJsonObject> ProgramRun::states(const QString& className) const {
    QVector<QJsonObject> states;
    for (const QJsonObject& event : m_events) {
        const QJsonObject state = event.value(QLatin1String("state")).toObject();
        if (textOf(state, "class") == className)
            states.append(state);
    }
    return states;
}

QJsonObject ProgramRun::state(const QString& className) const {
    return states(className).value(0);
}

QStringList ProgramRun::boxTexts() const {
    QStringList texts;
    for (const QJsonObject& state : states(QStringLiteral("QMessageBox")))
        texts.append(textOf(state, "text"));
    return texts;
}

QProcessEnvironment ProgramRun::childEnvironment() const {
    QProcessEnvironment child = QProcessEnvironment::systemEnvironment();
    for (const QString& variable : child.keys()) {
        if (isForTheChildAlone(variable))
            child.remove(variable);
    }
    if (!locale.isEmpty())
        child.insert(QStringLiteral("LC_ALL"), locale);
    child.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    child.insert(QStringLiteral("QT_FONT_DPI"), QStringLiteral("72"));
    child.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    child.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(VQTL4_PROBE_PLUGINS));
    child.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("startup_probe"));
    child.insert(QStringLiteral("STARTUP_PROBE_RECORD"), path(QStringLiteral("record")));
    child.insert(QStringLiteral("STARTUP_PROBE_SCRIPT"),
                 QString::fromUtf8(QJsonDocument(steps).toJson(QJsonDocument::Compact)));
    child.insert(QStringLiteral("KVASIM_BENCH"), path(QStringLiteral("bench.json")));
    child.insert(QStringLiteral("KVASIM_TRACE"), path(QStringLiteral("trace")));
    child.insert(environment);
    return child;
}

QByteArray ProgramRun::findProblem(const QProcess& process) {
    if (process.error() == QProcess::FailedToStart)
        return "The program did not start.";
    for (const QJsonObject& event : m_events) {
        if (textOf(event, "event") == QLatin1String("failure"))
            return textOf(event, "reason").toUtf8();
    }
    if (process.exitStatus() != QProcess::NormalExit)
        return "The program crashed or did not end by itself.";
    if (process.exitCode() != 0)
        return "The exit status is " + QByteArray::number(process.exitCode()) + '.';
    int taken = 0;
    int position = 0;
    for (const QJsonObject& event : m_events) {
        taken += textOf(event, "event") == QLatin1String("step") ? 1 : 0;
        if (!isToolLine(event))
            continue;
        const QByteArray text = textOf(event, "text").toUtf8();
        position = m_standardError.indexOf(text, position);
        if (position < 0)
            return "Not on standard error in its place: " + text;
        position += text.size();
    }
    return taken == steps.size() ? QByteArray() : QByteArray("Not all steps were taken.");
}

QString ProgramRun::path(const QString& name) const {
    return m_folder.filePath(name);
}
