/**
 * The command's end of the control socket.
 */
#ifndef SIMULATOR_KVASIM_CLIENT_H
#define SIMULATOR_KVASIM_CLIENT_H

#include "simulator/JsonText.h"

#include <optional>
#include <string>

namespace kvasim {

/** A connection to a running program. Waits no longer than ten seconds for it to take or to give
    something, but for `nextLine`. */
class Client {
public:
    /** Connects to the program that uses the bench file @p bench; where that is empty, to the only
        one that runs.
        @throws InputError when there is none, or more than one, or it does not answer */
    static Client find(const std::string& bench);

    ~Client();
    Client(Client&& other) noexcept;
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /** @return the answer. @throws InputError with the program's reason when it refuses, or when it
        does not answer */
    Json request(const Json& request);

    /** The next line that comes without having been asked for, however long it takes.
        @return nothing when the program has ended */
    std::optional<Json> nextLine();

private:
    explicit Client(int socket) : m_socket(socket) {}
    static std::optional<Client> connect(const std::string& path);
    std::optional<std::string> readLine(int timeout);

    int m_socket;
    std::string m_received;
};

} // namespace kvasim

#endif
