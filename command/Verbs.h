#ifndef COMMAND_VERBS_H
#define COMMAND_VERBS_H

#include "command/Verdict.h"

#include <QStringList>

#include <cstdint>
#include <optional>

/** The verbs of the command line, one source each. Each returns the exit status. */

struct ListOptions {
    bool asJson = false;
};
ExitStatus list(const ListOptions& options);

struct ShowOptions {
    QString serial;
    bool asJson = false;
    bool revealsKey = false;
};
ExitStatus show(const ShowOptions& options);

struct BackupOptions {
    QStringList serials;
    bool all = false;
    QString folder;
    bool withoutKey = false;
};
ExitStatus backup(const BackupOptions& options);

struct CheckOptions {
    QStringList files;
};
ExitStatus check(const CheckOptions& options);

struct PlanInitOptions {
    QString file;
    bool fillsIn = false; ///< fills in all columns, not only the comment
};
ExitStatus planInit(const PlanInitOptions& options);

struct PlanCheckOptions {
    QString file;
    bool isOffline = false; ///< the port list is not read
};
ExitStatus planCheck(const PlanCheckOptions& options);

struct DiffOptions {
    QString left; ///< a serial number, a snapshot or a settings file
    QString right;
    bool asJson = false;
};
ExitStatus diff(const DiffOptions& options);

/** What `apply` and `restore` have in common. */
struct WriteOptions {
    bool isDryRun = false;
    bool isSure = false;
    bool asJson = false;
    bool leavesFailure = false;
    bool allowsLowBattery = false;
};

struct RecoverOptions : WriteOptions {}; // without a dry run
ExitStatus recover(const RecoverOptions& options);

struct VerifyOptions {
    QStringList serials; ///< none for all attached instruments
    bool all = false;    ///< `--all` was given
    bool asJson = false;
};
ExitStatus verify(const VerifyOptions& options);

struct JournalOptions {
    QString serial; ///< empty for all
    QString since;  ///< a date or a time; empty for all
    bool asJson = false;
};
ExitStatus journalList(const JournalOptions& options);

struct JournalShowOptions {
    QString run;
    bool asJson = false;
};
ExitStatus journalShow(const JournalShowOptions& options);

struct JournalSnapshotOptions {
    QString run;
    QString serial;
    QString file;
};
ExitStatus journalSnapshot(const JournalSnapshotOptions& options);

struct ReportOptions {
    QString run;
    QString file;
};
ExitStatus htmlReport(const ReportOptions& options);

struct ApplyOptions : WriteOptions {
    QStringList serials;
    bool all = false; ///< all attached instruments, in place of serial numbers
    QString plan;     ///< path; in place of serial numbers and of the options below
    QStringList only; ///< serial numbers of the plan; empty for all of them
    bool keepsGoing = false;
    QString network; ///< paths; empty if nothing is to be written
    QString whitePlate;
    QString ambientAdapter;
    QString powerOff; ///< a word of `FieldTexts::powerOffWords`
    bool acceptsImplausible = false;
};
ExitStatus apply(const ApplyOptions& options);

struct RestoreOptions : WriteOptions {
    QString serial;
    QString snapshot;
    QStringList only; ///< words of `restorableParts`; empty for all of them
};
ExitStatus restore(const RestoreOptions& options);
const QStringList& restorableParts();

#endif
