/**
 * The control socket: requests of Control.h, one JSON document a line, one answer a line.
 *
 * Besides those of Control.h:
 *
 * | Request               | Answer, besides "ok": true                                           |
 * |-----------------------|----------------------------------------------------------------------|
 * | {"command": "hello"}  | "protocol": 1, "bench": path, "pid"                                   |
 * | {"command": "follow"} | nothing; from then on {"call": {…}} for each call as it is logged, and
 * | |                       | {"missed": n} where the client was too slow or the log was cleared |
 *
 * "follow" takes "after", the number of the last call already known; left out: the last one.
 *
 * A client cannot hold up the library: nothing here blocks, one request of each client is served a
 * round, a client's next request is read when its last answer has been taken, and what is kept for
 * one is bounded. A client that sends a line of more than 1 MiB, that takes longer than ten seconds
 * over a line, that is idle for as long without following, or that takes nothing for as long, is
 * dropped.
 */
#ifndef SIMULATOR_CONTROLSERVER_H
#define SIMULATOR_CONTROLSERVER_H

#include "simulator/BenchLock.h"
#include "simulator/EventThread.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace kvasim {

class Simulator;

/** All but `setBench`, `hasBench` and `isFollowed` runs on the event thread, or when that has
    ended. */
class ControlServer : public EventService {
public:
    static constexpr std::size_t maxClients = 16;
    static constexpr std::size_t maxFollowers = 8;
    static constexpr std::size_t maxLine = std::size_t{1} << 20U;

    /** @param simulator outlives this object */
    explicit ControlServer(Simulator& simulator) : m_simulator(simulator) {}
    ~ControlServer() override;
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    /** Names the bench to be served, null for none. The event thread takes it up when it next
        serves; the lock is held until then and as long as the bench is served. Any thread. */
    void setBench(std::shared_ptr<BenchLock> lock);
    bool hasBench() const { return m_hasBench; }

    /** Whether a client follows the log, so that a new call is worth a `serve`. Any thread. */
    bool isFollowed() const { return m_followers > 0; }

    int prepare(std::vector<pollfd>& descriptors) override;
    void serve(const std::vector<pollfd>& descriptors) override;

private:
    using Clock = std::chrono::steady_clock;

    struct Client {
        int socket;
        std::string in;
        std::string out;
        std::size_t sent = 0; // of out
        bool following = false;
        bool closing = false; // when out has been taken
        bool broken = false;
        std::uint64_t last = 0; // the number of the last call sent
        Clock::time_point active;
    };

    void takeUpBench();
    void open();
    void close();
    void enroll();
    void acceptClients();
    void serveClient(Client& client, short events);
    void receive(Client& client);
    void answerLine(Client& client);
    std::string answerTo(Client& client, const std::string& line);
    void follow(Client& client);
    void send(Client& client);
    void dropOverdue();

    Simulator& m_simulator;
    std::atomic<bool> m_hasBench{false};
    std::atomic<std::size_t> m_followers{0};

    std::mutex m_mutex; // the two below
    std::shared_ptr<BenchLock> m_wanted;
    bool m_changed = false;

    std::shared_ptr<BenchLock> m_lock; // the bench that is served
    int m_listener = -1;
    bool m_resting = false; // the listener is not waited for
    std::string m_socketPath;
    std::string m_entryPath;
    std::vector<Client> m_clients;
    std::size_t m_prepared = 0; // clients that the last prepare knew
};

} // namespace kvasim

#endif
