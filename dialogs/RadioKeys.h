#ifndef DIALOGS_RADIOKEYS_H
#define DIALOGS_RADIOKEYS_H

#include <QObject>
#include <QPointer>
#include <QRadioButton>

#include <vector>

/**
 * Makes radio buttons a choice of their own for the keyboard: Tab stops at the checked one (at each
 * while none is), the arrow keys choose among them. Qt takes all radio buttons inside a box for one
 * choice, those of a box within it as well: Tab then leaves the inner ones out, and an arrow key
 * changes them from outside. What is checked and unchecked with what stays Qt's affair.
 */
class RadioKeys : public QObject {
public:
    /** @param buttons  in the order of the arrow keys; not owned, and may go before this does
        @param parent   the owner of this */
    RadioKeys(const std::vector<QRadioButton*>& buttons, QObject* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void restoreTabStops();

    std::vector<QPointer<QRadioButton>> m_buttons;
};

#endif
