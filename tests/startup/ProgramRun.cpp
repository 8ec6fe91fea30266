#include "tests/startup/ProgramRun.h"

namespace {

constexpr int patience = 100'000; // ms; the user inside gives up earlier

QVector<QJsonObject> objectsIn(const QByteArray& lines) {
    QVector<QJsonObject> objects;
    for (const QByteArray& line : lines.split('\n')) {
        if (!line.isEmpty())
            objects.append(QJsonDocument::fromJson(line).object());
    }
    return objects;
}

bool isToolLine(const QJsonObject& event) {
    return event["event"] == "log" && event["isDebug"] == true && event["category"] == "default";
}

/** The event as a line of the story; empty for one that is not part of it. */
QString storyLine(const QJsonObject& event) {
    const QString kind = event["event"].toString();
    if (kind == "shown" || kind == "hidden" || kind == "destroyed")
        return kind + ' ' + event["window"].toString();
    if (kind == "call")
        return event["function"].toString();
    const bool isWatchTick = event["text"] == "eEventCode_DisConnect check \n";
    if (isToolLine(event) && !isWatchTick)
        return "log " + event["text"].toString();
    return kind == "application ends" ? kind : "";
}

bool isForTheChildAlone(const QString& variable) {
    return variable.startsWith("LC_") || variable.startsWith("LANG") ||
           variable.startsWith("QT_") || variable.startsWith("KVASIM_");
}

} // namespace

QJsonObject benchOf(int instruments, const QJsonArray& faults) {
    QJsonArray attached;
    for (int i = 1; i <= instruments; ++i) {
        const QJsonObject network = {{"type", 2}, {"name", "192.168.0.20"}};
        attached.append(QJsonObject{{"serialNumber", 1000000 + i},
                                    {"port", i == 2 ? network : QJsonObject{{"type", 1}}},
                                    {"powerOffMode", 2}});
    }
    return {{"version", 1}, {"instruments", attached}, {"faults", faults}};
}

QJsonObject fault(const QString& function, int call, const QString& result) {
    return {{"function", function},
            {"call", call == 0 ? QJsonValue("every") : QJsonValue(call)},
            {"result", result}};
}

ProgramRun::ProgramRun(const QJsonArray& userSteps, const QJsonObject& instruments)
    : steps(userSteps), bench(instruments), program(VQTL4_PROGRAM), locale(unitedStates) {}

bool ProgramRun::run() {
    m_folder.write("bench.json", QJsonDocument(bench).toJson());
    QFile::remove(m_folder.path("record"));
    QFile::remove(m_folder.path("trace"));
    QProcess process;
    process.setProcessEnvironment(childEnvironment());
    process.setWorkingDirectory(m_folder.path());
    process.start(program, QStringList());
    if (!process.waitForFinished(patience)) {
        process.kill();
        process.waitForFinished();
    }
    m_standardError = process.readAllStandardError();
    m_events = objectsIn(m_folder.read("record"));
    m_problem = findProblem(process);
    return m_problem.isEmpty();
}

QByteArray ProgramRun::problem() const {
    return m_problem + "\nstory:\n  " + story().join("\n  ").toUtf8() + "\nstandard error:\n" +
           m_standardError;
}

QStringList ProgramRun::story() const {
    QStringList lines;
    for (const QJsonObject& event : m_events)
        lines.append(storyLine(event));
    lines.removeAll("");
    return lines;
}

QStringList ProgramRun::told(const QString& word) const {
    QStringList rests;
    for (const QString& line : story()) {
        if (line.startsWith(word + ' '))
            rests.append(line.mid(word.size() + 1));
    }
    return rests;
}

QStringList ProgramRun::calledFunctions() const {
    QStringList functions;
    for (const QJsonObject& call : objectsIn(m_folder.read("trace")))
        functions.append(call["function"].toString());
    return functions;
}

QJsonArray ProgramRun::argumentsOf(const QString& function, const QString& argument) const {
    QJsonArray values;
    for (const QJsonObject& call : objectsIn(m_folder.read("trace"))) {
        if (call["function"] == function)
            values.append(call["arguments"][argument]);
    }
    return values;
}

QVector<QJsonObject> ProgramRun::states(const QString& className) const {
    QVector<QJsonObject> states;
    for (const QJsonObject& event : m_events) {
        if (event["state"]["class"] == className)
            states.append(event["state"].toObject());
    }
    return states;
}

QStringList ProgramRun::boxTexts() const {
    QStringList texts;
    for (const QJsonObject& state : states("QMessageBox"))
        texts.append(state["text"].toString());
    return texts;
}

QProcessEnvironment ProgramRun::childEnvironment() const {
    QProcessEnvironment child = QProcessEnvironment::systemEnvironment();
    for (const QString& variable : child.keys()) {
        if (isForTheChildAlone(variable))
            child.remove(variable);
    }
    if (!locale.isEmpty())
        child.insert("LC_ALL", locale);
    child.insert("QT_QPA_PLATFORM", "offscreen");
    child.insert("QT_FONT_DPI", "72");
    child.insert("QT_FORCE_STDERR_LOGGING", "1");
    child.insert("QT_PLUGIN_PATH", VQTL4_PROBE_PLUGINS);
    child.insert("QT_QPA_GENERIC_PLUGINS", "startup_probe");
    child.insert("STARTUP_PROBE_RECORD", m_folder.path("record"));
    child.insert("STARTUP_PROBE_SCRIPT", QJsonDocument(steps).toJson(QJsonDocument::Compact));
    child.insert("KVASIM_BENCH", m_folder.path("bench.json"));
    child.insert("KVASIM_TRACE", m_folder.path("trace"));
    child.insert(environment);
    return child;
}

QByteArray ProgramRun::findProblem(const QProcess& process) const {
    if (process.error() == QProcess::FailedToStart)
        return "The program did not start.";
    int taken = 0;
    for (const QJsonObject& event : m_events) {
        if (event["event"] == "failure")
            return event["reason"].toString().toUtf8();
        taken += event["event"] == "step" ? 1 : 0;
    }
    if (process.exitStatus() != QProcess::NormalExit)
        return "The program crashed or did not end by itself.";
    if (process.exitCode() != 0)
        return "The exit status is " + QByteArray::number(process.exitCode()) + '.';
    decltype(m_standardError.size()) position = 0;
    for (const QJsonObject& event : m_events) {
        if (!isToolLine(event))
            continue;
        const QByteArray text = event["text"].toString().toUtf8();
        position = m_standardError.indexOf(text, position);
        if (position < 0)
            return "Not on standard error in its place: " + text;
        position += text.size();
    }
    return taken == steps.size() ? "" : "Not all steps were taken.";
}
