#include "command/VerbSupport.h"

#include "command/Console.h"
#include "command/DataFolder.h"
#include "command/DurableFile.h"
#include "command/Report.h"
#include "command/Run.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>

namespace {

Text alreadyThere(const QString& path) {
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 is there already, and stays as it is."), {path});
}

} // namespace

std::optional<std::int32_t> parseSerial(const QString& text) {
    const bool hasDigitsAlone = std::all_of(text.begin(), text.end(), [](QChar character) {
        return character >= QLatin1Char('0') && character <= QLatin1Char('9');
    });
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (!hasDigitsAlone || !isNumber)
        return std::nullopt;
    return number;
}

std::optional<std::int32_t> requireSerial(const QString& text) {
    const auto serial = parseSerial(text);
    if (!serial)
        sayToUser(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "\"%1\" is not a serial number."), {text}));
    return serial;
}

FileKind kindOf(const InputFile& file) {
    if (file.path.endsWith(QLatin1String(".ini"), Qt::CaseInsensitive))
        return FileKind::Settings;
    if (file.content.trimmed().startsWith('{'))
        return FileKind::Snapshot;
    return Plan::isPlan(file) ? FileKind::Plan : FileKind::Values;
}

Text readInstrument(CallWatch& watch, std::int32_t serialNumber, InstrumentState& state) {
    InstrumentAccess access(watch);
    Text problem = openInstrument(access, serialNumber);
    if (problem.isEmpty())
        problem = readTwice(access, serialNumber, state);
    return problem;
}

Text attachedInstruments(std::vector<std::int32_t>& serials) {
    CallWatch watch;
    InstrumentAccess access(watch);
    std::vector<KVA_PORTINFO> ports;
    const CallResult result = access.list(ports);
    for (const KVA_PORTINFO& port : ports)
        serials.push_back(port.serialNumber);
    if (result.failed())
        return callFailure(result);
    return {};
}

ExitStatus requirePlan(const QString& path, bool isOffline, const std::vector<std::int32_t>& only,
                       CheckedPlan& plan) {
    PlanNeeds needs;
    needs.only = only;
    std::vector<std::int32_t> attached;
    Text problem;
    if (!isOffline)
        problem = attachedInstruments(attached);
    if (!problem.isEmpty()) {
        sayToUser(problem);
        return RefusedStatus;
    }
    if (!isOffline)
        needs.attached = attached;
    Faults faults;
    auto file = InputFile::read(path, faults);
    std::optional<Plan> checked;
    if (file)
        checked = Plan::check(*file, needs, faults);
    if (!checked) {
        sayToUser(faults);
        return Usage;
    }
    sayToUser(checked->notes);
    plan = {std::move(*file), std::move(*checked)};
    return Done;
}

bool canBeConfirmed(const WriteOptions& options) {
    if (options.isSure || options.isDryRun || Console::hasTerminal())
        return true;
    sayToUser(Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                     "Without a terminal nobody can be asked: confirm the change "
                                     "with --yes, or look at it with --dry-run.")));
    return false;
}

void prepare(Order& order, const WriteOptions& options) {
    order.isDryRun = options.isDryRun;
    order.rollsBack = !options.leavesFailure;
    order.allowsLowBattery = options.allowsLowBattery;
}

ExitStatus carryOut(Order& order, const WriteOptions& options,
                    const std::vector<JournalInput>& inputs) {
    prepare(order, options);
    Run run(options.isDryRun, inputs);
    Console console(order.serialNumber, options.isSure);
    report(run.carryOut(order, console), options.asJson);
    return run.end();
}

void report(const Verdict& verdict, bool asJson) {
    sayVerdict(verdict);
    if (asJson)
        print(toJson(verdict));
}

std::unique_ptr<JournalReader> openJournal(Text& problem) {
    auto reader = JournalReader::open(DataFolder::journal(), problem);
    if (!reader && problem.isEmpty())
        problem = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "There is no journal yet: %1"),
                       {DataFolder::journal()});
    return reader;
}

Text findRun(const QString& number, std::optional<JournalRun>& run) {
    Text problem;
    const auto reader = openJournal(problem);
    if (!reader)
        return problem;
    problem = reader->run(number.toLongLong(), run);
    if (problem.isEmpty() && !run)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The journal has no run %1."), {number});
    return problem;
}

Text creationProblem(const QString& path) {
    const QFileInfo target(path);
    if (target.exists())
        return alreadyThere(path);
    if (!target.absoluteDir().exists())
        return DurableFile::writeFailure(path, ENOENT);
    return {};
}

Text createFile(const QString& path, const QByteArray& content) {
    bool isTaken = false;
    Text problem = creationProblem(path);
    if (problem.isEmpty())
        problem = DurableFile::create(QFileInfo(path).absoluteFilePath(), content, isTaken);
    if (isTaken)
        return alreadyThere(path);
    return problem;
}
