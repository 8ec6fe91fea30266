#include "command/HtmlCalibration.h"

#include "command/AccessoryTexts.h"
#include "command/FieldTexts.h"
#include "command/Report.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <optional>

namespace {

std::vector<float> valuesOf(const CalibrationAccessory& accessory,
                            const KVA_JIG_CALREFDATA& record) {
    const float* values = accessory.values(record);
    return {values, values + accessory.valueCount};
}

bool areFinite(const std::vector<float>& values) {
    return std::all_of(values.begin(), values.end(), [](float v) { return std::isfinite(v); });
}

/** The decimal places that a column needs to show all these values exactly; nothing if one of them
    is not a plain decimal. */
std::optional<int> decimalPlaces(const std::vector<float>& values) {
    int places = 0;
    for (const float value : values) {
        const QString text = FieldTexts::value(value);
        if (text.contains(QLatin1Char('e')) || text.contains(QLatin1Char('x')))
            return std::nullopt;
        const int point = static_cast<int>(text.indexOf(QLatin1Char('.')));
        places = std::max(places, point < 0 ? 0 : static_cast<int>(text.size()) - point - 1);
    }
    return places;
}

QString valueText(float value, std::optional<int> places) {
    if (!places)
        return FieldTexts::value(value);
    return QString::number(double(value), 'f', *places);
}

QString differenceText(float before, float after, std::optional<int> places) {
    const double difference = double(after) - double(before);
    if (!std::isfinite(difference))
        return QStringLiteral("-");
    QString text = QString::number(difference, 'g', 4);
    if (places)
        text = QString::number(difference, 'f', *places);
    if (difference > 0)
        text.prepend(QLatin1Char('+'));
    return text;
}

/** "from 85.5 to 92.9" of the values that are numbers. */
QString rangeText(const QString& name, const std::vector<float>& values) {
    std::vector<float> numbers;
    std::copy_if(values.begin(), values.end(), std::back_inserter(numbers),
                 [](float v) { return std::isfinite(v); });
    if (numbers.empty())
        return translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: no numbers."), {name});
    const auto [lowest, highest] = std::minmax_element(numbers.begin(), numbers.end());
    return translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: from %2 to %3."),
                      {name, FieldTexts::value(*lowest), FieldTexts::value(*highest)});
}

} // namespace

std::vector<HtmlCalibration> HtmlCalibration::changed(const KVA_JIG_CALREFDATA& before,
                                                      const KVA_JIG_CALREFDATA& after,
                                                      const QString& afterName, const QString& id) {
    std::vector<HtmlCalibration> parts;
    for (const AccessoryTexts& texts : AccessoryTexts::all) {
        const CalibrationAccessory& accessory = texts.accessory;
        HtmlCalibration part;
        part.m_before = valuesOf(accessory, before);
        part.m_after = valuesOf(accessory, after);
        // By bits: a NaN equals itself.
        if (std::memcmp(part.m_before.data(), part.m_after.data(),
                        part.m_before.size() * sizeof(float)) == 0)
            continue;
        part.m_accessory = &accessory;
        part.m_name = texts.role.name;
        part.m_field = QLatin1String(texts.field) + QStringLiteral(".values[");
        part.m_beforeName = translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Before"));
        part.m_afterName = afterName;
        part.m_id = id + QLatin1Char('-') + QLatin1String(texts.field);
        if (areFinite(part.m_after))
            part.m_implausible =
                findImplausible(accessory, part.m_after.data(), part.m_before.data());
        parts.push_back(std::move(part));
    }
    return parts;
}

void HtmlCalibration::write(HtmlWriter& html, const QString& serial) const {
    // With the instrument, since a printed page may begin here.
    html.element("h3", translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1, instrument %2"),
                                  {translated(m_name), serial}));
    {
        const auto figure = html.open("figure");
        plot().write(html);
    }
    if (!areFinite(m_before) || !areFinite(m_after))
        html.element("p", translated(QT_TRANSLATE_NOOP(
                              "vq-tl4ctl", "Values that are no numbers are in the table, with "
                                           "their bits, and not in the plot.")));
    writeImplausible(html);
    writeTables(html);
}

CalibrationPlot HtmlCalibration::plot() const {
    CalibrationPlot plot;
    plot.id = m_id;
    plot.title = translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: values over their index"),
                            {translated(m_name)});
    plot.description =
        rangeText(m_beforeName, m_before) + QLatin1Char(' ') + rangeText(m_afterName, m_after);
    plot.beforeName = m_beforeName;
    plot.afterName = m_afterName;
    plot.before = m_before;
    plot.after = m_after;
    for (const Implausible& value : m_implausible)
        plot.marked.push_back(value.index);
    return plot;
}

void HtmlCalibration::writeImplausible(HtmlWriter& html) const {
    if (m_implausible.empty())
        return;
    html.element("p", translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Values that look wrong:")));
    const auto list = html.open("ul");
    for (const Implausible& value : m_implausible)
        html.element("li", implausibleText(*m_accessory, value).translated());
}

/** Three tables side by side, each with its headings. */
void HtmlCalibration::writeTables(HtmlWriter& html) const {
    const auto columns = html.open("div", {{"class", QStringLiteral("columns")}});
    const std::size_t size = (m_before.size() + 2) / 3;
    for (std::size_t first = 0; first < m_before.size(); first += size)
        html.table(table(first, std::min(first + size, m_before.size())));
}

HtmlWriter::Table HtmlCalibration::table(std::size_t first, std::size_t end) const {
    std::vector<float> all = m_before;
    all.insert(all.end(), m_after.begin(), m_after.end());
    const std::optional<int> places = decimalPlaces(all);
    HtmlWriter::Table table(translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Values %1 to %2"),
                                       {QString::number(first), QString::number(end - 1)}),
                            {translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Index")), m_beforeName,
                             m_afterName, translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Difference"))},
                            "values");
    for (std::size_t i = first; i < end; ++i)
        table.add({QString::number(i), valueText(m_before[i], places),
                   valueText(m_after[i], places), differenceText(m_before[i], m_after[i], places)});
    return table;
}
