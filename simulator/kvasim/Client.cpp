#include "simulator/kvasim/Client.h"

#include "simulator/ControlPaths.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

#include <dirent.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kvasim {

namespace {

constexpr int patienceMs = 10000;
constexpr std::size_t maxAnswer = std::size_t{256} << 20U;

#ifdef MSG_NOSIGNAL
constexpr int sendFlags = MSG_NOSIGNAL;
#else
constexpr int sendFlags = 0;
#endif

/** A program that has registered itself; it may have ended since. */
struct Entry {
    std::string file;
    std::string bench;
    std::string socket;
};

std::optional<Entry> readEntry(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text(std::size_t{64} * 1024, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    try {
        const Json json = parseJson(text);
        return Entry{file, json.at("bench").get<std::string>(),
                     json.at("socket").get<std::string>()};
    } catch (const std::exception&) {
        return std::nullopt; // not ours, or just being written
    }
}

std::vector<Entry> entriesOf(const std::string& folder) {
    std::vector<Entry> entries;
    if (!isPrivateFolder(folder))
        return entries;
    const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(folder.c_str()), &::closedir);
    const std::string suffix = ".json";
    // One thread only, and a stream of its own.
    while (const dirent* found = open ? ::readdir(open.get()) : nullptr) { // NOLINT
        const std::string name = found->d_name;
        if (name.size() <= suffix.size() ||
            name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0)
            continue;
        if (auto entry = readEntry(folder + '/' + name))
            entries.push_back(std::move(*entry));
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& left, const Entry& right) { return left.bench < right.bench; });
    return entries;
}

/** The path of an existing file as the library knows it. */
std::string absolutePath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                           &std::free);
    if (!real)
        throw InputError(path + ": " + std::generic_category().message(errno));
    return real.get();
}

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

} // namespace

std::optional<Client> Client::connect(const std::string& path) {
    sockaddr_un address{};
    if (!isPrivateFolder(folderOf(path)) || !socketAddress(path, address))
        return std::nullopt;
    Client client(::socket(AF_UNIX, SOCK_STREAM, 0));
    if (client.m_socket < 0)
        return std::nullopt;
    const auto* general = reinterpret_cast<const sockaddr*>(&address);
    if (::connect(client.m_socket, general, sizeof address) != 0 ||
        !peerIsSameUser(client.m_socket))
        return std::nullopt;
    prepareDescriptor(client.m_socket);
    return client;
}

Client Client::find(const std::string& bench) {
    if (!bench.empty()) {
        const std::string path = absolutePath(bench);
        std::vector<std::string> sockets = socketPaths(path);
        for (const std::string& folder : runtimeFolders()) {
            for (const Entry& entry : entriesOf(folder)) {
                if (entry.bench == path)
                    sockets.push_back(entry.socket);
            }
        }
        for (const std::string& socket : sockets) {
            auto client = connect(socket);
            if (client && client->request({{"command", "hello"}}).value("bench", "") == path)
                return std::move(*client);
        }
        throw InputError("no running program uses " + path);
    }
    for (const std::string& folder : runtimeFolders()) {
        std::optional<Client> found;
        std::string benches;
        int count = 0;
        for (const Entry& entry : entriesOf(folder)) {
            auto client = connect(entry.socket);
            if (!client) {
                ::unlink(entry.file.c_str()); // of a program that was killed
                continue;
            }
            ++count;
            benches += "\n  " + entry.bench;
            if (!found)
                found.emplace(std::move(*client));
        }
        if (count > 1)
            throw InputError("several programs run, name one with --bench:" + benches);
        if (found)
            return std::move(*found);
    }
    throw InputError("no running program uses a bench; start the tool first");
}

Client::Client(Client&& other) noexcept
    : m_socket(std::exchange(other.m_socket, -1)), m_received(std::move(other.m_received)) {}

Client::~Client() {
    if (m_socket >= 0)
        ::close(m_socket);
}

Json Client::request(const Json& request) {
    const std::string line = request.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
    std::size_t sent = 0;
    while (sent < line.size()) {
        pollfd ready{m_socket, POLLOUT, 0};
        if (::poll(&ready, 1, patienceMs) == 0)
            throw InputError("the program does not answer");
        const ssize_t count = ::send(m_socket, line.data() + sent, line.size() - sent, sendFlags);
        if (count < 0 && errno != EAGAIN && errno != EINTR)
            throw InputError("the program has ended");
        sent += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    const auto answer = readLine(patienceMs);
    if (!answer)
        throw InputError("the program has ended");
    Json json = parseJson(*answer);
    if (!json.value("ok", false))
        throw InputError(json.value("error", "refused without a reason"));
    return json;
}

std::optional<Json> Client::nextLine() {
    const auto line = readLine(-1);
    return line ? std::optional<Json>(parseJson(*line)) : std::nullopt;
}

std::optional<std::string> Client::readLine(int timeout) {
    std::array<char, std::size_t{64} * 1024> bytes{};
    std::size_t searched = 0;
    for (;;) {
        const auto end = m_received.find('\n', searched);
        if (end != std::string::npos) {
            std::string line = m_received.substr(0, end);
            m_received.erase(0, end + 1);
            return line;
        }
        searched = m_received.size();
        if (searched > maxAnswer)
            throw InputError("the program's answer is too long");
        pollfd ready{m_socket, POLLIN, 0};
        if (::poll(&ready, 1, timeout) == 0)
            throw InputError("the program does not answer");
        const ssize_t count = ::recv(m_socket, bytes.data(), bytes.size(), 0);
        if (count > 0)
            m_received.append(bytes.data(), static_cast<std::size_t>(count));
        else if (count == 0 || (errno != EAGAIN && errno != EINTR))
            return std::nullopt;
    }
}

} // namespace kvasim
