/**
 * The log of calls: one JSON object a call, kept in memory and, on request, appended to a file.
 *
 *     {"seq":7,"function":"KVA_SetShutdownTime","arguments":{"serialNumber":1000001,"mode":2},
 *      "result":0,"resultName":"KVA_SUCCESS","durationUs":12}
 */
#ifndef SIMULATOR_CALLLOG_H
#define SIMULATOR_CALLLOG_H

#include "simulator/JsonText.h"
#include "simulator/SdkNames.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace kvasim {

/** One call, when it is over. */
struct CallRecord {
    Function function;
    Json arguments; /**< an object without secrets: the log writes it as it is */
    KVA_RESULT result;
    std::chrono::microseconds duration;
};

/** Any thread may call any function. */
class CallLog {
public:
    static constexpr std::size_t capacity = 100000;

    CallLog() = default;
    ~CallLog();
    CallLog(const CallLog&) = delete;
    CallLog& operator=(const CallLog&) = delete;

    /** Adds a call under the next number, from 1; the oldest gives way when the log is full. Where
        `KVASIM_TRACE` names a file, it is opened with the first call, made for its owner only where
        there is none, and each call is appended as one line at once. A file that cannot be written
        is reported once on standard error and changes nothing else. */
    void add(const CallRecord& record);

    /** The calls as a JSON array, those with a number above @p after. */
    std::string toJson(std::uint64_t after = 0) const;

    /** Some calls in a row, each as one line of JSON. */
    struct Page {
        std::vector<std::string> lines;
        std::uint64_t last = 0;   /**< the number of the last of them, or where there are none the
                                       number to go on from */
        std::uint64_t missed = 0; /**< calls before them that the log has forgotten */
    };

    /** The first calls with a number above @p after, no more than @p limit. */
    Page page(std::uint64_t after, std::size_t limit) const;

    /** The number of the last call, 0 before the first. */
    std::uint64_t lastNumber() const;

    /** Forgets the calls; numbers go on. */
    void clear();

    /** Forgets the calls, closes the file and starts with number 1 again. */
    void reset();

private:
    void openTrace();
    void closeTrace();
    void trace(const std::string& line);

    mutable std::mutex m_mutex;
    std::deque<std::string> m_lines;
    std::uint64_t m_lastNumber = 0;
    bool m_traceOpened = false;
    int m_trace = -1;
};

} // namespace kvasim

#endif
