#ifndef TESTS_STARTUP_PROBE_DRIVER_H
#define TESTS_STARTUP_PROBE_DRIVER_H

#include "tests/startup/probe/Record.h"

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVector>
#include <QWidget>

/**
 * The user inside the program: takes one step after the other as soon as the window of the step is
 * there to be used, and notes each window that comes and goes, and each dialog's destruction.
 *
 * A step is {"window": class, "action": ..., "value": ...}. Actions and their values: "click" (the
 * object name of a button), "press" (Ok, of a message box), "select" (a row of its list), "page"
 * (an index, of its tabs), "fill" (the object names of edits and their texts), "choose" (a path, in
 * a file dialog), "key" (`Qt::Key`), "close" (the window's close control), "reject", "hide",
 * "removeFile" (a path). What the window shows is noted before each step. A step that cannot be
 * taken ends the program with the exit status 3.
 */
class Driver : public QObject {
    Q_OBJECT

public:
    /** @param record  must outlive this object */
    Driver(Record& record, const QJsonArray& steps);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void tick();
    QWidget* usableWindow(const QString& className) const;
    void noteWindow(const QWidget& window, const QString& event);
    void watchDialogs();
    void watch(const QWidget& dialog);
    void perform(const QJsonObject& step, QWidget& window);
    void press(QAbstractButton* button);
    void select(QWidget& window, int row);
    void turn(QWidget& window, int page);
    void fill(QWidget& window, const QJsonObject& texts);
    void choose(QWidget& window, const QString& path);
    void strike(QWidget& window, Qt::Key key);
    void require(bool canBeTaken);
    [[noreturn]] void fail(const QString& reason);

    Record& m_record;
    QJsonArray m_steps;
    int m_next = 0;
    bool m_isActing = false; ///< a step was begun and not yet taken
    QTimer m_timer;
    QElapsedTimer m_waiting;
    QVector<const QObject*> m_watched; ///< dialogs whose destruction will be noted
};

#endif
