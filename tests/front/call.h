// One call of an operation, and the judgement of all that it did: status, reports, and every byte of all memory.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "front/operations.h"
#include "kernel.h"

namespace front {

struct Call {
    std::vector<std::shared_ptr<TestImage>> images; // sources first, the destination last; one may stand twice
    Arguments arguments;

    const TestImage &destination() const { return *images.back(); }
    OrvStatus run() const;
    bool masked() const;
    bool inPlanes() const;
    // Pixels of the same samples, whose channels are all computed before any is written.
    bool wholePixels() const;
    // No image has a number of channels that pixel order does not serve.
    bool served() const;
    // Straight from image to image: neither a mask, nor a single channel of interleaved pixels.
    bool straight() const;
};

std::ostream &operator<<(std::ostream &out, const Call &call);

// The memory and the records of all images of a call and of their masks, as they were.
class Snapshot {
public:
    explicit Snapshot(const Call &call);

    const Bytes &of(const TestImage &image) const;
    // Fails where a byte of any memory changed, except the memory that `excepted` uses.
    testing::AssertionResult unchanged(const TestImage *excepted = nullptr) const;

private:
    void keep(const TestImage &image);
    void keepRecord(const void *record, std::size_t bytes);

    std::vector<std::pair<std::shared_ptr<Bytes>, Bytes>> memories_;
    std::vector<std::pair<const void *, Bytes>> records_; // headers and rectangles
};

// Runs the call and compares it with what the operation promises. Where rasters overlap at different positions, results
// of straight calls pixel by pixel are open. Of large images only some results of windows are judged. `written` counts
// the samples that the call writes.
testing::AssertionResult runs(const Operation &operation, const Call &call, Reports &reports, int &written,
                              bool rastersOverlap = false);

// The build of all kernels that calls take while this stands.
class Slot {
public:
    explicit Slot(std::int32_t index) : previous_(krnDispatchIndex) { krnDispatchIndex = index; }
    explicit Slot(Random &random) : Slot(random.between(0, best())) {}
    ~Slot() { krnDispatchIndex = previous_; }
    Slot(const Slot &) = delete;
    Slot &operator=(const Slot &) = delete;

    static std::int32_t best(); // the widest that the processor supports

private:
    std::int32_t previous_;
};

} // namespace front
