/**
 * The call log: one JSON object per call, with the fields that `KvaSim_CallLog` names, kept in
 * memory and appended to a file as one line.
 */
#ifndef SIMULATOR_CALLLOG_H
#define SIMULATOR_CALLLOG_H

#include "simulator/Json.h"

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

namespace kvasim {

/** The log file of a bench: the one that `KVASIM_TRACE` names, or FILE.log beside the bench.
    @param bench the bench file; empty for a bench in memory
    @return empty when calls are not written to a file */
std::string callLogPath(const std::string& bench);

/** Any thread may call any function. */
class CallLog {
public:
    /** Writes later calls to the file that `callLogPath` names when the next call is added. */
    void setBench(const std::string& bench);

    /** Adds a call under the next number, from 1. Memory holds the last 100000. A file beside a
        bench is renamed to FILE.log.old at 4 MiB. A write error is reported once on standard error.
        @param call its fields from "function" on, without secrets */
    void add(const Json& call);

    /** The calls in memory as a JSON array. */
    std::string toJson() const;

    /** Removes the calls from memory. @param restart start with number 1 again */
    void clear(bool restart);

private:
    void append(const std::string& line);

    mutable std::mutex m_mutex;
    std::deque<std::string> m_lines;
    std::uint64_t m_lastNumber = 0;
    std::string m_bench;
    std::optional<std::string> m_path; /**< empty: no file; nothing: not asked yet */
};

} // namespace kvasim

#endif
