/**
 * The log of calls: one JSON object a call, kept in memory and appended to a file as one line.
 *
 *     {"seq":7,"function":"KVA_SetShutdownTime","arguments":{"serialNumber":1000001,"mode":2},
 *      "result":0,"resultName":"KVA_SUCCESS","durationUs":12}
 */
#ifndef SIMULATOR_CALLLOG_H
#define SIMULATOR_CALLLOG_H

#include "simulator/Json.h"
#include "simulator/SdkNames.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

namespace kvasim {

/** One call, when it is over. */
struct CallRecord {
    Function function;
    Json arguments; /**< an object without secrets: the log writes it as it is */
    KVA_RESULT result;
    std::chrono::microseconds duration;
};

/** The file of a bench's calls: the one that `KVASIM_TRACE` names, or FILE.log beside the bench.
    @param bench the bench file; empty for a bench in memory
    @return empty when the calls go to no file */
std::string callLogPath(const std::string& bench);

/** Any thread may call any function. */
class CallLog {
public:
    static constexpr std::size_t capacity = 100000; /**< calls in memory */

    /** A log beside a bench that has this many bytes is moved to FILE.log.old, in place of an
        earlier one. A file that `KVASIM_TRACE` names is never moved. */
    static constexpr std::int64_t maxFileSize = std::int64_t{4} << 20U;

    /** From the next call on the calls go to the file of this bench; see `callLogPath`, which is
        asked with that call. */
    void setBench(const std::string& bench);

    /** Adds a call under the next number, from 1; the oldest gives way when the log is full. The
        file is made for its owner only. That it cannot be written is said once on standard error
        and changes nothing else. */
    void add(const CallRecord& record);

    /** The calls as a JSON array. */
    std::string toJson() const;

    /** Forgets the calls in memory; numbers go on. */
    void clear();

    /** Forgets the calls in memory and starts with number 1 again. */
    void reset();

private:
    void append(const std::string& line);

    mutable std::mutex m_mutex;
    std::deque<std::string> m_lines;
    std::uint64_t m_lastNumber = 0;
    std::string m_bench;
    std::string m_path;
    enum class File { Unasked, Written, Failed };
    File m_file = File::Unasked;
};

} // namespace kvasim

#endif
