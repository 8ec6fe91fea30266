#ifndef TESTS_FUZZ_FUZZFILE_H
#define TESTS_FUZZ_FUZZFILE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <unistd.h>

/** A regular file with the given bytes, gone with the object. Given a path by the descriptor, so
    that nothing is left behind however the process ends. */
class FuzzFile {
public:
    FuzzFile(const std::uint8_t* data, std::size_t size) {
        char name[] = "/tmp/vqtl4-fuzz-XXXXXX";
        m_descriptor = ::mkstemp(name);
        if (m_descriptor < 0 || ::unlink(name) != 0)
            std::abort();
        while (size > 0) {
            const ssize_t written = ::write(m_descriptor, data, size);
            if (written <= 0)
                std::abort();
            data += written;
            size -= static_cast<std::size_t>(written);
        }
#ifdef __linux__
        m_path = "/proc/self/fd/" + std::to_string(m_descriptor);
#else
        m_path = "/dev/fd/" + std::to_string(m_descriptor);
#endif
    }
    ~FuzzFile() {
        ::close(m_descriptor);
    }
    FuzzFile(const FuzzFile&) = delete;
    FuzzFile& operator=(const FuzzFile&) = delete;

    const char* path() const {
        return m_path.c_str();
    }

private:
    int m_descriptor;
    std::string m_path;
};

/** Ends the run with a crash that the fuzzer keeps the input of. */
inline void require(bool condition) {
    if (!condition)
        std::abort();
}

#endif
