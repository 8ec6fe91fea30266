#include "command/Plausibility.h"

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>

namespace {

using Row = std::vector<double>;

QString numberText(double number) {
    return QString::number(number, 'g', 5);
}

/** The quantile: the given share of the values is at most this large. */
double quantileOf(Row values, double share) {
    const auto place =
        static_cast<Row::difference_type>(static_cast<double>(values.size()) * share);
    std::nth_element(values.begin(), values.begin() + place, values.end());
    return values[static_cast<std::size_t>(place)];
}

/** The magnitude of a row's large values; a few that are far too large do not change it. Above 0
    unless all are 0. */
double levelOf(const Row& row) {
    Row magnitudes(row.size());
    std::transform(row.begin(), row.end(), magnitudes.begin(),
                   [](double v) { return std::fabs(v); });
    const double level = quantileOf(magnitudes, 0.9);
    return level > 0 ? level : *std::max_element(magnitudes.begin(), magnitudes.end());
}

/** The row that the instrument holds; empty when there is nothing to compare with. */
Row heldRow(const float* values, std::size_t count) {
    if (!values || !std::all_of(values, values + count, [](float v) { return std::isfinite(v); }) ||
        std::all_of(values, values + count, [](float v) { return std::fpclassify(v) == FP_ZERO; }))
        return {};
    return {values, values + count};
}

// ---- The row as a whole

/** The median of the ratios of the row's values to the instrument's; nothing if the instrument has
    none to compare with. */
std::optional<double> ratioToHeld(const Row& row, const Row& held) {
    if (held.empty())
        return std::nullopt;
    const double least = PlausibilityLimits::negligible * levelOf(held);
    Row ratios;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (std::fabs(held[i]) > least)
            ratios.push_back(row[i] / held[i]);
    }
    return quantileOf(ratios, 0.5);
}

std::optional<Implausible> findWrongRow(const Row& row, const Row& held) {
    Implausible found = {0, static_cast<float>(row[0]), {}, {}};
    if (std::all_of(row.begin(), row.end(),
                    [&](double v) { return std::equal_to<>()(v, row[0]); })) {
        found.why = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "All values are equal"));
        found.expected = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "values that differ"));
        return found;
    }
    if (quantileOf(row, 0.5) < 0) {
        found.why = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Most values are negative"));
        found.expected = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "positive values"));
        return found;
    }
    const std::optional<double> ratio = ratioToHeld(row, held);
    constexpr double most = PlausibilityLimits::scale;
    if (!ratio || (*ratio >= 1 / most && *ratio <= most))
        return std::nullopt;
    found.why = Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                       "The values are as a whole %1 times those that the "
                                       "instrument holds: percentages in place of ratios, or the "
                                       "reverse?"),
                     {numberText(*ratio)});
    found.expected = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "values near those of the instrument, "
                                                         "which holds %1 here"),
                          {numberText(held[0])});
    return found;
}

// ---- One value among its neighbours

constexpr std::size_t terms = 3; // of a parabola

/** The first row of the inverse of the symmetric matrix with these moments: sums of powers. */
std::array<double, terms> firstOfInverse(const std::array<double, 2 * terms - 1>& s) {
    const double a = s[2] * s[4] - s[3] * s[3];
    const double b = s[2] * s[3] - s[1] * s[4];
    const double c = s[1] * s[3] - s[2] * s[2];
    const double determinant = s[0] * a + s[1] * b + s[2] * c;
    return {a / determinant, b / determinant, c / determinant};
}

/** A row on an inverse hyperbolic sine scale: like a logarithmic one, equal factors are equal
    distances, but zero and negative numbers are allowed. */
class NeighbourCheck {
public:
    explicit NeighbourCheck(const Row& row)
        : m_row(row), m_level(levelOf(row)), m_unit(m_level * 1e-4), m_isFound(row.size()) {
        for (const double value : row)
            m_scaled.push_back(std::asinh(value / m_unit));
    }

    struct Finding {
        std::size_t index;
        double expected;
    };

