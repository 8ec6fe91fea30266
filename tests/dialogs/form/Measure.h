#ifndef TESTS_DIALOGS_FORM_MEASURE_H
#define TESTS_DIALOGS_FORM_MEASURE_H

#include <QDialog>
#include <QStringList>

/** Whether the texts of windows are shown whole. All sizes in pixels. */
namespace Measure {

/** Gives the application the font of the program, and the points the size of a pixel that the
    windows are designed for, while it exists. */
class ProgramFont {
public:
    ProgramFont();
    ~ProgramFont();
    ProgramFont(const ProgramFont&) = delete;
    ProgramFont& operator=(const ProgramFont&) = delete;

    bool isInUse() const;

private:
    const QFont m_before;
};

/** The characters of a text that no installed font can draw. */
QString missingGlyphs(const QString& text);

/** What the visible widgets of a window show cut off or covered, a line each: labels, buttons,
    radio buttons, group titles, tabs. The window must be on screen. */
QStringList misfits(const QWidget& window);

/** The texts that misfits looked at. */
QStringList measuredTexts(const QWidget& window);

} // namespace Measure

#endif
