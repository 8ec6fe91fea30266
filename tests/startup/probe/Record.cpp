#include "tests/startup/probe/Record.h"

#include <QJsonDocument>
#include <QMutexLocker>

Record* Record::s_current = nullptr;

Record::Record(const QString& path, const QString& trace)
    : m_file(path), m_trace(trace), m_previous(nullptr) {
    m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
    s_current = this;
    m_previous = qInstallMessageHandler(handleMessage);
}

Record::~Record() {
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

void Record::add(const QString& event, QJsonObject fields) {
    const QMutexLocker locker(&m_mutex);
    addCalls();
    write(event, std::move(fields));
}

void Record::handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    s_current->add(
        "log", {{"isDebug", type == QtDebugMsg}, {"category", context.category}, {"text", text}});
    s_current->m_previous(type, context, text);
}

void Record::addCalls() {
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

void Record::write(const QString& event, QJsonObject fields) {
    fields.insert("event", event);
    m_file.write(QJsonDocument(fields).toJson(QJsonDocument::Compact) + '\n');
}
