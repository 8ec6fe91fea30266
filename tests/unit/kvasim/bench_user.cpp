// A program that uses a bench at random while another one does the same: it sets and plugs what is
// its own, and plugs and connects to what is shared. It ends with its standard input and prints
// what it has counted, or with status 1 and what was wrong.
//
//     bench_user OWN_SERIAL SHARED_SERIAL SEED
//     bench_user SERIAL SEED                     only plugs: pulls and puts back, of that
//     instrument

#include "instrument/KvaSdk.h"
#include "tests/support/KvaSimHelpers.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>

#include <poll.h>
#include <unistd.h>

namespace {

std::atomic<int> g_losses{0};
std::atomic<int> g_standbys{0};

void countEvent(std::uint32_t code, std::uint32_t, std::int32_t) {
    ++(code == eEventCode_DisConnect ? g_losses : g_standbys);
}

[[noreturn]] void fail(const char* what) {
    std::printf("%s (%s)\n", what, KvaSim_LastError());
    std::fflush(stdout);
    std::_Exit(1);
}

void require(bool condition, const char* what) {
    if (!condition)
        fail(what);
}

bool inputHasEnded() {
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, 0) != 0;
}

/** @return how many times the plug was pulled or put back */
int plugAtRandom(std::int32_t serial, std::mt19937 random) {
    int count = 0;
    // At times faster than a call, at times slower than a session.
    const unsigned int longest[] = {0, 1000, 20000, 100000};
    for (; !inputHasEnded(); ++count) {
        const unsigned int pause = longest[random() % 4];
        std::this_thread::sleep_for(std::chrono::microseconds(random() % (pause + 1)));
        require(random() % 3 != 0 ? KvaSim_Plug(serial) : KvaSim_Unplug(serial), "not plugged");
    }
    return count;
}

class User {
public:
    User(std::int32_t own, std::int32_t shared, const std::mt19937& random)
        : m_own(own), m_shared(shared), m_random(random) {}

    void run() {
        while (!inputHasEnded()) {
            switch (m_random() % 4) {
            case 0:
                setOwn();
                break;
            case 1:
                plug(m_own, m_random() % 2 == 0);
                break;
            case 2:
                plug(m_shared, m_random() % 3 != 0);
                break;
            default:
                useShared();
            }
            pause();
        }
        KvaSim_WaitForEvents();
        require(g_losses == m_losses, "an event 6 too many or too few");
        require(g_standbys >= m_plugs, "an event 0 too few");
        std::printf("%d %d %d %d %d\n", m_changes, m_attempts, int{g_standbys}, m_losses,
                    m_refusals);
    }

private:
    void pause() { std::this_thread::sleep_for(std::chrono::microseconds(m_random() % 3000)); }

    /** Nobody else sets this: what is there is what was set last. */
    void setOwn() {
        const auto now = kvasim_test::instrument(m_own)["device"]["serialNumber"];
        require(m_changes == 0 || now == m_changes, "a change is lost");
        require(kvasim_test::set(m_own, {{"device", {{"serialNumber", ++m_changes}}}}), "not set");
    }

    void plug(std::int32_t serial, bool plugged) {
        const bool isOwn = serial == m_own;
        const bool isNew = kvasim_test::instrument(serial)["plugged"] != plugged;
        require(plugged ? KvaSim_Plug(serial) : KvaSim_Unplug(serial), "not plugged");
        m_plugs += isOwn && isNew && plugged ? 1 : 0;
        m_attempts += plugged ? 1 : 0;
    }

    /** While it is connected to, no other program can write to it. */
    void useShared() {
        require(!kvasim_test::ports().empty(), "no list"); // one instrument is always there
        const KVA_RESULT connected = kvasim_test::connectTo(m_shared);
        if (connected == KVA_ERROR_INSTRUMENT_UNAVAILABLE) {
            ++m_refusals;
            return;
        }
        require(connected == KVA_SUCCESS, "not connected");
        const auto mark = static_cast<std::uint8_t>(m_own);
        std::uint8_t read = mark;
        const KVA_RESULT wrote = KVA_SetShutdownTime(&mark);
        pause();
        const KVA_RESULT gave = KVA_GetShutdownTime(&read);
        require(wrote == KVA_SUCCESS || gave != KVA_SUCCESS, "a loss was taken back");
        require(read == mark, "another program wrote to the instrument");
        if (KVA_Disconnect() == KVA_ERROR_INSTRUMENT_UNAVAILABLE)
            ++m_losses;
    }

    const std::int32_t m_own;
    const std::int32_t m_shared;
    std::mt19937 m_random;
    int m_changes = 0;
    int m_plugs = 0;    // of its own instrument, each with an event
    int m_attempts = 0; // to plug: no more events than these
    int m_losses = 0;
    int m_refusals = 0;
};

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3 && argumentCount != 4)
        return 2;
    const auto number = [arguments](int index) {
        return static_cast<std::int32_t>(std::strtol(arguments[index], nullptr, 10));
    };
    const std::mt19937 random(static_cast<unsigned int>(number(argumentCount - 1)));
    if (argumentCount == 3) {
        std::printf("%d\n", plugAtRandom(number(1), random));
        return 0;
    }
    require(KVA_RegisterDeviceEventHandler(countEvent) == KVA_SUCCESS, "no handler");
    User(number(1), number(2), random).run();
    return 0;
}
