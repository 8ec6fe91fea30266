#ifndef DIALOGS_RADIOKEYS_H
#define DIALOGS_RADIOKEYS_H

#include <QObject>
#include <QPointer>
#include <QRadioButton>

#include <vector>

/**
 * Makes radio buttons a choice of their own for the keyboard: Tab stops at the checked one (at each
 * while none is), the arrow keys choose among them. An arrow key at the end of the row, or with a
 * modifier other than the keypad's, goes on to the window. Qt takes all radio buttons inside a box
 * for one choice, those of a box within it as well: Tab then leaves the inner ones out, and an
 * arrow key changes them from outside. What is checked and unchecked with what stays Qt's affair.
 *
 * Sees each key press in the application before the widget that it is meant for, and sets the stops
 * of Tab then. User-interface thread only; an application object must exist.
 */
class RadioKeys : public QObject {
public:
    /** @param buttons  in the order of the arrow keys; not owned, and may go before this does
        @param parent   the owner of this */
    RadioKeys(const std::vector<QRadioButton*>& buttons, QObject* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /** Qt moves the stops whenever a radio button gets the focus, and leaves them where they are
       when one is checked. */
    void restoreTabStops();

    std::vector<QPointer<QRadioButton>> m_buttons;
};

#endif
