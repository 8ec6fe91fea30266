#include "command/Verdict.h"

#include <algorithm>
#include <iterator>

const char* outcomeWord(Outcome outcome) {
    switch (outcome) {
    case Outcome::Unchanged:
        return "unchanged";
    case Outcome::Verified:
        return "verified";
    case Outcome::Refused:
        return "refused";
    case Outcome::RolledBack:
        return "rolled-back";
    case Outcome::Unknown:
        return "unknown";
    case Outcome::Waits:
        return "waits";
    case Outcome::WouldChange:
        return "would-change";
    case Outcome::NotReached:
        return "not-reached";
    }
    return "unknown";
}

ExitStatus exitStatus(Outcome outcome) {
    switch (outcome) {
    case Outcome::Unchanged:
    case Outcome::Verified:
        return Done;
    case Outcome::Refused:
    case Outcome::NotReached:
        return RefusedStatus;
    case Outcome::RolledBack:
        return RolledBackStatus;
    case Outcome::Unknown:
        return UnknownStatus;
    case Outcome::Waits:
        return WaitsStatus;
    case Outcome::WouldChange:
        return DifferentStatus;
    }
    return UnknownStatus;
}

ExitStatus graver(ExitStatus left, ExitStatus right) {
    constexpr ExitStatus order[] = {Done,          DifferentStatus,  WaitsStatus,
                                    RefusedStatus, RolledBackStatus, UnknownStatus};
    const auto rank = [&](ExitStatus status) {
        return std::find(std::begin(order), std::end(order), status);
    };
    return rank(left) < rank(right) ? right : left;
}
