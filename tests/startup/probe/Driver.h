#ifndef TESTS_STARTUP_PROBE_DRIVER_H
#define TESTS_STARTUP_PROBE_DRIVER_H

#include "tests/startup/probe/Record.h"

#include <QtWidgets>

#include <cstdlib>

// ---- What a window shows

inline QJsonArray widths(const QIcon& icon) {
    QJsonArray array;
    for (const QSize& size : icon.availableSizes())
        array.append(size.width());
    return array;
}

inline void addWidgets(QJsonObject& state, const QWidget& window) {
    QJsonObject texts;
    QJsonArray checked;
    QJsonArray disabled;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        const QString name = widget->objectName();
        if (name.isEmpty() || name.startsWith("qt_"))
            continue;
        const bool isGroup = qobject_cast<const QGroupBox*>(widget) != nullptr;
        texts.insert(name, widget->property(isGroup ? "title" : "text").toString());
        if (widget->property("checked").toBool())
            checked.append(name);
        if (!widget->isEnabled())
            disabled.append(name);
    }
    state.insert("texts", texts);
    state.insert("checked", checked);
    state.insert("disabled", disabled);
}

/**
 * What a window shows, as JSON: "class", "title", "flags" (`Qt::WindowFlags`), "isModal",
 * "hasParent", "ownIcon" (one was given to the window itself), "iconWidths" and
 * "applicationIconWidths" (pixels), "font" (of the application), "windowFontFamily", "focus"
 * (object name), and by object name the "texts", the "checked" and the "disabled" widgets; of a
 * list "rows" and "currentRow"; of a message box "text", "icon" and "buttons" (`QMessageBox::…`).
 */
inline QJsonObject windowState(const QWidget& window) {
    const QFont font = QApplication::font();
    QJsonObject state = {
        {"class", window.metaObject()->className()},
        {"title", window.windowTitle()},
        {"flags", static_cast<int>(window.windowFlags())},
        {"isModal", window.isModal()},
        {"hasParent", window.parent() != nullptr},
        {"ownIcon", window.testAttribute(Qt::WA_SetWindowIcon)},
        {"iconWidths", widths(window.windowIcon())},
        {"applicationIconWidths", widths(QApplication::windowIcon())},
        {"font", QJsonObject{{"family", font.family()},
                             {"pointSize", font.pointSize()},
                             {"weight", font.weight()},
                             {"isItalic", font.italic()}}},
        {"windowFontFamily", window.font().family()},
    };
    if (const QWidget* focus = window.focusWidget())
        state.insert("focus", focus->objectName());
    addWidgets(state, window);
    if (const auto* list = window.findChild<QListWidget*>()) {
        QJsonArray rows;
        for (int row = 0; row < list->count(); ++row)
            rows.append(list->item(row)->text());
        state.insert("rows", rows);
        state.insert("currentRow", list->currentRow());
    }
    if (const auto* box = qobject_cast<const QMessageBox*>(&window)) {
        state.insert("text", box->text());
        state.insert("icon", box->icon());
        state.insert("buttons", static_cast<int>(box->standardButtons()));
    }
    return state;
}

// ---- The user

/**
 * The user inside the program: takes one step after the other as soon as the window of the step is
 * there to be used, and notes each window that comes and goes, and each dialog's destruction.
 *
 * A step is {"window": class, "action": ..., "value": ...}. Actions and their values: "click" (the
 * object name of a button), "press" (Ok, of a message box), "select" (a row of its list), "page"
 * (an index, of its tabs), "fill" (the object names of edits and their texts), "choose" (a path, in
 * a file dialog), "key" (`Qt::Key`), "removeFile" (a path), "close" (the window's close control),
 * "exit" (a status, with which exit() is called, as Qt does within an event when macOS' Quit is
 * chosen while no event loop runs, and when the X server is gone); any other is a slot of the
 * window. What the window shows is noted before each step. A step that cannot be taken ends the
 * program with the exit status 3.
 */
class Driver : public QObject {
public:
    /** @param record  must outlive this object */
    Driver(Record& record, const QJsonArray& steps) : m_record(record), m_steps(steps) {
        qApp->installEventFilter(this);
        m_waiting.start();
        tick();
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* window = qobject_cast<QWidget*>(watched);
        if (window && window->isWindow() && !event->spontaneous()) {
            if (event->type() == QEvent::Show) {
                noteWindow(*window, "shown");
                watchDialogs();
            } else if (event->type() == QEvent::Hide) {
                noteWindow(*window, "hidden");
            }
        }
        return QObject::eventFilter(watched, event);
    }

private:
    static constexpr int interval = 5;         // ms
    static constexpr qint64 patience = 30'000; // ms without a step that could be taken

