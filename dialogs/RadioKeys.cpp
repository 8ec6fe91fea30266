#include "dialogs/RadioKeys.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <algorithm>

namespace {

/** By how many buttons a key moves in a row: -1 or 1 for an arrow key, 0 for any other. */
int stepOf(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Down:
    case Qt::Key_Right:
        return 1;
    case Qt::Key_Up:
    case Qt::Key_Left:
        return -1;
    default:
        return 0;
    }
}

/** Whether no modifier but the keypad's is pressed, which every arrow key has on macOS. */
bool isAlone(const QKeyEvent& event) {
    return (event.modifiers() & ~Qt::KeypadModifier) == 0;
}

} // namespace

RadioKeys::RadioKeys(const std::vector<QRadioButton*>& buttons, QObject* parent)
    : QObject(parent), m_buttons(buttons.begin(), buttons.end()) {
    // On the application, since Tab may be pressed in any widget.
    QCoreApplication::instance()->installEventFilter(this);
}

bool RadioKeys::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return false;
    restoreTabStops();
    const auto& key = *static_cast<QKeyEvent*>(event);
    const int step = stepOf(key);
    const auto current = std::find_if(m_buttons.begin(), m_buttons.end(),
                                      [&](const auto& button) { return button == watched; });
    if (step == 0 || current == m_buttons.end())
        return false;
    const std::ptrdiff_t next = current - m_buttons.begin() + step;
    const bool isInRow = next >= 0 && next < static_cast<std::ptrdiff_t>(m_buttons.size());
    const QPointer<QRadioButton> button =
        isInRow && isAlone(key) ? m_buttons[static_cast<std::size_t>(next)] : nullptr;
    if (button) {
        button->setFocus(Qt::TabFocusReason);
        button->click();
    } else {
        event->ignore(); // the parent gets it, not the button, which would move the focus
    }
    return true;
}

void RadioKeys::restoreTabStops() {
    const bool anyChecked = std::any_of(m_buttons.begin(), m_buttons.end(), [](const auto& button) {
        return button && button->isChecked();
    });
    for (const QPointer<QRadioButton>& button : m_buttons) {
        if (!button)
            continue;
        const bool isStop = !anyChecked || button->isChecked();
        // Keeps whether a click gives the button the focus.
        const int policy = button->focusPolicy();
        button->setFocusPolicy(
            static_cast<Qt::FocusPolicy>(isStop ? policy | Qt::TabFocus : policy & ~Qt::TabFocus));
    }
}
