// The shim's other half: what the program does to its files in the data folder.
#include "tests/command/Shim.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <set>
#include <unistd.h>

namespace {

bool isOurs(const std::string& path) {
    const std::string folder = setting("XDG_DATA_HOME");
    return !folder.empty() && path.compare(0, folder.size(), folder) == 0;
}

std::string pathOf(int descriptor) {
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    char path[4096];
    const ssize_t size = ::readlink(link.c_str(), path, sizeof path);
    return {path, static_cast<std::size_t>(size > 0 ? size : 0)};
}

bool isOurs(int descriptor) {
    return isOurs(pathOf(descriptor));
}

/** Paths in the data folder that were changed since they were synced. */
std::set<std::string>& unsynced() {
    static std::set<std::string> paths;
    return paths;
}

void changes(const std::string& path) {
    // The lock and the index of the write-ahead log mean nothing after a power failure.
    const std::string ending = path.substr(path.size() - std::min<std::size_t>(path.size(), 4));
    if (*setting("SHIM_UNSYNCED") != '\0' && isOurs(path) && ending != "lock" && ending != "-shm")
        unsynced().insert(path);
}

template <typename File>
void countStep(const File& file) {
    static int steps = 0;
    if (*setting("SHIM_KILL") != '\0' && isOurs(file))
        killIfDue("file", ++steps);
}

/** Whether the disk is full for this write. */
bool isFull(int descriptor) {
    static int writes = 0;
    countStep(descriptor);
    changes(pathOf(descriptor));
    if (*setting("SHIM_FULL") == '\0' || !isOurs(descriptor) ||
        ++writes < std::atoi(setting("SHIM_FULL")))
        return false;
    errno = ENOSPC;
    return true;
}

} // namespace

void noteUnsynced(const char* function) {
    const std::string path = setting("SHIM_UNSYNCED");
    if (path.empty())
        return;
    std::ofstream file(path, std::ios::app);
    file << function;
    for (const std::string& name : unsynced())
        file << ' ' << name;
    file << '\n';
}

extern "C" {

ssize_t write(int descriptor, const void* bytes, size_t size) {
    return isFull(descriptor) ? -1 : NEXT(write)(descriptor, bytes, size);
}

ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset) {
    return isFull(descriptor) ? -1 : NEXT(pwrite)(descriptor, bytes, size, offset);
}

ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t offset) {
    return isFull(descriptor) ? -1 : NEXT(pwrite64)(descriptor, bytes, size, offset);
}

int fsync(int descriptor) {
    countStep(descriptor);
    unsynced().erase(pathOf(descriptor));
    return NEXT(fsync)(descriptor);
}

int fdatasync(int descriptor) {
    countStep(descriptor);
    unsynced().erase(pathOf(descriptor));
    return NEXT(fdatasync)(descriptor);
}

int link(const char* from, const char* to) noexcept {
    countStep(std::string(to));
    changes(std::string(to).substr(0, std::string(to).rfind('/')));
    return NEXT(link)(from, to);
}

int unlink(const char* path) noexcept {
    countStep(std::string(path));
    return NEXT(unlink)(path);
}

} // extern "C"
