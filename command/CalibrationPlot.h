#ifndef COMMAND_CALIBRATIONPLOT_H
#define COMMAND_CALIBRATIONPLOT_H

#include "command/HtmlWriter.h"

#include <QString>

#include <cstddef>
#include <vector>

/**
 * Two rows of values, before and after, over their index, and below them their difference, as SVG
 * in a page. Readable without colour: one curve is dashed with squares, the other solid with dots.
 * A value that is not finite has no point.
 */
struct CalibrationPlot {
    QString id; ///< a prefix that no other element of the page uses
    QString title;
    QString description; ///< what the plot shows, for screen readers
    QString beforeName;
    QString afterName;
    std::vector<float> before;
    std::vector<float> after;        ///< as many as `before`, at least two
    std::vector<std::size_t> marked; ///< indices of `after` that look wrong

    void write(HtmlWriter& html) const;
};

#endif
