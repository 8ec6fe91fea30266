#include "simulator/ControlPaths.h"

#include "simulator/JsonText.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvasim {

namespace {

const char* folderFromEnvironment(const char* name) {
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr && *value == '/' ? value : nullptr;
}

std::string sharedFolder() {
    return "/tmp/vq-tl4-simulator-" + std::to_string(::geteuid());
}

/** FNV-1a of 64 bits: short, and the same in every program. */
std::string hashOf(const std::string& text) {
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char character : text) {
        hash ^= static_cast<unsigned char>(character);
        hash *= 0x100000001b3U;
    }
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}

/** @return why the folder is not fit for use; empty when it is */
std::string whyNotPrivate(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        return std::generic_category().message(errno);
    if (!S_ISDIR(status.st_mode))
        return "is not a folder";
    if (status.st_uid != ::geteuid())
        return "belongs to another user";
    if ((status.st_mode & 077U) != 0)
        return "may be entered by other users";
    return {};
}

} // namespace

std::string controlFolder(const std::string& bench) {
    return bench + ".control";
}

std::vector<std::string> socketPaths(const std::string& bench) {
    const std::string name = '/' + hashOf(bench) + ".socket";
    std::vector<std::string> paths;
    for (const std::string& path :
         {controlFolder(bench) + "/socket", runtimeFolder() + name, sharedFolder() + name}) {
        sockaddr_un address{};
        if (socketAddress(path, address))
            paths.push_back(path);
    }
    return paths;
}

std::string runtimeFolder() {
    if (const char* named = folderFromEnvironment("KVASIM_RUNTIME_DIR"))
        return named;
    struct stat status {};
    const char* session = folderFromEnvironment("XDG_RUNTIME_DIR");
    if (session != nullptr && ::stat(session, &status) == 0 && S_ISDIR(status.st_mode))
        return std::string(session) + "/vq-tl4-simulator";
    return sharedFolder();
}

std::vector<std::string> runtimeFolders() {
    std::vector<std::string> folders = {runtimeFolder()};
    if (folderFromEnvironment("KVASIM_RUNTIME_DIR") != nullptr)
        return folders;
    folders.push_back("/run/user/" + std::to_string(::geteuid()) + "/vq-tl4-simulator");
    folders.push_back(sharedFolder());
    return folders;
}

std::string entryPath(const std::string& bench) {
    return runtimeFolder() + '/' + hashOf(bench) + ".json";
}

void makePrivateFolder(const std::string& path) {
    if (::mkdir(path.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        throw InputError(path + ": cannot be made: " + std::generic_category().message(errno));
    const std::string reason = whyNotPrivate(path);
    if (!reason.empty())
        throw InputError(path + ": " + reason);
}

bool isPrivateFolder(const std::string& path) {
    return whyNotPrivate(path).empty();
}

bool socketAddress(const std::string& path, sockaddr_un& address) {
    address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.data(), path.size());
    return true;
}

bool peerIsSameUser(int socket) {
#ifdef SO_PEERCRED
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == ::geteuid();
#else
    uid_t user = 0;
    gid_t group = 0;
    return ::getpeereid(socket, &user, &group) == 0 && user == ::geteuid();
#endif
}

void prepareDescriptor(int descriptor) {
    static_cast<void>(::fcntl(descriptor, F_SETFD, FD_CLOEXEC));
    static_cast<void>(::fcntl(descriptor, F_SETFL, O_NONBLOCK));
#ifdef SO_NOSIGPIPE
    const int on = 1;
    static_cast<void>(::setsockopt(descriptor, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on));
#endif
}

} // namespace kvasim
