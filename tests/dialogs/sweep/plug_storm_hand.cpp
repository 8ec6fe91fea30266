// Pulls and puts back an instrument's plug at random, in the bench file that another program uses,
// until standard input ends; then prints how many times.
//
//     plug_storm_hand BENCH SERIAL SEED

#include "simulator/BenchStore.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>

#include <poll.h>
#include <unistd.h>

namespace {

bool inputHasEnded() {
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, 0) != 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4)
        return 2;
    const auto serial = static_cast<std::int32_t>(std::strtol(argv[2], nullptr, 10));
    std::mt19937 random(static_cast<unsigned int>(std::strtoul(argv[3], nullptr, 10)));
    int count = 0;
    try {
        const auto store = kvasim::BenchStore::open(argv[1]);
        // At times faster than a call, at times slower than a session.
        const unsigned int longest[] = {0, 1000, 20000, 100000};
        while (!inputHasEnded()) {
            const unsigned int pause = longest[random() % 4];
            std::this_thread::sleep_for(std::chrono::microseconds(random() % (pause + 1)));
            const bool plugged = random() % 3 != 0;
            const auto plug = [&](kvasim::Bench& next) {
                kvasim::setPlugged(kvasim::instrumentOf(next, serial), plugged);
                return true;
            };
            store->change(plug, [](const kvasim::Bench&) {});
            ++count;
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    std::printf("%d\n", count);
    return 0;
}
