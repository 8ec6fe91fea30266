#ifndef TESTS_SUPPORT_DEBUGLOG_H
#define TESTS_SUPPORT_DEBUGLOG_H

#include <QStringList>
#include <QtGlobal>

#include <mutex>

/** Records what goes to Qt's log while it exists; one at a time. Lines of the tool (debug, category
    "default") and everything else are kept apart. Any thread may log.

    A test fails by itself when something was logged that it did not ask for: anything but a line of
    the tool that came after the last `others`; a line of the tool that came after the last `lines`,
    if it asked for lines at all. What was cleared does not count. */
class DebugLog {
public:
    DebugLog();
    ~DebugLog();
    DebugLog(const DebugLog&) = delete;
    DebugLog& operator=(const DebugLog&) = delete;

    /** The debug lines of the category "default", in order, exactly as logged. */
    QStringList lines() const;
    /** All the rest, as "category: text". */
    QStringList others() const;
    void clear();

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text);

    // Not a QMutex: the thread sanitizer cannot see what stock Qt synchronises.
    mutable std::mutex m_mutex;
    QStringList m_lines;
    QStringList m_others;
    mutable int m_askedLines = -1; ///< negative: never asked
    mutable int m_askedOthers = 0;
    QtMessageHandler m_previous;
};

#endif
