#include "simulator/BenchFile.h"

#include "simulator/BenchJson.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvasim {

namespace {

constexpr off_t maxFileSize = off_t{64} * 1024 * 1024;

[[noreturn]] void fail(const std::string& path, const std::string& what, int error) {
    throw InputError(path + ": " + what + ": " + std::generic_category().message(error));
}

/** A file descriptor that is closed with its scope. */
class Descriptor {
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }

    /** @return false when the system reports a late write error. */
    bool close() {
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        return descriptor < 0 || ::close(descriptor) == 0;
    }

private:
    int m_descriptor;
};

std::string readWhole(const std::string& path) {
    // Without O_NONBLOCK a pipe without a writer would hold the caller for ever.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen())
        fail(path, "cannot be opened", errno);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        fail(path, "cannot be read", errno);
    if (!S_ISREG(status.st_mode))
        throw InputError(path + ": is not a regular file");
    std::string text;
    std::vector<char> buffer(std::size_t{64} * 1024);
    for (;;) {
        const ssize_t count = ::read(file.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            fail(path, "cannot be read", errno);
        if (count == 0)
            return text;
        text.append(buffer.data(), static_cast<std::size_t>(count));
        if (text.size() > static_cast<std::size_t>(maxFileSize))
            throw InputError(path + ": is larger than 64 MiB");
    }
}

/** @return 0 or the system's error number. */
int writeWhole(int descriptor, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = ::write(descriptor, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR)
            return errno;
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return ::fsync(descriptor) == 0 ? 0 : errno;
}

std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

/** The file that a rename has to replace: behind symbolic links, where there are any. */
std::string resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                           &std::free);
    return real ? std::string(real.get()) : path;
}

/** The folder's entry for the new file is flushed too, so that a power cut does not bring the old
    file back. Where a file system cannot do that, the file itself is still whole. */
void flushFolder(const std::string& folder) {
    const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY));
    if (descriptor.isOpen())
        static_cast<void>(::fsync(descriptor.get()));
}

const char* environment(const char* name) {
    // Read on the caller's thread, as every other function of the library.
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr && *value != '\0' ? value : nullptr;
}

bool isFolder(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/** The folder for users' data, empty when the user has no home. */
std::string dataFolder() {
#ifndef __APPLE__
    const char* data = environment("XDG_DATA_HOME");
    if (data != nullptr && *data == '/')
        return data;
#endif
    const char* home = environment("HOME");
    if (home == nullptr || *home != '/' || !isFolder(home))
        return {};
#ifdef __APPLE__
    return std::string(home) + "/Library/Application Support";
#else
    return std::string(home) + "/.local/share";
#endif
}

/** Makes the folder and those above it, for the owner only. */
void makeFolders(const std::string& folder) {
    for (std::size_t end = folder.find('/', 1);; end = folder.find('/', end + 1)) {
        const std::string part = folder.substr(0, end);
        if (::mkdir(part.c_str(), S_IRWXU) != 0 && !isFolder(part))
            fail(part, "cannot be made", errno);
        if (end == std::string::npos)
            return;
    }
}

} // namespace

StoredBench loadBenchFile(const std::string& path) {
    const std::string text = readWhole(path);
    try {
        // Absolute from the start: the program may change its working directory.
        return {benchFromJson(parseJson(text, Comments::Allowed)), resolved(path), nullptr};
    } catch (const InputError& error) {
        throw InputError(path + ": " + error.what());
    }
}

StoredBench openBenchFile(const std::string& path) {
    // Read before the lock, so that nothing is made beside a file that is refused; and again with
    // it, since another program may have saved in between.
    auto lock = BenchLock::acquire(loadBenchFile(path).path);
    StoredBench stored = loadBenchFile(path);
    stored.lock = std::move(lock);
    return stored;
}

void saveBenchFile(const std::string& path, const Bench& bench) {
    const std::string text = formatJson(benchToJson(bench));
    const std::string target = resolved(path);
    std::string beside = target + ".XXXXXX";
    Descriptor file(::mkstemp(beside.data()));
    if (!file.isOpen())
        fail(path, "cannot be saved", errno);
    int error = ::fcntl(file.get(), F_SETFD, FD_CLOEXEC) == 0 ? 0 : errno;
    struct stat status {};
    if (error == 0 && ::stat(target.c_str(), &status) == 0)
        error = ::fchmod(file.get(), status.st_mode & 0777U) == 0 ? 0 : errno;
    if (error == 0)
        error = writeWhole(file.get(), text);
    if (!file.close() && error == 0)
        error = errno;
    if (error == 0)
        error = ::rename(beside.c_str(), target.c_str()) == 0 ? 0 : errno;
    if (error != 0) {
        ::unlink(beside.c_str());
        fail(path, "cannot be saved", error);
    }
    flushFolder(folderOf(target));
}

StoredBench loadBenchFromEnvironment() {
    if (const char* named = environment("KVASIM_BENCH"))
        return openBenchFile(named);
    const std::string data = dataFolder();
    if (data.empty()) {
        complain("no home folder, the built-in bench is kept in memory only");
        return {makeBuiltInBench(), {}, nullptr};
    }
    const std::string folder = data + "/vq-tl4-simulator";
    const std::string path = folder + "/bench.json";
    makeFolders(folder);
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 && errno == ENOENT)
        saveBenchFile(path, makeBuiltInBench());
    return openBenchFile(path);
}

void complain(const std::string& message) {
    std::string line = message;
    std::replace_if(
        line.begin(), line.end(),
        [](char character) { return static_cast<unsigned char>(character) < 0x20; }, '?');
    std::fprintf(stderr, "libKVASDK (simulated): %s\n", line.c_str());
}

} // namespace kvasim
