#include "tests/support/DebugLog.h"

namespace {
DebugLog* current = nullptr;
} // namespace

DebugLog::DebugLog() {
    Q_ASSERT(!current);
    current = this;
    m_previous = qInstallMessageHandler(handle);
}

DebugLog::~DebugLog() {
    qInstallMessageHandler(m_previous);
    current = nullptr;
}

QStringList DebugLog::lines() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lines;
}

QStringList DebugLog::others() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_others;
}

void DebugLog::clear() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
    m_others.clear();
}

void DebugLog::handle(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const std::lock_guard<std::mutex> lock(current->m_mutex);
    if (type == QtDebugMsg && qstrcmp(context.category, "default") == 0)
        current->m_lines.append(text);
    else
        current->m_others.append(QString::fromLatin1(context.category) + QStringLiteral(": ") +
                                 text);
}
