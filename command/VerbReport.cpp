#include "command/DataFolder.h"
#include "command/DurableFile.h"
#include "command/HtmlReport.h"
#include "command/Report.h"
#include "command/VerbSupport.h"

#include <QFileInfo>

ExitStatus htmlReport(const ReportOptions& options) {
    std::optional<JournalRun> run;
    Text problem = findRun(options.run, run);
    if (!problem.isEmpty()) {
        sayToUser(problem);
        return RefusedStatus;
    }
    Faults faults;
    const auto page = HtmlReport::make(*run, DataFolder::journal(), faults);
    sayToUser(faults);
    if (!page)
        return RefusedStatus;
    problem = createFile(options.file, *page);
    if (!problem.isEmpty())
        sayToUser(problem);
    return problem.isEmpty() ? Done : RefusedStatus;
}
