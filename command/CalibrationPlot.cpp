#include "command/CalibrationPlot.h"

#include "command/Text.h"

#include <algorithm>
#include <cmath>

namespace {

// In the units of the SVG's view box, which has this width and height.
constexpr double width = 720;
constexpr double height = 386;
constexpr double left = 64;
constexpr double right = width - 8;
constexpr double valuesTop = 48;
constexpr double valuesBottom = 220;
constexpr double differenceTop = 258;
constexpr double differenceBottom = 338;
/** Distance of the first and the last value from the edges of the panel. */
constexpr double inset = 10;

using Row = std::vector<double>;

QString coordinate(double place) {
    return QString::number(place, 'f', 2);
}

QString point(double x, double y) {
    return coordinate(x) + QLatin1Char(',') + coordinate(y);
}

/** The smallest of 1, 2 or 5 times a power of ten that is not below @p least. */
double roundStep(double least) {
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least)
            return factor * power;
    }
    return 10 * power;
}

/** The vertical axis of a panel. */
class Axis {
public:
    /** @param numbers  to be shown; those that are not finite are ignored */
    Axis(const Row& numbers, double top, double bottom) : m_top(top), m_bottom(bottom) {
        double lowest = 0;
        double highest = 0;
        bool isFirst = true;
        for (const double number : numbers) {
            if (!std::isfinite(number))
                continue;
            lowest = isFirst ? number : std::min(lowest, number);
            highest = isFirst ? number : std::max(highest, number);
            isFirst = false;
        }
        double range = highest - lowest;
        if (!(range > 0))
            range = highest == 0 ? 1 : std::fabs(highest) / 10;
        m_step = roundStep(range / 4);
        m_first = std::floor(lowest / m_step);
        m_last = std::max(std::ceil(highest / m_step), m_first + 1);
    }

    double placeOf(double number) const {
        const double share = (number / m_step - m_first) / (m_last - m_first);
        return m_bottom - share * (m_bottom - m_top);
    }

    Row ticks() const {
        Row result;
        const int count = static_cast<int>(m_last - m_first);
        for (int i = 0; i <= count; ++i)
            result.push_back((m_first + i) * m_step);
        return result;
    }

    QString label(double tick) const {
        const double largest = std::max(std::fabs(m_first), std::fabs(m_last)) * m_step;
        if (largest >= 1e6 || m_step < 1e-5)
            return QString::number(tick, 'g', 4);
        const int places = std::max(0, -static_cast<int>(std::floor(std::log10(m_step) + 1e-9)));
        return QString::number(tick, 'f', places);
    }

    double top() const { return m_top; }
    double bottom() const { return m_bottom; }

private:
    double m_top;
    double m_bottom;
    double m_step = 1;
    double m_first = 0; ///< lowest tick, in steps
    double m_last = 0;
};

/** Draws one plot. */
class Drawing {
public:
    Drawing(const CalibrationPlot& plot, HtmlWriter& html)
        : m_plot(plot), m_html(html), m_before(plot.before.begin(), plot.before.end()),
          m_after(plot.after.begin(), plot.after.end()) {
        for (std::size_t i = 0; i < m_before.size(); ++i)
            m_difference.push_back(m_after[i] - m_before[i]);
    }

    void draw() const {
        legend();
        Row shown = m_before;
        shown.insert(shown.end(), m_after.begin(), m_after.end());
        const Axis values(shown, valuesTop, valuesBottom);
        panel(values, Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Value")), "values");
        curve(values, m_after, "after");
        curve(values, m_before, "before");
        marks(values);

        Row withZero = m_difference;
        withZero.push_back(0);
        const Axis difference(withZero, differenceTop, differenceBottom);
        panel(difference,
              Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Difference: \"%1\" less \"%2\""),
                   {m_plot.afterName, m_plot.beforeName}),
              "differences");
        stems(difference);
        indices();
    }