    /** The values that do not fit, the worst first. A value that was found is no longer a neighbour
        of the others, since it would make them look wrong too. */
    std::vector<Finding> findAll() {
        std::vector<Finding> findings;
        while (findings.size() <= m_row.size() / 2) {
            const std::optional<Finding> worst = findWorst();
            if (!worst)
                break;
            m_isFound[worst->index] = true;
            findings.push_back(*worst);
        }
        return findings;
    }

private:
    std::optional<Finding> findWorst() const {
        std::optional<Finding> worst;
        double most = PlausibilityLimits::deviation;
        for (std::size_t i = 0; i < m_row.size(); ++i) {
            if (m_isFound[i])
                continue;
            double uncertainty = 0;
            const double scaled = expectedAt(i, uncertainty);
            const double expected = std::sinh(scaled) * m_unit;
            const double deviation = std::fabs(m_scaled[i] - scaled) / uncertainty;
            if (deviation > most &&
                std::fabs(m_row[i] - expected) > PlausibilityLimits::negligible * m_level) {
                most = deviation;
                worst = Finding{i, expected};
            }
        }
        return worst;
    }

    /** The nearest values that were not found wrong, on both sides if possible. */
    std::vector<std::size_t> neighboursOf(std::size_t index) const {
        std::vector<std::size_t> result;
        const std::size_t count = m_row.size();
        for (std::size_t distance = 1; distance < count; ++distance) {
            if (index >= distance && !m_isFound[index - distance])
                result.push_back(index - distance);
            if (index + distance < count && !m_isFound[index + distance])
                result.push_back(index + distance);
            if (result.size() >= PlausibilityLimits::neighbours)
                break;
        }
        result.resize(std::min(result.size(), PlausibilityLimits::neighbours));
        return result;
    }

    /** The least-squares parabola through the neighbours, at @p index.
        @param uncertainty  standard error of the value's deviation, in units of that of a value */
    double expectedAt(std::size_t index, double& uncertainty) const {
        const std::vector<std::size_t> neighbours = neighboursOf(index);
        const auto distance = [&](std::size_t i) {
            return static_cast<double>(i) - static_cast<double>(index);
        };
        std::array<double, 2 * terms - 1> moments = {};
        for (const std::size_t i : neighbours) {
            double power = 1;
            for (double& moment : moments) {
                moment += power;
                power *= distance(i);
            }
        }
        const auto [a, b, c] = firstOfInverse(moments);
        double expected = 0;
        double variance = 1;
        double lowest = m_scaled[neighbours.front()];
        double highest = lowest;
        for (const std::size_t i : neighbours) {
            const double weight = a + distance(i) * (b + distance(i) * c);
            expected += weight * m_scaled[i];
            variance += weight * weight;
            lowest = std::min(lowest, m_scaled[i]);
            highest = std::max(highest, m_scaled[i]);
        }
        uncertainty = std::sqrt(variance);
        // If neighbours are wrong too, the parabola may be far off.
        return std::clamp(expected, lowest - 1, highest + 1);
    }

    const Row& m_row;
    double m_level;
    double m_unit;
    std::vector<bool> m_isFound;
    Row m_scaled;
};

Text whyUnlike(double value, double expected) {
    const double ratio = value / expected;
    if (ratio < 0)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Its sign is not that of its neighbours"));
    const double places = std::log10(ratio);
    if (std::fabs(places) > 0.9 && std::fabs(places - std::round(places)) < 0.1)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "It is %1 times what its neighbours suggest: is the decimal "
                                      "point missing or misplaced, or is it a percentage among "
                                      "ratios?"),
                    {numberText(ratio)});
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                  "It does not go with its neighbours: are digits exchanged, "
                                  "doubled or lost?"));
}

Implausible implausible(const Row& row, const Row& held, const NeighbourCheck::Finding& finding) {
    const std::size_t i = finding.index;
    const QString about = numberText(finding.expected);
    Text expected(QT_TRANSLATE_NOOP("vq-tl4ctl", "about %1"), {about});
    if (!held.empty())
        expected = Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "about %1; the instrument holds %2"),
                        {about, numberText(held[i])});
    return {i, static_cast<float>(row[i]), whyUnlike(row[i], finding.expected), expected};
}

} // namespace

std::vector<Implausible> findImplausible(const CalibrationAccessory& accessory,
                                         const float* newValues, const float* oldValues) {
    const Row row(newValues, newValues + accessory.valueCount);
    const Row held = heldRow(oldValues, accessory.valueCount);
    std::vector<Implausible> result;
    if (const std::optional<Implausible> wrong = findWrongRow(row, held)) {
        result.push_back(*wrong);
        return result;
    }
    for (const NeighbourCheck::Finding& finding : NeighbourCheck(row).findAll())
        result.push_back(implausible(row, held, finding));
    std::sort(result.begin(), result.end(),
              [](const Implausible& a, const Implausible& b) { return a.index < b.index; });
    return result;
}
