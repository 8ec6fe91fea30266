#include "simulator/BenchLock.h"

#include "simulator/Json.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace kvasim {

namespace {

// The bytes of the file that stand for something; none of them is ever written.
constexpr std::int64_t changePlace = 0;
constexpr std::int64_t usePlace = 1;

std::int64_t placeOf(std::int32_t serialNumber) {
    return 2 + std::int64_t{static_cast<std::uint32_t>(serialNumber)};
}

struct flock lockOf(short type, std::int64_t place) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = place;
    lock.l_len = 1;
    return lock;
}

[[noreturn]] void fail(const std::string& path, const char* what, int error) {
    throw InputError(path + ": " + what + ": " + std::generic_category().message(error));
}

} // namespace

BenchLock::BenchLock(const std::string& bench)
    : m_path(bench + ".lock"),
      m_file(::open(m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    if (m_file < 0 && errno != EACCES && errno != EROFS)
        fail(m_path, "cannot be opened", errno);
}

BenchLock::~BenchLock() {
    if (m_file >= 0)
        ::close(m_file);
}

void BenchLock::lock() {
    if (m_file < 0)
        fail(m_path, "cannot be opened", EACCES);
    while (!set(F_WRLCK, changePlace, true)) {
        if (errno != EINTR)
            fail(m_path, "cannot be locked", errno);
    }
}

void BenchLock::unlock() {
    set(F_UNLCK, changePlace);
}

bool BenchLock::hold(std::int32_t serialNumber) {
    return m_file < 0 || set(F_WRLCK, placeOf(serialNumber));
}

void BenchLock::release(std::int32_t serialNumber) {
    set(F_UNLCK, placeOf(serialNumber));
}

bool BenchLock::isHeld(std::int32_t serialNumber) const {
    return isTaken(placeOf(serialNumber));
}

void BenchLock::use() {
    set(F_RDLCK, usePlace); // shared
}

bool BenchLock::isUsed() const {
    return isTaken(usePlace);
}

bool BenchLock::set(short type, std::int64_t place, bool wait) {
    struct flock lock = lockOf(type, place);
    return m_file >= 0 && ::fcntl(m_file, wait ? F_SETLKW : F_SETLK, &lock) == 0;
}

bool BenchLock::isTaken(std::int64_t place) const {
    struct flock lock = lockOf(F_WRLCK, place);
    return m_file >= 0 && ::fcntl(m_file, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

} // namespace kvasim
