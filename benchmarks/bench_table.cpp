// The benchmark: every case in three builds, at a size that fits the cache and at one that does not. A memcpy in the
// same run is the measure. Other programs disturb the machine, and the shortest times suffer least. So each figure is
// the shortest of many short rounds, which alternate with those of memcpy.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "bench_case.h"
#include "orv.h"

namespace {

using bench::Case;
using bench::Job;
using Clock = std::chrono::steady_clock;

constexpr int tinySide = 8, cachedSide = 256, memorySide = 2048;
constexpr int builds[] = {ORV_BUILD_PLAIN, ORV_BUILD_SSE41, ORV_BUILD_AVX2};

double secondsOf(int rounds, const std::function<void()> &call)
{
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < rounds; ++i)
        call();
    return std::chrono::duration<double>(Clock::now() - start).count() / rounds;
}

// As many calls as take about a tenth of a millisecond, so that the cost of reading the clock does not count.
int roundsFor(const std::function<void()> &call)
{
    const double once = secondsOf(3, call);
    return std::clamp(static_cast<int>(1e-4 / std::max(once, 1e-9)), 1, 10000);
}

void run(benchmark::State &state, const Case &item, int build, int side)
{
    orvUseBuild(build);
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
    orvUseBuild(ORV_BUILD_PLAIN);
}

// Prints the runs of a case in one line.
class TableReporter : public benchmark::ConsoleReporter {
public:
    TableReporter() : ConsoleReporter(OO_None) {}

    bool ReportContext(const Context &) override
    {
        std::printf("%-30s %50s %50s %20s\n", "", "256 x 256", "2048 x 2048", "8 x 8, ns per call");
        std::printf("%-30s", "ns/pixel (times memcpy)");
        for (int size = 0; size < 2; ++size)
            for (const int build : builds)
                std::printf(" %16s", orvBuildName(build));
        for (const int build : builds)
            std::printf(" %6s", orvBuildName(build));
        std::printf("\n");
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
            for (const int side : {cachedSide, memorySide})
                for (const int build : builds)
                    printCell(columnOf(side, build));
            for (const int build : builds)
                printTiny(columnOf(tinySide, build));
            std::printf("\n");
            std::fflush(stdout);
        }
        cells_.clear();
    }

    static std::string columnOf(int side, int build) { return std::to_string(side) + "/" + std::to_string(build); }

    void printCell(const std::string &column)
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

    void printTiny(const std::string &column)
    {
        if (cells_.count(column) != 0)
            std::printf(" %6.0f", cells_[column].at("ns_per_call").value);
        else
            std::printf(" %6s", "-");
    }

    std::string current_;
    std::map<std::string, benchmark::UserCounters> cells_;
};

void registerRun(const Case &item, int side, int build)
{
    const std::string name = item.name + "/" + std::to_string(side) + "/" + std::to_string(build);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [item, build, side](benchmark::State &state) { run(state, item, build, side); })
        ->UseManualTime()
        ->Iterations(side > cachedSide ? 40 : 300);
}

void registerCase(const Case &item)
{
    for (const int build : builds) {
        if (orvUseBuild(build) != build)
            continue; // the processor does not support it
        for (const int side : {cachedSide, memorySide})
            registerRun(item, side, build);
        if (item.tiny)
            registerRun(item, tinySide, build);
    }
    orvUseBuild(ORV_BUILD_PLAIN);
}

std::vector<Case> allCases()
{
    std::vector<Case> cases = bench::copyingCases();
    for (const std::vector<Case> &more :
         {bench::arithmeticCases(), bench::geometryCases(), bench::measureCases(), bench::neighbourhoodCases(),
          bench::filterCases(), bench::levelCases(), bench::transformCases(), bench::kernelCases()})
        cases.insert(cases.end(), more.begin(), more.end());
    return cases;
}

// Google Benchmark matches its filter against names with size and build. This one sees the name of the case alone, so
// that an expression can end with $. False, after a message, if it is no regular expression or matches nothing.
bool registerMatching(const std::vector<Case> &cases, const std::string &filter)
{
    try {
        const std::regex expression(filter);
        std::size_t matches = 0;
        for (const Case &item : cases)
            if (std::regex_search(item.name, expression)) {
                registerCase(item);
                ++matches;
            }
        if (matches == 0)
            std::fprintf(stderr, "orv_bench: no case matches \"%s\"; --list prints their names\n", filter.c_str());
        return matches != 0;
    } catch (const std::regex_error &) {
        std::fprintf(stderr, "orv_bench: \"%s\" is not a regular expression\n", filter.c_str());
        return false;
    }
}

} // namespace

// orv_bench [--list] [--filter=EXPRESSION] [options of Google Benchmark]
int main(int argc, char **argv)
{
    orvRedirectError(orvStdErrReport); // a failure ends the program with a message
    const std::vector<Case> cases = allCases();
    const std::string option = "--filter=";
    std::string filter;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--list") {
            for (const Case &item : cases)
                std::printf("%s\n", item.name.c_str());
            return 0;
        }
        if (argument.compare(0, option.size(), option) == 0)
            filter = argument.substr(option.size());
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv) || !registerMatching(cases, filter))
        return 1;
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
    return 0;
}
