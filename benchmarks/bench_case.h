// A case of the benchmark: an operation on images of a given size. Each family lists its cases in a source of its own.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// One call, ready to run. The function holds the images that it works on.
struct Job {
    std::function<void()> call;
    std::size_t bytes;  // that the memcpy of the comparison moves: those of the destination, if there is one
    std::size_t pixels; // of the call
    // What memcpy reads and writes. Best are the images of the call: the pages of a block decide how well it fits the
    // caches. Null for a block that the benchmark allocates.
    const void *from = nullptr;
    void *to = nullptr;
};

struct Case {
    std::string name;
    std::function<Job(int side)> prepare; // for an image of side x side pixels
    bool tiny = false;                    // also timed at 8 x 8
};

std::vector<Case> copyingCases();
std::vector<Case> arithmeticCases();
std::vector<Case> geometryCases();
std::vector<Case> measureCases();
std::vector<Case> neighbourhoodCases();
std::vector<Case> filterCases();
std::vector<Case> levelCases();
std::vector<Case> transformCases();
std::vector<Case> kernelCases();

} // namespace bench
