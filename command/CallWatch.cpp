#include "command/CallWatch.h"

#include "command/Interrupt.h"
#include "command/Report.h"
#include "command/Text.h"

CallWatch::CallWatch(CallObserver* next) : m_next(next), m_thread(&CallWatch::watch, this) {}

CallWatch::~CallWatch() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
    }
    m_ending.notify_one();
    m_thread.join();
}

void CallWatch::callBegins(const char* function) {
    if (m_next != nullptr)
        m_next->callBegins(function);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_function = function;
        m_begin = std::chrono::steady_clock::now();
    }
}

void CallWatch::callEnded(const CallResult& result) {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_function = nullptr;
    }
    if (result.code > 0)
        m_warnings |= result.code;
    if (m_next != nullptr)
        m_next->callEnded(result);
}

void CallWatch::watch() {
    // This thread makes no library calls that a signal could interrupt.
    Interrupt::receiveHere();
    std::unique_lock<std::mutex> lock(m_mutex);
    auto begin = m_begin;
    auto told = patience;
    while (!m_isEnding) {
        if (m_begin != begin) {
            begin = m_begin;
            told = patience;
        }
        const auto now = std::chrono::steady_clock::now();
        // A call that begins while this thread waits is due after the wait. So calls do not wake
        // it.
        const auto due = (m_function == nullptr ? now + patience : begin + told);
        if (now < due) {
            m_ending.wait_until(lock, due);
            continue;
        }
        sayToUser(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 has not answered for %2 s."),
                       {QString::fromLatin1(m_function), QString::number(told.count())}));
        told += patience;
    }
}
