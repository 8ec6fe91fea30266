#include "simulator/CallLog.h"

#include "simulator/BenchFile.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace kvasim {

namespace {

/** Appends in one write, so that programs with one file do not mix their lines.
    @return 0 or the system's error number */
int appendTo(const std::string& path, const std::string& line) {
    const int file =
        ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (file < 0)
        return errno;
    const ssize_t written = ::write(file, line.data(), line.size());
    const int error = written < 0 ? errno : 0;
    ::close(file);
    return error == 0 && written != static_cast<ssize_t>(line.size()) ? ENOSPC : error;
}

} // namespace

std::string callLogPath(const std::string& bench) {
    const std::string named = environmentOf("KVASIM_TRACE");
    return named.empty() && !bench.empty() ? bench + ".log" : named;
}

void CallLog::setBench(const std::string& bench) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_bench = bench;
    m_file = File::Unasked;
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
    append(line + '\n');
}

std::string CallLog::toJson() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::string text = "[";
    for (const std::string& line : m_lines)
        text += (text.size() > 1 ? ",\n" : "") + line;
    return text + ']';
}

void CallLog::clear() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
}

void CallLog::reset() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.clear();
    m_lastNumber = 0;
}

void CallLog::append(const std::string& line) {
    if (m_file == File::Unasked) {
        m_path = callLogPath(m_bench);
        m_file = File::Written;
    }
    if (m_path.empty() || m_file == File::Failed)
        return;
    if (m_path == m_bench + ".log" && stampOf(m_path)[2] >= maxFileSize)
        static_cast<void>(std::rename(m_path.c_str(), (m_path + ".old").c_str()));
    const int error = appendTo(m_path, line);
    if (error == 0)
        return;
    m_file = File::Failed;
    complain(m_path + ": the calls cannot be written, they end here: " +
             std::generic_category().message(error));
}

} // namespace kvasim
