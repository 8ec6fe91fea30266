/**
 * bench_plan PLAN: checks the plan, all of whose instruments are attached, and lets libcsv alone
 * take the same file apart, in turn. Prints as a JSON object the nanoseconds of processor time that
 * each took, the fastest of several: neither waits for anything, and other programs do not count.
 */
#include "command/Plan.h"

#include <csv.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <numeric>

namespace {

void require(bool condition) {
    if (!condition) {
        std::fputs("the plan has faults\n", stderr);
        std::exit(1);
    }
}

using std::chrono::nanoseconds;

nanoseconds processorTime() {
    timespec time = {};
    require(::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time) == 0);
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

InputFile read(const QString& path) {
    Faults faults;
    const auto file = InputFile::read(path, faults);
    require(file.has_value());
    return *file;
}

/** Serial numbers as those of the plan's instruments. */
PlanNeeds allAttached() {
    constexpr std::int32_t count = 10000;
    PlanNeeds needs = {std::vector<std::int32_t>(count), {}};
    std::iota(needs.attached->begin(), needs.attached->end(), 1);
    return needs;
}

std::size_t rowsByPlan(const QString& path) {
    static const PlanNeeds needs = allAttached();
    Faults faults;
    const auto plan = Plan::check(read(path), needs, faults);
    require(plan.has_value());
    return plan->rows.size();
}

void takeCell(void* /*cell*/, std::size_t /*size*/, void* /*rows*/) {}

void endRow(int /*end*/, void* rows) {
    ++*static_cast<std::size_t*>(rows);
}

std::size_t rowsByLibcsv(const QString& path) {
    const InputFile file = read(path);
    csv_parser parser = {};
    std::size_t rows = 0;
    require(csv_init(&parser, CSV_STRICT) == 0);
    const auto size = static_cast<std::size_t>(file.content.size());
    require(csv_parse(&parser, file.content.constData(), size, takeCell, endRow, &rows) == size);
    csv_free(&parser);
    return rows - 1; // the header
}

template <typename Reader>
void measure(const Reader& reader, const QString& path, nanoseconds& fastest) {
    const auto begin = processorTime();
    require(reader(path) > 0);
    fastest = std::min(fastest, processorTime() - begin);
}

} // namespace

int main(int argc, char** argv) {
    require(argc == 2);
    const QString path = QString::fromLocal8Bit(argv[1]);
    require(rowsByPlan(path) == rowsByLibcsv(path));
    nanoseconds plan = nanoseconds::max();
    nanoseconds libcsv = nanoseconds::max();
    constexpr int rounds = 10;
    for (int i = 0; i < rounds; ++i) {
        measure(rowsByPlan, path, plan);
        measure(rowsByLibcsv, path, libcsv);
    }
    std::printf("{\"plan\": %lld, \"libcsv\": %lld}\n", static_cast<long long>(plan.count()),
                static_cast<long long>(libcsv.count()));
    return 0;
}
