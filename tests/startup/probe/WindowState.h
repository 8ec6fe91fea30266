#ifndef TESTS_STARTUP_PROBE_WINDOWSTATE_H
#define TESTS_STARTUP_PROBE_WINDOWSTATE_H

#include <QJsonObject>

class QWidget;

/**
 * What a window shows, as JSON: "class", "title", "flags" (`Qt::WindowFlags`), "isModal",
 * "hasParent", "ownIcon" (one was given to the window itself), "iconWidths" and
 * "applicationIconWidths" (pixels), "width" and "height" (pixels), "isFixed" (its size), "font" (of
 * the application), "windowFontFamily", "focus" (object name), and by object name the "texts", the
 * "checked" and the "disabled" widgets; of a list "rows" and "currentRow"; of a message box "text",
 * "icon" and "buttons" (`QMessageBox::…`).
 */
QJsonObject windowState(const QWidget& window);

#endif
