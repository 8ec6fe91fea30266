#include "simulator/ControlServer.h"

#include "simulator/BenchFile.h"
#include "simulator/Control.h"
#include "simulator/ControlPaths.h"
#include "simulator/JsonFields.h"
#include "simulator/Simulator.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvasim {

namespace {

constexpr std::chrono::seconds patience{10};
constexpr std::size_t followAhead = std::size_t{64} * 1024; // bytes kept for a follower
constexpr std::size_t callsAtOnce = 100;
constexpr int protocol = 1;

#ifdef MSG_NOSIGNAL
constexpr int sendFlags = MSG_NOSIGNAL;
#else
constexpr int sendFlags = 0;
#endif

std::string refusal(const std::string& reason) {
    return Json{{"ok", false}, {"error", reason}}.dump(-1, ' ', false,
                                                       Json::error_handler_t::replace);
}

bool wouldBlock(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

bool hasLine(const std::string& text) {
    return text.find('\n') != std::string::npos;
}

/** A socket of an ended program gives way; anything else in its place does not. */
void removeSocket(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode))
        ::unlink(path.c_str());
}

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

/** @return a listening socket, -1 when there can be none; errno says why */
int listenAt(const std::string& path) {
    sockaddr_un address{};
    if (!socketAddress(path, address))
        return -1;
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (descriptor < 0)
        return -1;
    prepareDescriptor(descriptor);
    removeSocket(path);
    const auto* general = reinterpret_cast<const sockaddr*>(&address);
    if (::bind(descriptor, general, sizeof address) == 0 && ::chmod(path.c_str(), 0600) == 0 &&
        ::listen(descriptor, 16) == 0)
        return descriptor;
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return -1;
}

} // namespace

ControlServer::~ControlServer() {
    close();
}

void ControlServer::setBench(std::shared_ptr<BenchLock> lock) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_hasBench = lock != nullptr;
    m_wanted = std::move(lock);
    m_changed = true;
}

void ControlServer::takeUpBench() {
    std::shared_ptr<BenchLock> wanted;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        if (!std::exchange(m_changed, false))
            return;
        wanted = std::move(m_wanted);
    }
    close();
    m_lock = std::move(wanted);
    if (m_lock)
        open();
}

void ControlServer::open() {
    std::string reason = "no place for a socket";
    for (const std::string& path : socketPaths(m_lock->bench())) {
        try {
            makePrivateFolder(folderOf(path));
        } catch (const InputError& error) {
            reason = error.what();
            continue;
        }
        m_listener = listenAt(path);
        if (m_listener >= 0) {
            m_socketPath = path;
            return enroll();
        }
        reason = path + ": " + std::generic_category().message(errno);
    }
    complain("kvasim cannot reach this bench: " + reason);
}

/** Without an entry the program is still found by its bench. */
void ControlServer::enroll() {
    m_entryPath = entryPath(m_lock->bench());
    const std::string beside = m_entryPath + '.' + std::to_string(::getpid());
    const std::string text =
        Json{{"bench", m_lock->bench()}, {"pid", ::getpid()}, {"socket", m_socketPath}}.dump(
            -1, ' ', false, Json::error_handler_t::replace);
    try {
        makePrivateFolder(folderOf(m_entryPath));
    } catch (const InputError& error) {
        complain(std::string("kvasim finds this bench by its name only: ") + error.what());
        m_entryPath.clear();
        return;
    }
    const int file =
        ::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    const bool written =
        file >= 0 && ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (file >= 0)
        ::close(file);
    if (!written || ::rename(beside.c_str(), m_entryPath.c_str()) != 0) {
        complain("kvasim finds this bench by its name only: " + m_entryPath + ": " +
                 std::generic_category().message(errno));
        ::unlink(beside.c_str());
    }
}

void ControlServer::close() {
    for (const Client& client : m_clients)
        ::close(client.socket);
    m_clients.clear();
    m_followers = 0;
    if (m_listener >= 0) {
        ::unlink(m_socketPath.c_str());
        ::unlink(m_entryPath.c_str());
        ::close(m_listener);
    }
    m_listener = -1;
    m_lock.reset();
}

int ControlServer::prepare(std::vector<pollfd>& descriptors) {
    takeUpBench();
    m_prepared = m_clients.size();
    if (m_listener < 0)
        return -1;
    // Without descriptors to accept with, the listener stays readable: it rests for a round.
    descriptors.push_back({m_listener, static_cast<short>(m_resting ? 0 : POLLIN), 0});
    int timeout = std::exchange(m_resting, false) ? 1000 : -1;
    for (const Client& client : m_clients) {
        const bool idle = client.out.empty();
        const bool hasRequest = idle && hasLine(client.in);
        // No more is read than the request that is answered next.
        const int events = hasRequest ? 0 : idle ? POLLIN : POLLOUT;
        descriptors.push_back({client.socket, static_cast<short>(events), 0});
        if (!client.following || !idle)
            timeout = timeout < 0 ? 1000 : timeout;
        const bool isBehind = client.following && client.last < m_simulator.log().lastNumber();
        if (hasRequest || (idle && isBehind))
            timeout = 0;
    }
    return timeout;
}

