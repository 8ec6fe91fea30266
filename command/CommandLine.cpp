#include "command/CommandLine.h"

#include "command/DataFolder.h"
#include "command/FieldTexts.h"
#include "command/Report.h"
#include "command/UsageText.h"
#include "command/Verbs.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <string>

namespace {

std::string help(const char* source) {
    return translated(source).toStdString();
}

std::vector<std::string> words(const QStringList& list) {
    std::vector<std::string> result;
    for (const QString& word : list)
        result.push_back(word.toStdString());
    return result;
}

/** The parser of the command line; it stores each option in its variable. */
class CommandLine {
public:
    CommandLine();
    int run(int argc, char** argv);

private:
    CLI::App* addVerb(const char* name, const char* description, std::function<ExitStatus()> verb);
    static void addText(CLI::App* verb, const std::string& name, QString& target,
                        const char* description, bool isRequired = false);
    static void addTexts(CLI::App* verb, const std::string& name, QStringList& target,
                         const char* description, bool isRequired);
    static void addWriteOptions(CLI::App* verb, WriteOptions& options);
    void addReadingVerbs();
    void addFileVerbs();
    void addPlan();
    void addApply();
    void addApplyFiles(CLI::App* verb);
    static void requireApplyTarget(const CLI::App& verb);
    void addRestore();
    void addRecover();
    void addVerify();
    void addJournal();
    void addReport();

    CLI::App m_app;
    std::function<ExitStatus()> m_verb;
    std::string m_language; ///< only parsed here; `main` has used it already
    ListOptions m_list;
    ShowOptions m_show;
    BackupOptions m_backup;
    CheckOptions m_check;
    PlanInitOptions m_planInit;
    PlanCheckOptions m_planCheck;
    DiffOptions m_diff;
    ApplyOptions m_apply;
    RestoreOptions m_restore;
    RecoverOptions m_recover;
    VerifyOptions m_verify;
    JournalOptions m_journal;
    JournalShowOptions m_journalShow;
    JournalSnapshotOptions m_journalSnapshot;
    ReportOptions m_report;
};

const char runHelp[] = QT_TRANSLATE_NOOP("vq-tl4ctl", "number of a run");
const char newFileHelp[] =
    QT_TRANSLATE_NOOP("vq-tl4ctl", "the file; one that is there is not written over");
const char jsonHelp[] = QT_TRANSLATE_NOOP("vq-tl4ctl", "one JSON object a line");
const char planHelp[] =
    QT_TRANSLATE_NOOP("vq-tl4ctl", "the plan: a spreadsheet (.csv), a row for each instrument");
const char serialHelp[] =
    QT_TRANSLATE_NOOP("vq-tl4ctl", "serial number, with leading zeros or without");

CommandLine::CommandLine()
    : m_app(help(QT_TRANSLATE_NOOP(
                "vq-tl4ctl", "Reads and changes the settings of instruments, and proves what it "
                             "changed.")),
            "vq-tl4ctl") {
    // Before the verbs are added, as they inherit it.
    m_app.set_help_flag("-h,--help", help(QT_TRANSLATE_NOOP("vq-tl4ctl", "show this help")));
    m_app.formatter(UsageText::formatter());
    m_app.failure_message(UsageText::failure);
    m_app.option_defaults()->disable_flag_override();
    m_app.require_subcommand(1);
    m_app.fallthrough();
    m_app.set_version_flag("--version", VQTL4_VERSION,
                           help(QT_TRANSLATE_NOOP("vq-tl4ctl", "show the version")));
    m_app
        .add_option("--lang", m_language,
                    help(QT_TRANSLATE_NOOP("vq-tl4ctl", "language of the messages, in place of the "
                                                        "system's")))
        ->check(CLI::IsMember({"en", "ja"}));
    m_app.add_option_function<std::string>(
        "--journal",
        [](const std::string& path) {
            DataFolder::useJournal(QString::fromLocal8Bit(path.c_str()));
        },
        help(QT_TRANSLATE_NOOP("vq-tl4ctl", "the journal, in place of the usual one")));
    addReadingVerbs();
    addFileVerbs();
    addPlan();
    addApply();
    addRestore();
    addRecover();
    addVerify();
    addJournal();
    addReport();
}

CLI::App* CommandLine::addVerb(const char* name, const char* description,
                               std::function<ExitStatus()> verb) {
    CLI::App* sub = m_app.add_subcommand(name, help(description));
    // A verb within this one has been called before.
    sub->callback([this, verb = std::move(verb)] {
        if (!m_verb)
            m_verb = verb;
    });
    return sub;
}

void CommandLine::addText(CLI::App* verb, const std::string& name, QString& target,
                          const char* description, bool isRequired) {
    verb->add_option_function<std::string>(
            name,
            [&target](const std::string& text) { target = QString::fromLocal8Bit(text.c_str()); },
            help(description))
        ->required(isRequired);
}

void CommandLine::addTexts(CLI::App* verb, const std::string& name, QStringList& target,
                           const char* description, bool isRequired) {
    verb->add_option_function<std::vector<std::string>>(
            name,
            [&target](const std::vector<std::string>& texts) {
                for (const std::string& text : texts)
                    target.append(QString::fromLocal8Bit(text.c_str()));
            },
            help(description))
        ->required(isRequired);
}

void CommandLine::addReadingVerbs() {
    CLI::App* verb =
        addVerb("list", QT_TRANSLATE_NOOP("vq-tl4ctl", "list the attached instruments"),
                [this] { return list(m_list); });
    verb->add_flag("--json", m_list.asJson, help(jsonHelp));

    verb = addVerb("show", QT_TRANSLATE_NOOP("vq-tl4ctl", "show what an instrument holds"),
                   [this] { return show(m_show); });
    addText(verb, "SERIAL", m_show.serial, serialHelp, true);
    verb->add_flag("--json", m_show.asJson, help(jsonHelp));
    verb->add_flag(
        "--reveal-key", m_show.revealsKey,
        help(QT_TRANSLATE_NOOP("vq-tl4ctl", "show the security key, not only that it is set")));

    verb = addVerb(
        "backup", QT_TRANSLATE_NOOP("vq-tl4ctl", "write a snapshot of each instrument to a folder"),
        [this] { return backup(m_backup); });
    addTexts(verb, "SERIAL", m_backup.serials, serialHelp, false);
    verb->add_flag("--all", m_backup.all,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "all attached instruments")))
        ->excludes(verb->get_option("SERIAL"));
    addText(verb, "--to", m_backup.folder,
            QT_TRANSLATE_NOOP("vq-tl4ctl", "the folder; it is made where it is missing"), true);
    verb->add_flag("--without-key", m_backup.withoutKey,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "leave the security key out")));
    verb->parse_complete_callback([this] {
        if (!m_backup.all && m_backup.serials.isEmpty())
            throw CLI::RequiredError("SERIAL | --all");
    });
}

