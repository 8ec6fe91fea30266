#include "command/Report.h"
#include "command/VerbSupport.h"

ExitStatus planCheck(const PlanCheckOptions& options) {
    CheckedPlan checked;
    const ExitStatus status = requirePlan(options.file, options.isOffline, {}, checked);
    if (status == Done)
        print(checked.plan.noFault(options.file).translated());
    return status;
}
