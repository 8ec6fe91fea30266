#include "PageReader.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>

Elements elementsOf(const QByteArray& page) {
    QXmlStreamReader reader(page);
    Elements elements;
    QVector<int> open;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            Element element = {reader.name().toString(), {}, {}, open};
            for (const QXmlStreamAttribute& attribute : reader.attributes())
                element.attributes[attribute.name().toString()] = attribute.value().toString();
            open.append(int(elements.size()));
            elements.append(element);
        } else if (reader.isEndElement()) {
            open.removeLast();
        } else if (reader.isCharacters() && !open.isEmpty()) {
            elements[open.last()].text += reader.text().toString();
        }
    }
    return reader.hasError() ? Elements() : elements;
}

Elements named(const Elements& elements, const QString& name) {
    Elements result;
    std::copy_if(elements.begin(), elements.end(), std::back_inserter(result),
                 [&](const Element& element) { return element.name == name; });
    return result;
}

QStringList texts(const Elements& elements) {
    QStringList result;
    for (const Element& element : elements)
        result.append(element.text.trimmed());
    return result;
}

bool isWithin(const Elements& all, const Element& element, const QString& name,
              const QString& style) {
    return std::any_of(element.within.begin(), element.within.end(), [&](int i) {
        return all[i].name == name && (style.isEmpty() || all[i]["class"] == style);
    });
}

QVector<QPointF> pointsOf(const QString& text) {
    QVector<QPointF> points;
    for (const QString& point : text.split(' ', Qt::SkipEmptyParts))
        points.append({point.section(',', 0, 0).toDouble(), point.section(',', 1).toDouble()});
    return points;
}

double PlotReader::Scale::at(double place) const {
    const auto [low, lowPlace] = ticks.first();
    const auto [high, highPlace] = ticks.last();
    return low + (place - lowPlace) / (highPlace - lowPlace) * (high - low);
}

/** Places have two decimals. */
double PlotReader::Scale::resolution() const {
    return std::fabs(at(ticks.first().second + 0.011) - at(ticks.first().second));
}

PlotReader::PlotReader(const Elements& page, int index) {
    int count = -1;
    for (const Element& element : page) {
        if (element.name == "svg")
            ++count;
        if (count == index && isWithin(page, element, "svg"))
            add(page, element);
    }
}

void PlotReader::add(const Elements& page, const Element& element) {
    const auto in = [&](const char* style) { return isWithin(page, element, "g", style); };
    if (element["class"] == "tick")
        m_scales[in("values") ? 0 : 1].ticks.append(
            {element.text.toDouble(), element["y"].toDouble() - 4});
    if (element.name == "polyline" && !in("legend")) {
        resolution = m_scales[0].resolution();
        for (const QPointF& point : pointsOf(element["points"]))
            (in("before") ? before : after).append(m_scales[0].at(point.y()));
    }
    if (element.name == "text" && element["class"] == "index" && !in("indices"))
        marked.append(element.text);
    if (element["class"] == "stem") {
        differenceResolution = m_scales[1].resolution();
        for (const QString& stem : element["d"].split('M', Qt::SkipEmptyParts))
            differences.append(m_scales[1].at(stem.section('V', 1).toDouble()));
    }
}
