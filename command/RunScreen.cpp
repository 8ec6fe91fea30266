#include "command/RunScreen.h"

#include "command/Report.h"
#include "command/Terminal.h"
#include "instrument/ResultNames.h"

#include <algorithm>
#include <cstring>

namespace {

using Terminal::Colour;

Colour colourOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::Unchanged:
    case Outcome::NotReached:
        return Colour::None;
    case Outcome::Verified:
        return Colour::Green;
    case Outcome::Waits:
    case Outcome::WouldChange:
        return Colour::Yellow;
    case Outcome::Refused:
    case Outcome::RolledBack:
    case Outcome::Unknown:
        return Colour::Red;
    }
    return Colour::None;
}

QString wordOf(Outcome outcome) {
    return QString::fromLatin1(outcomeWord(outcome));
}

/** The steps that take long, with their names for people. */
const char* const steps[][2] = {
    {"connect", QT_TRANSLATE_NOOP("vq-tl4ctl", "connecting")},
    {"read-everything-twice", QT_TRANSLATE_NOOP("vq-tl4ctl", "reading")},
    {"keep-snapshot", QT_TRANSLATE_NOOP("vq-tl4ctl", "keeping a snapshot")},
    {"write-calibration", QT_TRANSLATE_NOOP("vq-tl4ctl", "writing calibration values")},
    {"write-power-off", QT_TRANSLATE_NOOP("vq-tl4ctl", "writing the power-off time")},
    {"write-network", QT_TRANSLATE_NOOP("vq-tl4ctl", "writing network settings")},
    {"verify", QT_TRANSLATE_NOOP("vq-tl4ctl", "reading back")},
    {"reconnect", QT_TRANSLATE_NOOP("vq-tl4ctl", "putting the old state back")}};

} // namespace

RunScreen::~RunScreen() {
    Terminal::setStatus({});
}

void RunScreen::passBegins(std::size_t count, bool isRepeated) {
    m_isRepeated = isRepeated;
    m_count = count;
    m_done = 0;
    m_begin = std::chrono::steady_clock::now();
}

void RunScreen::instrumentBegins(std::int32_t serialNumber) {
    m_serialNumber = serialNumber;
    m_step.clear();
    m_state.reset();
    show();
}

void RunScreen::instrumentEnds() {
    ++m_done;
    if (m_done == m_count)
        Terminal::setStatus({});
}

void RunScreen::stepBegins(const char* name) {
    const auto* const step =
        std::find_if(std::begin(steps), std::end(steps),
                     [&](const auto& known) { return std::strcmp(known[0], name) == 0; });
    if (step == std::end(steps))
        return;
    m_step = translated((*step)[1]);
    show();
}

/** The remaining time, from the average of the instruments before. */
QString RunScreen::timeLeft() const {
    if (m_done == 0)
        return {};
    const auto taken = std::chrono::steady_clock::now() - m_begin;
    const auto left =
        std::chrono::duration_cast<std::chrono::seconds>(taken / m_done * (m_count - m_done));
    constexpr int secondsOfMinute = 60;
    const QString time = QStringLiteral("%1:%2")
                             .arg(left.count() / secondsOfMinute)
                             .arg(left.count() % secondsOfMinute, 2, 10, QLatin1Char('0'));
    return translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 left"), {time});
}

void RunScreen::show() const {
    if (!Terminal::isInteractive())
        return;
    constexpr std::size_t width = 20;
    const auto filled = static_cast<int>(width * m_done / m_count);
    const QString bar = QStringLiteral("[%1]").arg(
        QString(filled, QLatin1Char('#')).leftJustified(int{width}, QLatin1Char('-')));
    QStringList parts;
    parts << bar << QStringLiteral("%1/%2").arg(m_done + 1).arg(m_count)
          << serialText(m_serialNumber) << m_step << timeLeft();
    parts.removeAll({});
    Terminal::setStatus(parts.join(QStringLiteral("  ")));
}

void RunScreen::foundImplausible(const CalibrationAccessory& accessory, const Implausible& value) {
    if (!m_isRepeated)
        sayToUser(implausibleText(accessory, value));
}

void RunScreen::foundDifference(const FieldChanges& changes) {
    if (m_showsDifferences && !m_isRepeated)
        sayDifference(m_serialNumber, changes);
}

void RunScreen::sayVerdict(const Verdict& verdict) {
    const Text sentence = outcomeSentence(verdict.outcome, serialText(verdict.serialNumber));
    sayToUser(Terminal::painted(sentence.translated(), colourOf(verdict.outcome)));
    for (const char* name : warningNames(verdict.warnings))
        sayToUser(QStringLiteral("  ") +
                  translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "The library warned: %1"),
                             {QString::fromLatin1(name)}));
    for (const Text& reason : verdict.reasons)
        sayToUser(QStringLiteral("  ") + reason.translated());
}

void RunScreen::recap(const std::vector<EndedOrder>& orders) {
    std::vector<std::pair<Outcome, int>> counts;
    constexpr int serialWidth = 10;
    constexpr int outcomeWidth = 12;
    sayToUser(QString());
    sayToUser(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Recap: serial number, outcome, changes")));
    for (const EndedOrder& order : orders) {
        const QString word = wordOf(order.outcome).leftJustified(outcomeWidth);
        sayToUser(serialText(order.serialNumber).leftJustified(serialWidth) +
                  Terminal::painted(word, colourOf(order.outcome)) +
                  QString::number(order.changeCount).rightJustified(5));
        const auto known = std::find_if(counts.begin(), counts.end(), [&](const auto& count) {
            return count.first == order.outcome;
        });
        if (known == counts.end())
            counts.emplace_back(order.outcome, 1);
        else
            ++known->second;
    }
    QStringList sums;
    for (const auto& [outcome, count] : counts)
        sums.append(QStringLiteral("%1 %2").arg(wordOf(outcome)).arg(count));
    sayToUser(sums.join(QStringLiteral(", ")));
}