void CommandLine::addFileVerbs() {
    CLI::App* verb =
        addVerb("check", QT_TRANSLATE_NOOP("vq-tl4ctl", "check files without an instrument"),
                [this] { return check(m_check); });
    addTexts(verb, "FILE", m_check.files,
             QT_TRANSLATE_NOOP("vq-tl4ctl",
                               "settings (.ini), values or a plan (.csv), snapshots (.json)"),
             true);

    verb = addVerb(
        "diff",
        QT_TRANSLATE_NOOP("vq-tl4ctl", "compare two: a serial number, a snapshot, settings (.ini)"),
        [this] { return diff(m_diff); });
    addText(verb, "A", m_diff.left, QT_TRANSLATE_NOOP("vq-tl4ctl", "the one"), true);
    addText(verb, "B", m_diff.right, QT_TRANSLATE_NOOP("vq-tl4ctl", "the other"), true);
    verb->add_flag("--json", m_diff.asJson, help(jsonHelp));
}

void CommandLine::addPlan() {
    CLI::App* verb = m_app.add_subcommand(
        "plan",
        help(QT_TRANSLATE_NOOP("vq-tl4ctl", "make or check a spreadsheet for many instruments")));
    verb->require_subcommand(1);

    CLI::App* part = verb->add_subcommand(
        "init", help(QT_TRANSLATE_NOOP("vq-tl4ctl", "make a plan to fill in, with a row for "
                                                    "each attached instrument")));
    part->callback([this] { m_verb = [this] { return planInit(m_planInit); }; });
    addText(part, "PLAN", m_planInit.file,
            QT_TRANSLATE_NOOP("vq-tl4ctl", "the file; one that is there is not written over"),
            true);
    part->add_flag("--all", m_planInit.fillsIn,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "fill in all that the instruments "
                                                       "hold, but for the key")));

    part = verb->add_subcommand(
        "check", help(QT_TRANSLATE_NOOP("vq-tl4ctl", "find every mistake in a plan")));
    part->callback([this] { m_verb = [this] { return planCheck(m_planCheck); }; });
    addText(part, "PLAN", m_planCheck.file, planHelp, true);
    part->add_flag("--offline", m_planCheck.isOffline,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "without looking whether the "
                                                       "instruments are attached")));
}

