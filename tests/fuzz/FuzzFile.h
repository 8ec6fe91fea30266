#ifndef TESTS_FUZZ_FUZZFILE_H
#define TESTS_FUZZ_FUZZFILE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <unistd.h>

/** Ends the run with a crash that the fuzzer keeps the input of. */
inline void require(bool condition) {
    if (!condition)
        std::abort();
}

/** The input as a text. */
inline std::string textOf(const std::uint8_t* data, std::size_t size) {
    return std::string(reinterpret_cast<const char*>(data), size);
}

#ifdef __linux__
constexpr char descriptorFolder[] = "/proc/self/fd/";
#else
constexpr char descriptorFolder[] = "/dev/fd/";
#endif

/** A regular file, gone with the object. Its path is that of the descriptor, so that nothing is
   left behind however the process ends. */
class FuzzFile {
public:
    explicit FuzzFile(const std::string& content) {
        char name[] = "/tmp/vqtl4-fuzz-XXXXXX";
        m_descriptor = ::mkstemp(name);
        require(m_descriptor >= 0 && ::unlink(name) == 0);
        require(::write(m_descriptor, content.data(), content.size()) ==
                static_cast<ssize_t>(content.size()));
        m_path = descriptorFolder + std::to_string(m_descriptor);
    }
    ~FuzzFile() { ::close(m_descriptor); }
    FuzzFile(const FuzzFile&) = delete;
    FuzzFile& operator=(const FuzzFile&) = delete;

    int descriptor() const { return m_descriptor; }
    const char* path() const { return m_path.c_str(); }

private:
    int m_descriptor;
    std::string m_path;
};

#endif
