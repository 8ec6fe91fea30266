#ifndef TESTS_COMMAND_PAGEREADER_H
#define TESTS_COMMAND_PAGEREADER_H

#include <QByteArray>
#include <QMap>
#include <QPair>
#include <QPointF>
#include <QString>
#include <QStringList>
#include <QVector>

/** An element of a page, with the text that is in it, but for that of its children. */
struct Element {
    QString name;
    QMap<QString, QString> attributes;
    QString text;
    QVector<int> within; ///< the elements around it, from the outermost

    QString operator[](const QString& attribute) const { return attributes.value(attribute); }
};
using Elements = QVector<Element>;

/** The elements of a page, in their order; none where it is no XML. */
Elements elementsOf(const QByteArray& page);
Elements named(const Elements& elements, const QString& name);
QStringList texts(const Elements& elements);
/** @param style  the class of the element around it; empty for any */
bool isWithin(const Elements& all, const Element& element, const QString& name,
              const QString& style = {});

/** The points of a polyline. */
QVector<QPointF> pointsOf(const QString& text);

/** What is in one plot, back in the numbers that it shows. */
class PlotReader {
public:
    /** @param index  of the plot on the page */
    PlotReader(const Elements& page, int index);

    QVector<double> before;
    QVector<double> after;
    QVector<double> differences;
    QStringList marked; ///< indices, as they are written
    double resolution = 0;
    double differenceResolution = 0;

private:
    struct Scale {
        QVector<QPair<double, double>> ticks; ///< number, place
        double at(double place) const;
        double resolution() const;
    };

    void add(const Elements& page, const Element& element);

    Scale m_scales[2];
};

#endif
