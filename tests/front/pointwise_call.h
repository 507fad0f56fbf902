// One call of an operation, and what it must have done: worked out sample by sample from the images as they were
// before.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "front/operations.h"

namespace front {

struct PointwiseCall {
    std::vector<std::shared_ptr<TestImage>> images; // sources first, the destination last; one may stand twice
    Constant constant;

    const TestImage &destination() const { return *images.back(); }
    OrvStatus run(const Operation &operation) const;
    bool masked() const;
    bool inPlanes() const;
    // No image has a number of channels that pixel order does not serve.
    bool served() const;
    // Straight from image to image: neither a mask, nor a single channel of interleaved pixels.
    bool straight() const;
};

std::ostream &operator<<(std::ostream &out, const PointwiseCall &call);

// The memory and the records of all images of a call and of their masks, as they were.
class Snapshot {
public:
    explicit Snapshot(const PointwiseCall &call);

    const Bytes &of(const TestImage &image) const;
    // Fails where a byte of any memory changed, but for memory that `excepted` uses.
    testing::AssertionResult unchanged(const TestImage *excepted = nullptr) const;

private:
    void keep(const TestImage &image);
    void keepRecord(const void *record, std::size_t bytes);

    std::vector<std::pair<std::shared_ptr<Bytes>, Bytes>> memories_;
    std::vector<std::pair<const void *, Bytes>> records_; // headers and rectangles
};

// The column, row and channel of an image where a call begins.
std::int32_t leftOf(const TestImage &image);
std::int32_t topOf(const TestImage &image);
std::int32_t coiOf(const TestImage &image);

// The pixels that the rectangles of all images of a call and of their masks have in common.
class CommonArea {
public:
    CommonArea(const PointwiseCall &call, const Snapshot &before);

    bool empty() const { return width == 0 || height == 0; }
    bool selected(int x, int y) const; // by the masks

    int width, height;

private:
    void shrink(const TestImage &image);

    const Snapshot &before_;
    std::vector<const TestImage *> masks_;
};

// Runs the call, and compares status, reports, and every byte of all memory with what the operation promises. Where
// rasters lie across each other, the samples that a straight call writes are open.
testing::AssertionResult runs(const Operation &operation, const PointwiseCall &call, Reports &reports, int &written,
                              bool rastersCross = false);

// The build of all kernels that calls take while this stands.
class Slot {
public:
    explicit Slot(std::int32_t index);
    ~Slot();
    Slot(const Slot &) = delete;
    Slot &operator=(const Slot &) = delete;

    static std::int32_t best(); // 5 where the processor has its instructions, else 0

private:
    std::int32_t previous_;
};

} // namespace front
