#include "tests/support/DebugLog.h"

#include <QTest>

#include <algorithm>

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
    const QStringList unexpected = (m_askedLines < 0 ? QStringList() : m_lines.mid(m_askedLines)) +
                                   m_others.mid(m_askedOthers);
    if (!unexpected.isEmpty())
        QTest::qFail(qPrintable("logged, but not asked for: " + unexpected.join(" | ")), __FILE__,
                     __LINE__);
}

QStringList DebugLog::lines() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_askedLines = static_cast<int>(m_lines.size());
    return m_lines;
}

QStringList DebugLog::others() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_askedOthers = static_cast<int>(m_others.size());
    return m_others;
}

void DebugLog::clear() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
    m_others.clear();
    m_askedLines = std::min(m_askedLines, 0);
    m_askedOthers = 0;
}

void DebugLog::handle(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const std::lock_guard<std::mutex> lock(current->m_mutex);
    if (type == QtDebugMsg && qstrcmp(context.category, "default") == 0)
        current->m_lines.append(text);
    else if (!text.startsWith("This plugin does not support")) // which offscreen windows say
        current->m_others.append(QString(context.category) + ": " + text);
}
