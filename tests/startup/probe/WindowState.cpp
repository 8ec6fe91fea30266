#include "tests/startup/probe/WindowState.h"

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QIcon>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>

namespace {

QJsonObject applicationFont() {
    const QFont font = QApplication::font();
    return {{"family", font.family()},
            {"pointSize", font.pointSize()},
            {"weight", font.weight()},
            {"isItalic", font.italic()}};
}

QJsonArray widths(const QIcon& icon) {
    QJsonArray array;
    for (const QSize& size : icon.availableSizes())
        array.append(size.width());
    return array;
}

QString textOf(const QWidget* widget) {
    if (const auto* label = qobject_cast<const QLabel*>(widget))
        return label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
        return button->text();
    if (const auto* group = qobject_cast<const QGroupBox*>(widget))
        return group->title();
    if (const auto* edit = qobject_cast<const QLineEdit*>(widget))
        return edit->text();
    return {};
}

void addWidgets(QJsonObject& state, const QWidget& window) {
    QJsonObject texts;
    QJsonArray checked;
    QJsonArray disabled;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        const QString name = widget->objectName();
        if (name.isEmpty() || name.startsWith("qt_"))
            continue;
        texts.insert(name, textOf(widget));
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        if (button && button->isChecked())
            checked.append(name);
        if (!widget->isEnabled())
            disabled.append(name);
    }
    state.insert("texts", texts);
    state.insert("checked", checked);
    state.insert("disabled", disabled);
}

void addList(QJsonObject& state, const QListWidget& list) {
    QJsonArray rows;
    for (int row = 0; row < list.count(); ++row)
        rows.append(list.item(row)->text());
    state.insert("rows", rows);
    state.insert("currentRow", list.currentRow());
}

void addBox(QJsonObject& state, const QMessageBox& box) {
    state.insert("text", box.text());
    state.insert("icon", box.icon());
    state.insert("buttons", static_cast<int>(box.standardButtons()));
}

} // namespace

QJsonObject windowState(const QWidget& window) {
    QJsonObject state = {
        {"class", window.metaObject()->className()},
        {"title", window.windowTitle()},
        {"flags", static_cast<int>(window.windowFlags())},
        {"isModal", window.isModal()},
        {"hasParent", window.parent() != nullptr},
        {"ownIcon", window.testAttribute(Qt::WA_SetWindowIcon)},
        {"iconWidths", widths(window.windowIcon())},
        {"applicationIconWidths", widths(QApplication::windowIcon())},
        {"width", window.width()},
        {"height", window.height()},
        {"isFixed", window.minimumSize() == window.maximumSize()},
        {"font", applicationFont()},
        {"windowFontFamily", window.font().family()},
    };
    if (const QWidget* focus = window.focusWidget())
        state.insert("focus", focus->objectName());
    addWidgets(state, window);
    if (const auto* list = window.findChild<QListWidget*>())
        addList(state, *list);
    if (const auto* box = qobject_cast<const QMessageBox*>(&window))
        addBox(state, *box);
    return state;
}
