#ifndef COMMAND_CALIBRATIONPLOT_H
#define COMMAND_CALIBRATIONPLOT_H

#include "command/HtmlWriter.h"

#include <QString>

#include <cstddef>
#include <vector>

/**
 * A row of values before and after, over their index, and below it their difference, as SVG within
 * a page. It needs no colour: the one curve is dashed with squares, the other one solid with dots.
 * A value that is no finite number has no point.
 */
struct CalibrationPlot {
    QString id; ///< that no other element of the page begins its own with
    QString title;
    QString description; ///< what is to be seen, for those who do not see it
    QString beforeName;
    QString afterName;
    std::vector<float> before;
    std::vector<float> after;        ///< as many, two or more
    std::vector<std::size_t> marked; ///< indices of `after` that look wrong

    void write(HtmlWriter& html) const;
};

#endif
