#include "dialogs/RadioKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QRadioButton>

#include <algorithm>
#include <utility>

namespace {

/** How far an arrow key moves in a row of buttons; 0 for another key. */
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

} // namespace

RadioKeys::RadioKeys(std::vector<QRadioButton*> buttons, QObject* parent)
    : QObject(parent), m_buttons(std::move(buttons)) {
    for (QRadioButton* button : m_buttons) {
        button->installEventFilter(this);
        connect(button, &QRadioButton::toggled, this, [this] { restoreTabStops(); });
    }
    // A button that gets the focus takes the others out of the order; this comes after that.
    connect(qApp, &QApplication::focusChanged, this, [this] { restoreTabStops(); });
}

bool RadioKeys::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return false;
    const int step = stepOf(*static_cast<QKeyEvent*>(event));
    const auto current = std::find(m_buttons.begin(), m_buttons.end(), watched);
    if (step == 0 || current == m_buttons.end())
        return false;
    const std::ptrdiff_t next = current - m_buttons.begin() + step;
    if (next >= 0 && next < static_cast<std::ptrdiff_t>(m_buttons.size())) {
        QRadioButton* button = m_buttons[static_cast<std::size_t>(next)];
        button->setFocus(step > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        button->click();
    }
    return true;
}

void RadioKeys::restoreTabStops() {
    const bool anyChecked = std::any_of(m_buttons.begin(), m_buttons.end(),
                                        [](const QRadioButton* b) { return b->isChecked(); });
    for (QRadioButton* button : m_buttons)
        button->setFocusPolicy(anyChecked && !button->isChecked() ? Qt::ClickFocus
                                                                  : Qt::StrongFocus);
}
