#include "simulator/CallLog.h"

#include "simulator/BenchStore.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace kvasim {

namespace {

constexpr std::size_t capacity = 100000; // calls in memory
constexpr std::int64_t maxFileSize = std::int64_t{4} << 20U;

} // namespace

std::string callLogPath(const std::string& bench) {
    const std::string named = environmentOf("KVASIM_TRACE");
    return named.empty() && !bench.empty() ? bench + ".log" : named;
}

void CallLog::setBench(const std::string& bench) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_bench = bench;
    m_path.reset();
}

void CallLog::add(const Json& call) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    Json numbered = {{"seq", ++m_lastNumber}};
    numbered.update(call);
    if (m_lines.size() == capacity)
        m_lines.pop_front();
    m_lines.push_back(numbered.dump());
    append(m_lines.back() + '\n');
}

std::string CallLog::toJson() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::string text = "[";
    for (const std::string& line : m_lines)
        text += (text.size() > 1 ? ",\n" : "") + line;
    return text + ']';
}

void CallLog::clear(bool restart) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
    if (restart)
        m_lastNumber = 0;
}

void CallLog::append(const std::string& line) {
    if (!m_path)
        m_path = callLogPath(m_bench);
    const std::string path = *m_path;
    if (path.empty())
        return;
    if (path == m_bench + ".log" && stampOf(path).size >= maxFileSize)
        static_cast<void>(std::rename(path.c_str(), (path + ".old").c_str()));
    const int file =
        ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    const bool isWritten = file >= 0 && writeAtOnce(file, line);
    const int error = errno;
    if (file >= 0)
        ::close(file);
    if (isWritten)
        return;
    complain(path + ": the calls cannot be written, they end here: " +
             std::generic_category().message(error));
    m_path = "";
}

} // namespace kvasim