void ControlServer::serve(const std::vector<pollfd>& descriptors) {
    if (descriptors.size() != m_prepared + 1)
        return;
    for (std::size_t index = 0; index < m_prepared; ++index) {
        Client& client = m_clients[index];
        try {
            serveClient(client, descriptors[index + 1].revents);
        } catch (const std::exception&) {
            client.broken = true; // out of memory: its buffers go with it
        }
    }
    dropOverdue();
    if (descriptors.front().revents != 0)
        acceptClients();
}

void ControlServer::acceptClients() {
    for (std::size_t count = 0; count < maxClients; ++count) {
        const int socket = ::accept(m_listener, nullptr, nullptr);
        if (socket < 0) {
            m_resting = !wouldBlock(errno);
            return;
        }
        prepareDescriptor(socket);
        if (!peerIsSameUser(socket) || m_clients.size() >= maxClients) {
            const std::string line = refusal("too many clients") + '\n';
            static_cast<void>(::send(socket, line.data(), line.size(), sendFlags));
            ::close(socket);
            continue;
        }
        Client client{};
        client.socket = socket;
        client.active = Clock::now();
        m_clients.push_back(std::move(client));
    }
}

void ControlServer::serveClient(Client& client, short events) {
    if (client.out.empty() && events != 0 && !hasLine(client.in))
        receive(client);
    if (client.out.empty())
        answerLine(client);
    if (client.following)
        follow(client);
    if (!client.out.empty())
        send(client);
}

void ControlServer::receive(Client& client) {
    std::array<char, std::size_t{16} * 1024> bytes{};
    const ssize_t count = ::recv(client.socket, bytes.data(), bytes.size(), 0);
    if (count > 0)
        client.in.append(bytes.data(), static_cast<std::size_t>(count));
    else if (count == 0)
        client.closing = true;
    else if (!wouldBlock(errno))
        client.broken = true;
}

void ControlServer::answerLine(Client& client) {
    const auto end = client.in.find('\n');
    if (end == std::string::npos) {
        if (client.in.size() > maxLine) {
            client.in.clear();
            client.out = refusal("a line of more than 1 MiB") + '\n';
            client.closing = true;
        }
        return;
    }
    const std::string line = client.in.substr(0, end);
    client.in.erase(0, end + 1);
    client.out = answerTo(client, line) + '\n';
    client.active = Clock::now();
}

std::string ControlServer::answerTo(Client& client, const std::string& line) {
    try {
        const Json document = parseJson(line);
        JsonFields request(document, "");
        const std::string command = readString(request.get("command"), "command");
        if (command == "hello") {
            request.finish();
            return Json{{"ok", true},
                        {"protocol", protocol},
                        {"bench", m_lock->bench()},
                        {"pid", ::getpid()}}
                .dump(-1, ' ', false, Json::error_handler_t::replace);
        }
        if (command == "follow") {
            const Json* after = request.find("after");
            client.last =
                after == nullptr
                    ? m_simulator.log().lastNumber()
                    : static_cast<std::uint64_t>(readInteger(*after, "after", 0, INT64_MAX));
            request.finish();
            if (!client.following && m_followers >= maxFollowers)
                throw InputError("too many clients follow the log");
            m_followers += client.following ? 0 : 1;
            client.following = true;
            return Json{{"ok", true}}.dump();
        }
    } catch (const InputError& error) {
        return refusal(error.what());
    }
    return answerRequest(m_simulator, line);
}

/** Adds the calls that the client does not know yet, as long as it takes them. */
void ControlServer::follow(Client& client) {
    // A number from before a reset says nothing about the calls since.
    if (client.last > m_simulator.log().lastNumber())
        client.last = 0;
    while (client.out.size() - client.sent < followAhead) {
        const CallLog::Page page = m_simulator.log().page(client.last, callsAtOnce);
        if (page.missed > 0)
            client.out += Json{{"missed", page.missed}}.dump() + '\n';
        for (const std::string& line : page.lines)
            client.out += "{\"call\":" + line + "}\n";
        client.last = page.last;
        if (page.lines.empty())
            return;
    }
}

void ControlServer::send(Client& client) {
    const ssize_t count = ::send(client.socket, client.out.data() + client.sent,
                                 client.out.size() - client.sent, sendFlags);
    if (count < 0) {
        client.broken = client.broken || !wouldBlock(errno);
        return;
    }
    client.sent += static_cast<std::size_t>(count);
    client.active = Clock::now();
    if (client.sent < client.out.size())
        return;
    // A large answer does not stay in memory with an idle client.
    client.out = {};
    client.sent = 0;
}

void ControlServer::dropOverdue() {
    const auto now = Clock::now();
    const auto isOver = [&](const Client& client) {
        const bool idle = client.out.empty();
        const bool overdue = now - client.active > patience && !(client.following && idle);
        const bool done = client.closing && idle && !hasLine(client.in);
        return client.broken || overdue || done;
    };
    for (auto client = m_clients.begin(); client != m_clients.end();) {
        if (!isOver(*client)) {
            ++client;
            continue;
        }
        ::close(client->socket);
        m_followers -= client->following ? 1 : 0;
        client = m_clients.erase(client);
    }
}

} // namespace kvasim
