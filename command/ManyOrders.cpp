#include "command/ManyOrders.h"

#include "command/Console.h"
#include "command/Interrupt.h"
#include "command/Report.h"

#include <algorithm>

ManyOrders::ManyOrders(std::vector<Order>& orders, const ApplyOptions& options,
                       const std::vector<JournalInput>& inputs)
    : m_orders(orders), m_options(options), m_run(options.isDryRun, inputs),
      m_screen(options.isDryRun || !options.isSure) {}

ExitStatus ManyOrders::carryOut() {
    const bool asks = !m_options.isDryRun && !m_options.isSure && m_run.problem().isEmpty();
    if (!asks || isConfirmed())
        carryOutEach(asks);
    while (m_ended.size() < m_orders.size())
        reportNotReached(m_orders[m_ended.size()].serialNumber);
    RunScreen::recap(m_ended);
    const bool hasReachedAll =
        std::none_of(m_ended.begin(), m_ended.end(),
                     [](const EndedOrder& order) { return order.outcome == Outcome::NotReached; });
    return m_run.end(hasReachedAll ? Done : RefusedStatus);
}

void ManyOrders::carryOutEach(bool wasShown) {
    m_screen.passBegins(m_orders.size(), wasShown);
    bool hasStopped = false;
    while (m_ended.size() < m_orders.size() && !hasStopped && !Interrupt::isRequested()) {
        const Order& order = m_orders[m_ended.size()];
        m_screen.instrumentBegins(order.serialNumber);
        const auto refused = m_refused.find(order.serialNumber);
        if (refused == m_refused.end()) {
            report(m_run.carryOut(order, m_screen));
        } else {
            m_run.keep(refused->second);
            report(refused->second);
        }
        m_screen.instrumentEnds();
        hasStopped = stops(m_ended.back().outcome);
    }
}

bool ManyOrders::isConfirmed() {
    m_screen.passBegins(m_orders.size(), false);
    std::vector<Verdict> found;
    for (Order& order : m_orders) {
        m_screen.instrumentBegins(order.serialNumber);
        found.push_back(m_run.lookAt(order, m_screen));
        m_screen.instrumentEnds();
        order.confirmed = m_screen.state();
        if (found.back().outcome == Outcome::Refused)
            m_refused.emplace(order.serialNumber, found.back());
        if (Interrupt::isRequested())
            break;
    }
    const auto changing = std::count_if(found.begin(), found.end(), [](const Verdict& verdict) {
        return verdict.outcome == Outcome::WouldChange;
    });
    const bool mayAsk = changing > 0 && (m_refused.empty() || m_options.keepsGoing) &&
                        found.size() == m_orders.size() && !Interrupt::isRequested();
    for (const auto& refused : m_refused)
        RunScreen::sayVerdict(refused.second);
    if (mayAsk &&
        Console::asks(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Write all this? Instruments: %1 [y/N]"),
                           {QString::number(changing)})))
        return true;
    for (Verdict& verdict : found) {
        if (!mayAsk || verdict.outcome != Outcome::WouldChange)
            continue;
        verdict.outcome = Outcome::Refused;
        verdict.reasons.assign(
            1, Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The change was not confirmed.")));
    }
    keepAll(found);
    return false;
}

/** Stores the verdicts when nothing is written; instruments to be written are `not-reached`. */
void ManyOrders::keepAll(std::vector<Verdict>& found) {
    for (Verdict& verdict : found) {
        if (verdict.outcome == Outcome::WouldChange) {
            reportNotReached(verdict.serialNumber);
            continue;
        }
        m_run.keep(verdict);
        report(verdict);
    }
}

bool ManyOrders::stops(Outcome outcome) const {
    if (m_options.keepsGoing || m_options.isDryRun)
        return false;
    return outcome != Outcome::Unchanged && outcome != Outcome::Verified &&
           outcome != Outcome::Waits;
}

void ManyOrders::report(const Verdict& verdict) {
    RunScreen::sayVerdict(verdict);
    if (m_options.asJson)
        print(toJson(verdict));
    m_ended.push_back({verdict.serialNumber, verdict.outcome, verdict.changes.size()});
}

void ManyOrders::reportNotReached(std::int32_t serialNumber) {
    Verdict verdict;
    verdict.serialNumber = serialNumber;
    verdict.outcome = Outcome::NotReached;
    report(verdict);
}