    void noteWindow(const QWidget& window, const QString& event) {
        QString name = window.metaObject()->className();
        if (const auto* box = qobject_cast<const QMessageBox*>(&window))
            name += QString(" \"%1\"").arg(box->text());
        m_record.add(event, {{"window", name}});
    }

    void watchDialogs() {
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (const QWidget* window : windows) {
            const QString name = window->metaObject()->className();
            if (!window->inherits("QDialog") || name == "QMessageBox" || m_watched.contains(window))
                continue;
            m_watched.append(window);
            connect(window, &QObject::destroyed, this, [this, name](const QObject* object) {
                m_watched.removeOne(object);
                m_record.add("destroyed", {{"window", name}});
            });
        }
    }

    void tick() {
        // A timer of its own for each tick: a step may open a message box, and return after it.
        QTimer::singleShot(interval, this, &Driver::tick);
        const QJsonObject step = m_steps.at(m_next).toObject();
        const QString className = step["window"].toString();
        if (QWidget* window = usableWindow(className)) {
            m_record.add("step", {{"state", windowState(*window)}});
            ++m_next;
            m_waiting.restart();
            perform(step, *window);
        } else if (m_waiting.elapsed() > patience) {
            fail(m_next < m_steps.size()
                     ? QString("step %1: no %2 to be used").arg(m_next).arg(className)
                     : "the program does not end after the last step");
        }
    }

    QWidget* usableWindow(const QString& className) const {
        QWidget* modal = QApplication::activeModalWidget();
        const QWidgetList windows = modal ? QWidgetList{modal} : QApplication::topLevelWidgets();
        for (QWidget* window : windows) {
            if (window->isVisible() && className == window->metaObject()->className())
                return window;
        }
        return nullptr;
    }

    void perform(const QJsonObject& step, QWidget& window) {
        const QString action = step["action"].toString();
        const QJsonValue value = step["value"];
        if (action == "click")
            press(window.findChild<QAbstractButton*>(value.toString()));
        else if (action == "press")
            press(dynamic_cast<QMessageBox&>(window).button(QMessageBox::Ok));
        else if (action == "select")
            select(window, value.toInt());
        else if (action == "page")
            turn(window, value.toInt());
        else if (action == "fill")
            fill(window, value.toObject());
        else if (action == "choose")
            choose(window, value.toString());
        else if (action == "key")
            strike(window, static_cast<Qt::Key>(value.toInt()));
        else if (action == "removeFile")
            require(QFile::remove(value.toString()));
        else if (action == "close")
            window.windowHandle()->close(); // as from the window manager
        else if (action == "exit")
            std::exit(value.toInt());
        else
            call(window, action);
    }

    void call(QWidget& window, const QString& slot) {
        require(QMetaObject::invokeMethod(&window, slot.toLatin1(), Qt::DirectConnection));
    }

    void press(QAbstractButton* button) {
        require(button && button->isEnabled() && button->isVisible());
        button->click();
    }

    void select(QWidget& window, int row) {
        auto* list = window.findChild<QListWidget*>();
        require(list && row < list->count());
        list->setCurrentRow(row);
    }

    void turn(QWidget& window, int page) {
        auto* tabs = window.findChild<QTabWidget*>();
        require(tabs && page < tabs->count() && tabs->isTabEnabled(page));
        tabs->setCurrentIndex(page);
    }

    void fill(QWidget& window, const QJsonObject& texts) {
        for (auto text = texts.begin(); text != texts.end(); ++text) {
            auto* edit = window.findChild<QLineEdit*>(text.key());
            require(edit && edit->isEnabled() && edit->isVisible());
            edit->setText(text.value().toString());
        }
    }

    void choose(QWidget& window, const QString& path) {
        fill(window, {{"fileNameEdit", path}});
        call(window, "accept"); // which its button calls
    }

    void strike(QWidget& window, Qt::Key key) {
        QPointer<QWidget> target = window.focusWidget() ? window.focusWidget() : &window;
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            if (target)
                QCoreApplication::sendEvent(target, &event);
        }
    }

    void require(bool canBeTaken) {
        const QJsonDocument step(m_steps.at(m_next - 1).toObject());
        if (!canBeTaken)
            fail("this step cannot be taken: " + step.toJson(QJsonDocument::Compact));
    }

    [[noreturn]] void fail(const QString& reason) {
        m_record.add("failure", {{"reason", reason}});
        std::_Exit(3);
    }

    Record& m_record;
    QJsonArray m_steps;
    int m_next = 0;
    QElapsedTimer m_waiting;
    QVector<const QObject*> m_watched; ///< dialogs whose destruction will be noted
};

#endif
