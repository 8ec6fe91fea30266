#include "command/Plan.h"
#include "command/Report.h"
#include "command/VerbSupport.h"

ExitStatus planCheck(const PlanCheckOptions& options) {
    std::vector<std::int32_t> attached;
    if (!options.isOffline) {
        const Text problem = attachedInstruments(attached);
        if (!problem.isEmpty()) {
            sayToUser(problem);
            return RefusedStatus;
        }
    }
    PlanNeeds needs;
    if (!options.isOffline)
        needs.attached = attached;
    Faults faults;
    const auto file = InputFile::read(options.file, faults);
    const auto plan = file ? Plan::check(*file, needs, faults) : std::nullopt;
    if (!plan) {
        sayToUser(faults);
        return Usage;
    }
    sayToUser(plan->notes);
    print(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: a plan, no fault (instruments: %2)"),
               {options.file, QString::number(plan->rows.size())})
              .translated());
    return Done;
}