private:
    double xOf(std::size_t index) const {
        const double share = static_cast<double>(index) / static_cast<double>(m_after.size() - 1);
        return left + inset + share * (right - left - 2 * inset);
    }

    void text(double x, double y, const char* style, const QString& content) const {
        m_html.element(
            "text", content,
            {{"class", QString::fromLatin1(style)}, {"x", coordinate(x)}, {"y", coordinate(y)}});
    }

    void path(const char* style, const QString& d) const {
        m_html.empty("path", {{"class", QString::fromLatin1(style)}, {"d", d}});
    }

    static QString square(double x, double y) {
        return QStringLiteral("M%1h5v5h-5z").arg(point(x - 2.5, y - 2.5));
    }
    static QString dot(double x, double y) { return QStringLiteral("M%1h0").arg(point(x, y)); }
    static QString diamond(double x, double y) {
        return QStringLiteral("M%1l8,8l-8,8l-8,-8z").arg(point(x, y - 8));
    }

    void line(const QStringList& points) const {
        m_html.empty("polyline", {{"points", points.join(QLatin1Char(' '))}});
    }

    void legend() const {
        constexpr double y = 12;
        constexpr double column = 216;
        constexpr double sample = 36;
        const auto sampleOf = [&](double x, const char* style, const QString& mark,
                                  const QString& name) {
            const auto group = m_html.open("g", {{"class", QString::fromLatin1(style)}});
            line({point(x, y), point(x + sample, y)});
            path("mark", mark);
            text(x + sample + 8, y + 4, "name", name);
        };
        const auto group = m_html.open("g", {{"class", QStringLiteral("legend")}});
        sampleOf(left, "before", square(left + sample / 2, y), m_plot.beforeName);
        const double second = left + column;
        sampleOf(second, "after", dot(second + sample / 2, y), m_plot.afterName);
        if (m_plot.marked.empty())
            return;
        const double third = second + column;
        path("implausible", diamond(third + sample / 2, y));
        text(third + sample + 8, y + 4, "name",
             translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Implausible")));
    }

    void panel(const Axis& axis, const Text& name, const char* style) const {
        const auto group = m_html.open("g", {{"class", QString::fromLatin1(style)}});
        text(left, axis.top() - 8, "name", name.translated());
        for (const double tick : axis.ticks()) {
            const double y = axis.placeOf(tick);
            const bool isZero = std::fpclassify(tick) == FP_ZERO;
            path(isZero ? "zero" : "grid",
                 QStringLiteral("M%1H%2").arg(point(left, y), coordinate(right)));
            text(left - 6, y + 4, "tick", axis.label(isZero ? 0.0 : tick));
        }
    }

    void curve(const Axis& axis, const Row& row, const char* style) const {
        const auto group = m_html.open("g", {{"class", QString::fromLatin1(style)}});
        QString marks;
        QStringList points;
        const auto endLine = [&] {
            if (points.size() > 1)
                line(points);
            points.clear();
        };
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (!std::isfinite(row[i])) {
                endLine();
                continue;
            }
            const double y = axis.placeOf(row[i]);
            points.append(point(xOf(i), y));
            marks += &row == &m_before ? square(xOf(i), y) : dot(xOf(i), y);
        }
        endLine();
        path("mark", marks);
    }

    void marks(const Axis& axis) const {
        for (const std::size_t i : m_plot.marked) {
            const double y = axis.placeOf(m_after[i]);
            path("implausible", diamond(xOf(i), y));
            const bool isHigh = y < axis.top() + 24;
            text(xOf(i), isHigh ? y + 20 : y - 12, "index", QString::number(i));
        }
    }

    void stems(const Axis& axis) const {
        QString stems;
        QString dots;
        for (std::size_t i = 0; i < m_difference.size(); ++i) {
            if (!std::isfinite(m_difference[i]))
                continue;
            const double y = axis.placeOf(m_difference[i]);
            stems += QStringLiteral("M%1V%2").arg(point(xOf(i), axis.placeOf(0)), coordinate(y));
            dots += dot(xOf(i), y);
        }
        const auto group = m_html.open("g", {{"class", QStringLiteral("difference")}});
        path("stem", stems);
        path("mark", dots);
    }

    void indices() const {
        const std::size_t step = m_after.size() > 50 ? 10 : 5;
        const auto group = m_html.open("g", {{"class", QStringLiteral("indices")}});
        for (std::size_t i = 0; i < m_after.size(); i += step) {
            path("grid", QStringLiteral("M%1V%2").arg(point(xOf(i), differenceBottom),
                                                      coordinate(differenceBottom + 5)));
            text(xOf(i), differenceBottom + 18, "index", QString::number(i));
        }
        text((left + right) / 2, height - 8, "index",
             translated(QT_TRANSLATE_NOOP("vq-tl4ctl", "Index of the value")));
    }

    const CalibrationPlot& m_plot;
    HtmlWriter& m_html;
    Row m_before;
    Row m_after;
    Row m_difference;
};

} // namespace

void CalibrationPlot::write(HtmlWriter& html) const {
    const QString titleId = id + QStringLiteral("-title");
    const QString descriptionId = id + QStringLiteral("-description");
    const auto picture =
        html.open("svg", {{"role", QStringLiteral("img")},
                          {"viewBox", QStringLiteral("0 0 %1 %2").arg(width).arg(height)},
                          {"aria-labelledby", titleId},
                          {"aria-describedby", descriptionId}});
    html.element("title", title, {{"id", titleId}});
    html.element("desc", description, {{"id", descriptionId}});
    Drawing(*this, html).draw();
}
