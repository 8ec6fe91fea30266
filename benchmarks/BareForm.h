#ifndef BENCHMARKS_BAREFORM_H
#define BENCHMARKS_BAREFORM_H

class QWidget;

/** Fills a window with as many widgets of each class as the settings dialog has: a tab widget of
    four pages, and on it and beside it 13 group boxes, 38 labels, 18 line edits, 13 push buttons
    and 8 radio buttons. The window owns them. */
void addBareForm(QWidget& window);

#endif
