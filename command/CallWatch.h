#ifndef COMMAND_CALLWATCH_H
#define COMMAND_CALLWATCH_H

#include "instrument/InstrumentAccess.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/** Watches the calls to libKVASDK: reports a call that hangs on standard error, from a thread of
    its own, and collects the warnings of all calls. */
class CallWatch : public CallObserver {
public:
    /** A call that takes this long is reported, and again after each further period. */
    static constexpr std::chrono::seconds patience{3};

    /** @param next  also notified of each call; must outlive the object; null: nobody */
    explicit CallWatch(CallObserver* next = nullptr);
    ~CallWatch() override;
    CallWatch(const CallWatch&) = delete;
    CallWatch& operator=(const CallWatch&) = delete;

    void callBegins(const char* function) override;
    void callEnded(const CallResult& result) override;

    /** All warning bits of all answers. Only for the thread that makes the calls. */
    KVA_RESULT warnings() const { return m_warnings; }

private:
    void watch();

    CallObserver* m_next;
    KVA_RESULT m_warnings = 0;

    std::mutex m_mutex; ///< of what follows
    std::condition_variable m_ending;
    const char* m_function = nullptr; ///< of the call in progress
    std::chrono::steady_clock::time_point m_begin;
    bool m_isEnding = false;

    std::thread m_thread;
};

#endif
