#include "command/Interrupt.h"

#include "command/Text.h"

#include <QByteArray>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace {

std::atomic<bool> requested{false};
/** The messages about an interrupt: prepared in advance, as a signal handler may only write. */
std::array<QByteArray, 3> messages;
std::atomic<const QByteArray*> message{nullptr};

extern "C" void noteInterrupt(int /*signal*/) {
    const int error = errno;
    requested.store(true, std::memory_order_relaxed);
    const QByteArray* text = message.load();
    if (text != nullptr) {
        // A write error cannot be handled here.
        [[maybe_unused]] const ssize_t count =
            ::write(STDERR_FILENO, text->constData(), static_cast<std::size_t>(text->size()));
    }
    errno = error;
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

constexpr int interrupts[] = {SIGINT, SIGTERM, SIGHUP};

/** @param how  `SIG_BLOCK` or `SIG_UNBLOCK`, for the calling thread and those that it starts */
void mask(int how) {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : interrupts)
        sigaddset(&signals, signal);
    ::pthread_sigmask(how, &signals, nullptr);
}

} // namespace

void Interrupt::install() {
    const Text texts[] = {
        Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Interrupted: it stops after the present step.")),
        Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                               "Interrupted: it stops when the calibration record has been "
                               "committed, and not before.")),
        Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                               "Interrupted: it stops when the instrument's state is known, and "
                               "not before."))};
    for (std::size_t i = 0; i < messages.size(); ++i)
        messages[i] = '\n' + texts[i].translated().toLocal8Bit() + '\n';
    setPhase(Phase::BetweenSteps);
    // Blocked in this thread and the library's own, so that no call of theirs is interrupted.
    mask(SIG_BLOCK);
    for (const int signal : interrupts)
        handle(signal, noteInterrupt);
    handle(SIGPIPE, SIG_IGN);
}

void Interrupt::receiveHere() {
    mask(SIG_UNBLOCK);
}

void Interrupt::setPhase(Phase phase) {
    message.store(&messages[static_cast<std::size_t>(phase)]);
}

bool Interrupt::isRequested() {
    return requested.load(std::memory_order_relaxed);
}
