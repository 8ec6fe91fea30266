#include "simulator/kvasim/Follow.h"

#include "simulator/BenchFile.h"

#include <chrono>
#include <fstream>
#include <thread>

namespace kvasim {

namespace {

constexpr std::chrono::milliseconds pause{50};
constexpr std::size_t inode = 3; // of a stamp

/** Hands over the whole lines that have been added. */
void readLines(std::ifstream& file, const std::function<void(const Json&)>& take) {
    std::string line;
    while (std::getline(file, line)) {
        const Json call = Json::parse(line, nullptr, false);
        if (call.is_object() && call.size() == 6) // a file of the user's may hold anything
            take(call);
    }
    file.clear(); // from the end of file, which may move
}

} // namespace

void followLog(const std::string& path, const std::function<void(const Json&)>& take,
               const std::function<bool()>& goOn) {
    std::ifstream file;
    std::int64_t opened = 0;
    for (bool more = true; more;) {
        more = goOn(); // before reading: the last call of a program comes before its end
        if (file.is_open())
            readLines(file, take);
        const std::int64_t present = stampOf(path)[inode];
        if (present != opened && present != 0) {
            file.close();
            file.open(path, std::ios::binary);
            opened = present;
            readLines(file, take);
        }
        if (more)
            std::this_thread::sleep_for(pause);
    }
}

} // namespace kvasim
