#include "tests/startup/probe/Driver.h"

#include "tests/startup/probe/WindowState.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QTabWidget>
#include <QWindow>

#include <cstdlib>

namespace {

constexpr int interval = 5;         // ms
constexpr qint64 patience = 30'000; // ms without a step that could be taken

} // namespace

Driver::Driver(Record& record, const QJsonArray& steps) : m_record(record), m_steps(steps) {
    qApp->installEventFilter(this);
    connect(&m_timer, &QTimer::timeout, this, &Driver::tick);
    m_timer.start(interval);
    m_waiting.start();
}

bool Driver::eventFilter(QObject* watched, QEvent* event) {
    const auto* window = qobject_cast<QWidget*>(watched);
    if (window && window->isWindow() && !event->spontaneous()) {
        if (event->type() == QEvent::Show) {
            noteWindow(*window, QStringLiteral("shown"));
            watchDialogs();
        } else if (event->type() == QEvent::Hide) {
            noteWindow(*window, QStringLiteral("hidden"));
        }
    }
    return QObject::eventFilter(watched, event);
}

void Driver::noteWindow(const QWidget& window, const QString& event) {
    QString name = QString::fromLatin1(window.metaObject()->className());
    if (const auto* box = qobject_cast<const QMessageBox*>(&window))
        name += QStringLiteral(" \"%1\"").arg(box->text());
    m_record.add(event, {{QStringLiteral("window"), name}});
}

void Driver::watchDialogs() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        const bool isDialog = qobject_cast<const QDialog*>(window) != nullptr &&
                              qobject_cast<const QMessageBox*>(window) == nullptr;
        if (isDialog && !m_watched.contains(window))
            watch(*window);
    }
}

void Driver::watch(const QWidget& dialog) {
    m_watched.append(&dialog);
    const QString name = QString::fromLatin1(dialog.metaObject()->className());
    connect(&dialog, &QObject::destroyed, this, [this, name](const QObject* object) {
        m_watched.removeOne(object);
        m_record.add(QStringLiteral("destroyed"), {{QStringLiteral("window"), name}});
    });
}

void Driver::tick() {
    if (m_isActing)
        return;
    const QJsonObject step = m_steps.at(m_next).toObject();
    const QString className = step.value(QStringLiteral("window")).toString();
    QPointer<QWidget> window = usableWindow(className);
    if (!window) {
        if (m_waiting.elapsed() > patience)
            fail(m_next < m_steps.size()
                     ? QStringLiteral("step %1: no %2 to be used").arg(m_next).arg(className)
                     : QStringLiteral("the program does not end after the last step"));
        return;
    }
    m_isActing = true;
    // Not from here: a timer does not fire while its slot runs, and a step may open a message box.
    QMetaObject::invokeMethod(
        this,
        [this, step, window] {
            if (!window)
                fail(QStringLiteral("step %1: the window is gone").arg(m_next));
            m_record.add(QStringLiteral("step"), {{QStringLiteral("state"), windowState(*window)}});
            ++m_next;
            m_isActing = false;
            m_waiting.restart();
            perform(step, *window);
        },
        Qt::QueuedConnection);
}

QWidget* Driver::usableWindow(const QString& className) const {
    QWidget* modal = QApplication::activeModalWidget();
    const QWidgetList windows = modal ? QWidgetList{modal} : QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->isVisible() && className == QLatin1String(window->metaObject()->className()))
            return window;
    }
    return nullptr;
}

void Driver::perform(const QJsonObject& step, QWidget& window) {
    if (step.contains(QStringLiteral("click")))
        click(window, step.value(QStringLiteral("click")).toString());
    if (step.contains(QStringLiteral("press")))
        press(window);
    if (step.contains(QStringLiteral("select")))
        select(window, step.value(QStringLiteral("select")).toInt());
    if (step.contains(QStringLiteral("page")))
        turn(window, step.value(QStringLiteral("page")).toInt());
    if (step.contains(QStringLiteral("fill")))
        fill(window, step.value(QStringLiteral("fill")).toObject());
    if (step.contains(QStringLiteral("choose")))
        choose(window, step.value(QStringLiteral("choose")).toString());
    if (step.contains(QStringLiteral("key")))
        strike(window, static_cast<Qt::Key>(step.value(QStringLiteral("key")).toInt()));
    if (step.contains(QStringLiteral("removeFile")))
        remove(step.value(QStringLiteral("removeFile")).toString());
    if (step.contains(QStringLiteral("reject")))
        dynamic_cast<QDialog&>(window).reject();
    if (step.contains(QStringLiteral("hide")))
        window.hide();
    if (step.contains(QStringLiteral("close")))
        window.windowHandle()->close(); // as from the window manager
}

void Driver::click(QWidget& window, const QString& button) {
    auto* found = window.findChild<QAbstractButton*>(button);
    if (!found || !found->isEnabled() || !found->isVisible())
        fail(QStringLiteral("no %1 to be clicked").arg(button));
    found->click();
}

void Driver::press(QWidget& window) {
    const auto* box = qobject_cast<QMessageBox*>(&window);
    QAbstractButton* button = box ? box->button(QMessageBox::Ok) : nullptr;
    if (!button)
        fail(QStringLiteral("no Ok to be pressed"));
    button->click();
}

void Driver::select(QWidget& window, int row) {
    auto* list = window.findChild<QListWidget*>();
    if (!list || row >= list->count())
        fail(QStringLiteral("no row %1 to be selected").arg(row));
    list->setCurrentRow(row);
}

void Driver::turn(QWidget& window, int page) {
    auto* tabs = window.findChild<QTabWidget*>();
    if (!tabs || page >= tabs->count() || !tabs->isTabEnabled(page))
        fail(QStringLiteral("no page %1 to be turned to").arg(page));
    tabs->setCurrentIndex(page);
}

void Driver::fill(QWidget& window, const QJsonObject& texts) {
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        auto* edit = window.findChild<QLineEdit*>(text.key());
        if (!edit || !edit->isEnabled() || !edit->isVisible())
            fail(QStringLiteral("no %1 to be filled").arg(text.key()));
        edit->setText(text.value().toString());
    }
}

void Driver::choose(QWidget& window, const QString& path) {
    fill(window, {{QStringLiteral("fileNameEdit"), path}});
    // QFileDialog makes accept() protected; the slot is the same one that its button calls.
    if (!QMetaObject::invokeMethod(&window, "accept", Qt::DirectConnection))
        fail(QStringLiteral("no file dialog"));
}

void Driver::strike(QWidget& window, Qt::Key key) {
    QPointer<QWidget> target = window.focusWidget() ? window.focusWidget() : &window;
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier);
        if (target)
            QCoreApplication::sendEvent(target, &event);
    }
}

void Driver::remove(const QString& path) {
    if (!QFile::remove(path))
        fail(QStringLiteral("%1 cannot be removed").arg(path));
}

void Driver::fail(const QString& reason) {
    m_record.add(QStringLiteral("failure"), {{QStringLiteral("reason"), reason}});
    std::_Exit(3);
}
