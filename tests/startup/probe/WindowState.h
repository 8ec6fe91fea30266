#ifndef TESTS_STARTUP_PROBE_WINDOWSTATE_H
#define TESTS_STARTUP_PROBE_WINDOWSTATE_H

#include <QtWidgets>

inline QJsonObject applicationFont() {
    const QFont font = QApplication::font();
    return {{"family", font.family()},
            {"pointSize", font.pointSize()},
            {"weight", font.weight()},
            {"isItalic", font.italic()}};
}

inline QJsonArray widths(const QIcon& icon) {
    QJsonArray array;
    for (const QSize& size : icon.availableSizes())
        array.append(size.width());
    return array;
}

inline QString textOf(const QWidget* widget) {
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

inline void addWidgets(QJsonObject& state, const QWidget& window) {
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

inline void addList(QJsonObject& state, const QListWidget& list) {
    QJsonArray rows;
    for (int row = 0; row < list.count(); ++row)
        rows.append(list.item(row)->text());
    state.insert("rows", rows);
    state.insert("currentRow", list.currentRow());
}

inline void addBox(QJsonObject& state, const QMessageBox& box) {
    state.insert("text", box.text());
    state.insert("icon", box.icon());
    state.insert("buttons", static_cast<int>(box.standardButtons()));
}

/**
 * What a window shows, as JSON: "class", "title", "flags" (`Qt::WindowFlags`), "isModal",
 * "hasParent", "ownIcon" (one was given to the window itself), "iconWidths" and
 * "applicationIconWidths" (pixels), "width" and "height" (pixels), "isFixed" (its size), "font" (of
 * the application), "windowFontFamily", "focus" (object name), and by object name the "texts", the
 * "checked" and the "disabled" widgets; of a list "rows" and "currentRow"; of a message box "text",
 * "icon" and "buttons" (`QMessageBox::…`).
 */
inline QJsonObject windowState(const QWidget& window) {
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

#endif
