#include "simulator/CallLog.h"

#include "simulator/BenchFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace kvasim {

CallLog::~CallLog() {
    closeTrace();
}

void CallLog::add(const CallRecord& record) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::string line = Json{{"seq", ++m_lastNumber},
                                  {"function", functionName(record.function)},
                                  {"arguments", record.arguments},
                                  {"result", record.result},
                                  {"resultName", resultName(record.result)},
                                  {"durationUs", record.duration.count()}}
                                 .dump();
    if (m_lines.size() == capacity)
        m_lines.pop_front();
    m_lines.push_back(line);
    trace(line + '\n');
}

std::string CallLog::toJson(std::uint64_t after) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::uint64_t forgotten = m_lastNumber - m_lines.size();
    std::string text = "[";
    for (std::uint64_t index = after > forgotten ? after - forgotten : 0; index < m_lines.size();
         ++index) {
        text += text.size() > 1 ? ",\n" : "";
        text += m_lines[static_cast<std::size_t>(index)];
    }
    return text + ']';
}

CallLog::Page CallLog::page(std::uint64_t after, std::size_t limit) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    Page page;
    page.last = after;
    if (after > m_lastNumber)
        return page;
    const std::uint64_t forgotten = m_lastNumber - m_lines.size();
    if (page.last < forgotten) {
        page.missed = forgotten - page.last;
        page.last = forgotten;
    }
    const auto first = static_cast<std::size_t>(page.last - forgotten);
    const std::size_t end = first + std::min(limit, m_lines.size() - first);
    for (std::size_t index = first; index < end; ++index)
        page.lines.push_back(m_lines[index]);
    page.last += page.lines.size();
    return page;
}

std::uint64_t CallLog::lastNumber() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lastNumber;
}

void CallLog::clear() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
}

void CallLog::reset() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
    m_lastNumber = 0;
    closeTrace();
}

void CallLog::openTrace() {
    m_traceOpened = true;
    const char* path = std::getenv("KVASIM_TRACE"); // NOLINT(concurrency-mt-unsafe)
    if (path == nullptr || *path == '\0')
        return;
    m_trace = ::open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (m_trace < 0)
        complain(std::string(path) +
                 ": the trace cannot be written: " + std::generic_category().message(errno));
}

void CallLog::closeTrace() {
    if (m_trace >= 0)
        ::close(m_trace);
    m_trace = -1;
    m_traceOpened = false;
}

void CallLog::trace(const std::string& line) {
    if (!m_traceOpened)
        openTrace();
    if (m_trace < 0)
        return;
    // One write, so that programs with one trace do not mix their lines.
    const ssize_t written = ::write(m_trace, line.data(), line.size());
    if (written == static_cast<ssize_t>(line.size()))
        return;
    complain("the trace cannot be written, it ends here: " +
             (written < 0 ? std::generic_category().message(errno) : "the line was cut"));
    ::close(m_trace);
    m_trace = -1;
}

} // namespace kvasim
