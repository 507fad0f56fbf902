// A case of the benchmark: an operation on images of one size. Families list theirs in a source of their own.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// One call, ready to run, with the images that it works on inside the function.
struct Job {
    std::function<void()> call;
    std::size_t bytes;  // what memcpy moves in comparison: those of the destination, where the case says no other
    std::size_t pixels; // of the call
    // Where memcpy reads and writes: best the images of the call themselves, since how well memory lies in the caches
    // is a matter of its pages. Null for memory of the benchmark's own.
    const void *from = nullptr;
    void *to = nullptr;
};

struct Case {
    std::string name;
    std::function<Job(int side)> prepare; // for an image of side x side pixels
    bool tiny = false;                    // also timed on one pixel
};

std::vector<Case> copyingCases();
std::vector<Case> arithmeticCases();
std::vector<Case> geometryCases();
std::vector<Case> neighbourhoodCases();
std::vector<Case> kernelCases();

} // namespace bench
