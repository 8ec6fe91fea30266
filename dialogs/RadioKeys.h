#ifndef DIALOGS_RADIOKEYS_H
#define DIALOGS_RADIOKEYS_H

#include <QObject>
#include <QPointer>
#include <QRadioButton>

#include <vector>

/**
 * Makes a row of radio buttons a group of its own for the keyboard. Tab stops at the checked
 * button, or at each button while none is checked. The arrow keys check the next or the previous
 * one. An arrow key at the end of the row, or with a modifier other than the keypad's, goes to the
 * window.
 *
 * Qt treats all radio buttons inside a box as one group, including those of a box within it. Tab
 * then skips the inner ones, and an arrow key on an outer one changes an inner one. This class does
 * not change which buttons are exclusive.
 *
 * It filters the key presses of the whole application and updates the tab stops at each of them.
 * User-interface thread only; an application object must exist.
 */
class RadioKeys : public QObject {
public:
    /** @param buttons  in the order of the arrow keys; not owned, and may be deleted before this
        @param parent   the owner of this */
    RadioKeys(const std::vector<QRadioButton*>& buttons, QObject* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /** Qt changes the tab stops when a radio button gets the focus, but not when one is checked. */
    void restoreTabStops();

    std::vector<QPointer<QRadioButton>> m_buttons;
};

#endif