void CommandLine::addWriteOptions(CLI::App* verb, WriteOptions& options) {
    verb->add_flag(
        "--dry-run", options.isDryRun,
        help(QT_TRANSLATE_NOOP("vq-tl4ctl", "only show what would change: exit status 7")));
    verb->add_flag("--yes", options.isSure,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "write without asking")));
    verb->add_flag("--json", options.asJson, help(jsonHelp));
    verb->add_flag("--allow-low-battery", options.allowsLowBattery,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "write with an empty battery")));
    verb->add_option_function<std::string>(
            "--on-failure",
            [&options](const std::string& what) { options.leavesFailure = what == "leave"; },
            help(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                   "put the old state back (the default), or leave it")))
        ->check(CLI::IsMember({"rollback", "leave"}));
}

void CommandLine::addApply() {
    CLI::App* verb =
        addVerb("apply", QT_TRANSLATE_NOOP("vq-tl4ctl", "change instruments, and prove it"),
                [this] { return apply(m_apply); });
    addTexts(verb, "SERIAL", m_apply.serials, serialHelp, false);
    verb->add_flag("--all", m_apply.all,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "all attached instruments")));
    addText(verb, "--plan", m_apply.plan, planHelp);
    verb->add_option_function<std::vector<std::string>>(
            "--only",
            [this](const std::vector<std::string>& serials) {
                for (const std::string& serial : serials)
                    m_apply.only.append(QString::fromStdString(serial));
            },
            help(QT_TRANSLATE_NOOP("vq-tl4ctl", "these instruments of the plan alone, with "
                                                "commas between")))
        ->delimiter(',')
        ->needs("--plan");
    verb->add_flag("--keep-going", m_apply.keepsGoing,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "go on with the other instruments "
                                                       "when one fails")));
    addWriteOptions(verb, m_apply);
    addApplyFiles(verb);
    verb->parse_complete_callback([verb] { requireApplyTarget(*verb); });
}

void CommandLine::addApplyFiles(CLI::App* verb) {
    addText(verb, "--network", m_apply.network,
            QT_TRANSLATE_NOOP("vq-tl4ctl", "network settings file (.ini)"));
    verb->add_option_function<std::string>(
            "--power-off",
            [this](const std::string& word) { m_apply.powerOff = QString::fromStdString(word); },
            help(QT_TRANSLATE_NOOP("vq-tl4ctl", "automatic power-off, in minutes")))
        ->check(CLI::IsMember(words(FieldTexts::powerOffWords())));
    addText(verb, "--white-plate", m_apply.whitePlate,
            QT_TRANSLATE_NOOP("vq-tl4ctl", "values of the white calibration plate (.csv)"));
    addText(verb, "--ambient-adapter", m_apply.ambientAdapter,
            QT_TRANSLATE_NOOP("vq-tl4ctl", "values of the ambient light adapter (.csv)"));
    verb->add_flag("--accept-implausible", m_apply.acceptsImplausible,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "write values that look wrong")));
}

void CommandLine::requireApplyTarget(const CLI::App& verb) {
    const auto countOf = [&](std::initializer_list<const char*> names) {
        return std::count_if(names.begin(), names.end(),
                             [&](const char* name) { return verb.count(name) > 0; });
    };
    const auto things = countOf({"--network", "--power-off", "--white-plate", "--ambient-adapter"});
    const auto targets = countOf({"SERIAL", "--all", "--plan"});
    if (targets == 0)
        throw CLI::RequiredError("SERIAL | --all | --plan");
    if (targets > 1)
        throw CLI::ExcludesError("SERIAL | --all", "--plan");
    if (verb.count("--plan") == 0 && things == 0)
        throw CLI::RequiredError("--network | --power-off | --white-plate | --ambient-adapter");
    if (verb.count("--plan") > 0 && things > 0)
        throw CLI::ExcludesError("--plan", "--network | --power-off | --white-plate | "
                                           "--ambient-adapter");
}

