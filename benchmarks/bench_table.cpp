// The benchmark: every case in the plain build and in the best one, at a size that stays in the cache and at one that
// does not, beside memcpy of as many bytes in the same run. Of a machine that others share, the shortest times say
// most; so each figure is the shortest of many short rounds, taken in turn with those of memcpy.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <vector>

#include "bench_case.h"
#include "kernels.h"
#include "orv.h"

namespace {

using bench::Case;
using bench::Job;
using Clock = std::chrono::steady_clock;

constexpr int cachedSide = 256, memorySide = 2048;
constexpr int slots[] = {0, 5};

double secondsOf(int rounds, const std::function<void()> &call)
{
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < rounds; ++i)
        call();
    return std::chrono::duration<double>(Clock::now() - start).count() / rounds;
}

// As many calls as take about a tenth of a millisecond, so that the clock's own cost is none of the figure.
int roundsFor(const std::function<void()> &call)
{
    const double once = secondsOf(3, call);
    return std::clamp(static_cast<int>(1e-4 / std::max(once, 1e-9)), 1, 10000);
}

void run(benchmark::State &state, const Case &item, int slot, int side)
{
    krnDispatchIndex = slot;
    const Job job = item.prepare(side);
    std::vector<unsigned char> spareFrom(job.from == nullptr ? job.bytes : 0, 1),
        spareTo(job.to == nullptr ? job.bytes : 0);
    const void *from = job.from != nullptr ? job.from : spareFrom.data();
    void *to = job.to != nullptr ? job.to : spareTo.data();
    const std::function<void()> copy = [&] {
        std::memcpy(to, from, job.bytes);
        benchmark::DoNotOptimize(to);
        benchmark::ClobberMemory();
    };
    const int rounds = roundsFor(job.call), copyRounds = roundsFor(copy);
    double best = std::numeric_limits<double>::max(), bestCopy = best;
    for (auto _ : state) {
        const double seconds = secondsOf(rounds, job.call);
        bestCopy = std::min(bestCopy, secondsOf(copyRounds, copy));
        best = std::min(best, seconds);
        state.SetIterationTime(seconds);
    }
    state.counters["ns_per_call"] = best * 1e9;
    state.counters["ns_per_pixel"] = best * 1e9 / static_cast<double>(job.pixels);
    state.counters["memcpy_ratio"] = best / bestCopy;
    krnDispatchIndex = 0;
}

// Gathers the runs of a case in one line.
class TableReporter : public benchmark::ConsoleReporter {
public:
    TableReporter() : ConsoleReporter(OO_None) {}

    bool ReportContext(const Context &) override
    {
        std::printf("%-30s %33s %33s %12s\n", "", "256 x 256", "2048 x 2048", "1 x 1");
        std::printf("%-30s %16s %16s %16s %16s %12s\n", "ns/pixel (times memcpy)", "slot 0", "slot 5", "slot 0",
                    "slot 5", "slot 0, ns");
        return true;
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &result : runs) {
            const std::string name = result.benchmark_name();
            const std::size_t end = name.find('/');
            if (name.compare(0, end, current_) != 0)
                flush();
            current_ = name.substr(0, end);
            const std::size_t next = name.find('/', end + 1);
            cells_[name.substr(end + 1, name.find('/', next + 1) - end - 1)] = result.counters;
        }
    }

    void Finalize() override { flush(); }

private:
    void flush()
    {
        if (!current_.empty()) {
            std::printf("%-30s", current_.c_str());
            for (const char *column : {"256/0", "256/5", "2048/0", "2048/5"})
                printCell(column);
            if (cells_.count("1/0") != 0)
                std::printf(" %12.1f", cells_["1/0"].at("ns_per_call").value);
            std::printf("\n");
            std::fflush(stdout);
        }
        cells_.clear();
    }

    void printCell(const char *column)
    {
        if (cells_.count(column) == 0) {
            std::printf(" %16s", "-");
            return;
        }
        char text[32];
        std::snprintf(text, sizeof text, "%.3f (%.2f)", cells_[column].at("ns_per_pixel").value,
                      cells_[column].at("memcpy_ratio").value);
        std::printf(" %16s", text);
    }

    std::string current_;
    std::map<std::string, benchmark::UserCounters> cells_;
};

void registerRun(const Case &item, int side, int slot)
{
    const std::string name = item.name + "/" + std::to_string(side) + "/" + std::to_string(slot);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [item, slot, side](benchmark::State &state) { run(state, item, slot, side); })
        ->UseManualTime()
        ->Iterations(side > cachedSide ? 40 : 300);
}

} // namespace

int main(int argc, char **argv)
{
    orvSetErrMode(ORV_ErrorModeLeaf);
    orvRedirectError(orvStdErrReport);
    std::vector<Case> cases = bench::copyingCases();
    for (const std::vector<Case> &more :
         {bench::arithmeticCases(), bench::geometryCases(), bench::neighbourhoodCases(), bench::kernelCases()})
        cases.insert(cases.end(), more.begin(), more.end());
    for (const Case &item : cases) {
        for (const int side : {cachedSide, memorySide})
            for (const int slot : slots)
                registerRun(item, side, slot);
        if (item.tiny)
            registerRun(item, 1, 0);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
}
