#ifndef TESTS_STARTUP_PROBE_RECORD_H
#define TESTS_STARTUP_PROBE_RECORD_H

#include <QtWidgets>

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
    Record(const QString& path, const QString& trace) : m_file(path), m_trace(trace) {
        m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
        s_current = this;
        m_previous = qInstallMessageHandler(handleMessage);
    }
    ~Record() {
        qInstallMessageHandler(m_previous);
        s_current = nullptr;
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    /** Notes an event of this name, with @p fields. */
    void add(const QString& event, QJsonObject fields) {
        const QMutexLocker locker(&m_mutex);
        addCalls();
        write(event, std::move(fields));
    }

private:
    static void handleMessage(QtMsgType type, const QMessageLogContext& context,
                              const QString& text) {
        s_current->add(
            "log",
            {{"isDebug", type == QtDebugMsg}, {"category", context.category}, {"text", text}});
        s_current->m_previous(type, context, text);
    }

    void addCalls() {
        if (!m_trace.isOpen() && !m_trace.open(QIODevice::ReadOnly))
            return; // no call yet
        for (;;) {
            const qint64 start = m_trace.pos();
            const QByteArray line = m_trace.readLine();
            if (!line.endsWith('\n')) {
                m_trace.seek(start);
                return;
            }
            write("call", QJsonDocument::fromJson(line).object());
        }
    }

    void write(const QString& event, QJsonObject fields) {
        fields.insert("event", event);
        m_file.write(QJsonDocument(fields).toJson(QJsonDocument::Compact) + '\n');
    }

    inline static Record* s_current = nullptr;

    QMutex m_mutex;
    QFile m_file;
    QFile m_trace;
    QtMessageHandler m_previous = nullptr;
};

#endif
