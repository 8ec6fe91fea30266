#ifndef TESTS_STARTUP_PROBE_RECORD_H
#define TESTS_STARTUP_PROBE_RECORD_H

#include <QFile>
#include <QJsonObject>
#include <QMutex>
#include <QString>
#include <QtGlobal>

/**
 * What happens in the program, in one order, as a file of JSON objects, one in each line: the
 * windows, the log lines, and the calls of libKVASDK as its trace shows them. A call stands before
 * everything that is noted after it. Each line is written at once. One at a time exists; any thread
 * may note.
 */
class Record {
public:
    /** @param path   the file to write
        @param trace  the trace of libKVASDK; empty: none */
    Record(const QString& path, const QString& trace);
    ~Record();
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    /** Notes an event of this name, with @p fields. */
    void add(const QString& event, QJsonObject fields);

private:
    static void handleMessage(QtMsgType type, const QMessageLogContext& context,
                              const QString& text);
    void addCalls();
    void write(const QString& event, QJsonObject fields);

    static Record* s_current;

    QMutex m_mutex;
    QFile m_file;
    QFile m_trace;
    QtMessageHandler m_previous;
};

#endif
