#include "tests/unit/files/ReadHook.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>
#include <utility>

namespace {

ReadHook* current = nullptr;

ssize_t readOfTheSystem(int file, void* buffer, std::size_t count) {
    using Read = ssize_t (*)(int, void*, std::size_t);
    static const auto function = reinterpret_cast<Read>(dlsym(RTLD_NEXT, "read"));
    return function(file, buffer, count);
}

} // namespace

extern "C" ssize_t read(int file, void* buffer, std::size_t count) {
    return ReadHook::read(file, buffer, count);
}

ReadHook::ReadHook(const QByteArray& path, off_t offset, std::function<bool()> atOffset)
    : m_offset(offset), m_atOffset(std::move(atOffset)) {
    if (::stat(path.constData(), &m_status) != 0)
        std::abort();
    current = this;
}

ReadHook::~ReadHook() {
    current = nullptr;
}

bool ReadHook::isFor(int file) const {
    struct stat status = {};
    return ::fstat(file, &status) == 0 && status.st_dev == m_status.st_dev &&
           status.st_ino == m_status.st_ino;
}

ssize_t ReadHook::read(int file, void* buffer, std::size_t count) {
    if (!current || !current->isFor(file))
        return readOfTheSystem(file, buffer, count);
    const off_t left = current->m_offset - ::lseek(file, 0, SEEK_CUR);
    if (left > 0)
        return readOfTheSystem(file, buffer, std::min(count, static_cast<std::size_t>(left)));
    if (current->m_atOffset())
        return readOfTheSystem(file, buffer, count);
    errno = EIO;
    return -1;
}
