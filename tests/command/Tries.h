#ifndef TESTS_COMMAND_TRIES_H
#define TESTS_COMMAND_TRIES_H

#include <QStringList>

#include <atomic>
#include <cstddef>
#include <future>
#include <vector>

/** How much of what could be tried is tried, by VQTL4_SWEEP: "full" takes all, "sample" a seventh
   of the usual (under sanitizers, where each try takes longer); else the usual. */
inline bool isFullSweep() {
    return qgetenv("VQTL4_SWEEP") == "full";
}
inline std::size_t sweepStride() {
    return qgetenv("VQTL4_SWEEP") == "sample" ? 7 : 1;
}

/** Makes all tries, several at a time: they mostly wait for the disk.
    @param attempt  takes the number of a try, from 0; empty where nothing is wrong */
template <typename Try>
QStringList problemsOf(std::size_t count, const Try& attempt) {
    constexpr int workers = 4;
    std::atomic<std::size_t> next{0};
    std::vector<std::future<QStringList>> results;
    for (int i = 0; i < workers; ++i) {
        results.push_back(std::async(std::launch::async, [&] {
            QStringList problems;
            for (std::size_t index = next++; index < count; index = next++) {
                const QString problem = attempt(index);
                if (!problem.isEmpty())
                    problems.append(problem);
            }
            return problems;
        }));
    }
    QStringList problems;
    for (auto& result : results)
        problems += result.get();
    return problems;
}

#endif
