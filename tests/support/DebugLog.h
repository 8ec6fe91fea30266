#ifndef TESTS_SUPPORT_DEBUGLOG_H
#define TESTS_SUPPORT_DEBUGLOG_H

#include <QStringList>
#include <QtGlobal>

#include <mutex>

/** Records what goes to Qt's log while it exists; one at a time. Lines of the tool (debug, category
    "default") and everything else are kept apart. Any thread may log. */
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
    QtMessageHandler m_previous;
};

#endif
