// Pulls and puts back an instrument's plug at random, over the control socket of the program that
// uses the bench, until standard input ends; then prints how many times.
//
//     plug_storm_hand SOCKET SERIAL SEED

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <thread>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int answerTimeout = 5000; // ms

/** A connection to the control socket; made again when the program drops it. */
class Control {
public:
    explicit Control(std::string path) : m_path(std::move(path)) {}
    ~Control() { drop(); }
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    /** Sends a request line and takes the answer. @return whether it was "ok" */
    bool request(const std::string& line) {
        if (m_socket < 0 && !open())
            return false;
        std::string answer;
        if (!send(line) || !receive(answer)) {
            drop();
            return false;
        }
        return answer.find("\"ok\":true") != std::string::npos ||
               answer.find("\"ok\": true") != std::string::npos;
    }

private:
    bool open() {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        if (m_path.size() >= sizeof address.sun_path)
            return false;
        std::memcpy(address.sun_path, m_path.c_str(), m_path.size() + 1);
        m_socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        if (m_socket >= 0 &&
            ::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            return true;
        drop();
        return false;
    }

    bool send(const std::string& line) {
        // A short line goes out in one piece or not at all.
        return ::send(m_socket, line.data(), line.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(line.size());
    }

    bool receive(std::string& answer) {
        while (answer.find('\n') == std::string::npos) {
            pollfd ready = {m_socket, POLLIN, 0};
            char bytes[512];
            if (::poll(&ready, 1, answerTimeout) <= 0)
                return false;
            const ssize_t count = ::recv(m_socket, bytes, sizeof bytes, 0);
            if (count <= 0)
                return false;
            answer.append(bytes, static_cast<std::size_t>(count));
        }
        return true;
    }

    void drop() {
        if (m_socket >= 0)
            ::close(m_socket);
        m_socket = -1;
    }

    std::string m_path;
    int m_socket = -1;
};

bool inputHasEnded() {
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, 0) != 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4)
        return 2;
    std::mt19937 random(static_cast<unsigned int>(std::strtoul(argv[3], nullptr, 10)));
    const std::string serial = argv[2];
    Control control(argv[1]);
    int count = 0;
    // At times faster than a call, at times slower than a session.
    const unsigned int longest[] = {0, 1000, 20000, 100000};
    while (!inputHasEnded()) {
        const unsigned int pause = longest[random() % 4];
        std::this_thread::sleep_for(std::chrono::microseconds(random() % (pause + 1)));
        const char* const command = random() % 3 == 0 ? "unplug" : "plug";
        count += control.request(std::string("{\"command\": \"") + command +
                                 "\", \"serialNumber\": " + serial + "}\n")
                     ? 1
                     : 0;
    }
    std::printf("%d\n", count);
    return 0;
}