void CommandLine::addRestore() {
    CLI::App* verb =
        addVerb("restore", QT_TRANSLATE_NOOP("vq-tl4ctl", "put a snapshot back, and prove it"),
                [this] { return restore(m_restore); });
    addText(verb, "SERIAL", m_restore.serial, serialHelp, true);
    addWriteOptions(verb, m_restore);
    addText(verb, "SNAPSHOT", m_restore.snapshot,
            QT_TRANSLATE_NOOP("vq-tl4ctl", "a snapshot of this instrument"), true);
    verb->add_option_function<std::vector<std::string>>(
            "--only",
            [this](const std::vector<std::string>& parts) {
                for (const std::string& part : parts)
                    m_restore.only.append(QString::fromStdString(part));
            },
            help(QT_TRANSLATE_NOOP("vq-tl4ctl", "these parts alone, with commas between")))
        ->delimiter(',')
        ->check(CLI::IsMember(words(restorableParts())));
}

void CommandLine::addRecover() {
    CLI::App* verb = addVerb(
        "recover",
        QT_TRANSLATE_NOOP("vq-tl4ctl", "end what an earlier run left unfinished, and prove it"),
        [this] { return recover(m_recover); });
    verb->add_flag("--yes", m_recover.isSure,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "write without asking")));
    verb->add_flag("--json", m_recover.asJson, help(jsonHelp));
    verb->add_flag("--allow-low-battery", m_recover.allowsLowBattery,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "write with an empty battery")));
}

void CommandLine::addVerify() {
    CLI::App* verb =
        addVerb("verify",
                QT_TRANSLATE_NOOP("vq-tl4ctl", "find out whether instruments hold what was "
                                               "written to them last"),
                [this] { return verify(m_verify); });
    addTexts(verb, "SERIAL", m_verify.serials, serialHelp, false);
    verb->add_flag("--all", m_verify.all,
                   help(QT_TRANSLATE_NOOP("vq-tl4ctl", "all attached instruments, and all "
                                                       "that were written to")))
        ->excludes(verb->get_option("SERIAL"));
    verb->add_flag("--json", m_verify.asJson, help(jsonHelp));
}

void CommandLine::addJournal() {
    CLI::App* verb = addVerb("journal", QT_TRANSLATE_NOOP("vq-tl4ctl", "list what was done"),
                             [this] { return journalList(m_journal); });
    addText(verb, "--serial", m_journal.serial, serialHelp);
    addText(verb, "--since", m_journal.since,
            QT_TRANSLATE_NOOP("vq-tl4ctl", "no run before that date or time"));
    verb->add_flag("--json", m_journal.asJson, help(jsonHelp));

    CLI::App* part =
        verb->add_subcommand("show", help(QT_TRANSLATE_NOOP("vq-tl4ctl", "show all of a run")));
    part->callback([this] { m_verb = [this] { return journalShow(m_journalShow); }; });
    addText(part, "RUN", m_journalShow.run, runHelp, true);
    part->add_flag("--json", m_journalShow.asJson, help(jsonHelp));

    part = verb->add_subcommand("snapshot",
                                help(QT_TRANSLATE_NOOP("vq-tl4ctl", "write what an instrument held "
                                                                    "before a run to a file")));
    part->callback([this] { m_verb = [this] { return journalSnapshot(m_journalSnapshot); }; });
    addText(part, "RUN", m_journalSnapshot.run, runHelp, true);
    addText(part, "SERIAL", m_journalSnapshot.serial, serialHelp, true);
    addText(part, "--to", m_journalSnapshot.file, newFileHelp, true);
}

void CommandLine::addReport() {
    CLI::App* verb = addVerb(
        "report",
        QT_TRANSLATE_NOOP("vq-tl4ctl", "write a run as a page to look at, print and file away"),
        [this] { return htmlReport(m_report); });
    addText(verb, "RUN", m_report.run, runHelp, true);
    addText(verb, "--to", m_report.file, newFileHelp, true);
}

int CommandLine::run(int argc, char** argv) {
    try {
        m_app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // The message goes to standard error, and help and version to standard output.
        return m_app.exit(error, std::cout, std::cerr) == 0 ? Done : Usage;
    }
    return m_verb();
}

} // namespace

int runCommandLine(int argc, char** argv) {
    return CommandLine().run(argc, argv);
}
