// Transforms against naive sums in doubles, and what they refuse.
#include <cmath>
#include <complex>
#include <numbers>

#include <gtest/gtest.h>

#include "front/call.h"
#include "front/measured.h"
#include "front/memory_watch.h"
#include "kernels.h"

namespace front {
namespace {

using Numbers = std::vector<double>;
using Complexes = std::vector<std::complex<double>>;

struct Transform {
    const char *name;
    void (*call)(const OrvImage *, OrvImage *, std::int32_t);
    std::int32_t from, to;
    bool inverse, cosine, planesOnly;

    std::int32_t flags() const { return inverse ? 2 : 1; }
    const char *unit() const { return cosine ? "orvdct2d" : "orvfft2d"; }
};

constexpr Transform transforms[] = {{"orvRealFft2D", orvRealFft2D, ORV_DEPTH_8U, ORV_DEPTH_32S, false, false, false},
                                    {"orvRealFft2D", orvRealFft2D, ORV_DEPTH_8U, ORV_DEPTH_32F, false, false, false},
                                    {"orvRealFft2D", orvRealFft2D, ORV_DEPTH_16S, ORV_DEPTH_16S, false, false, false},
                                    {"orvRealFft2D", orvRealFft2D, ORV_DEPTH_32F, ORV_DEPTH_32F, false, false, true},
                                    {"orvCcsFft2D", orvCcsFft2D, ORV_DEPTH_32S, ORV_DEPTH_8U, true, false, false},
                                    {"orvCcsFft2D", orvCcsFft2D, ORV_DEPTH_32F, ORV_DEPTH_8U, true, false, false},
                                    {"orvCcsFft2D", orvCcsFft2D, ORV_DEPTH_16S, ORV_DEPTH_16S, true, false, false},
                                    {"orvCcsFft2D", orvCcsFft2D, ORV_DEPTH_32F, ORV_DEPTH_32F, true, false, true},
                                    {"orvDCT2D", orvDCT2D, ORV_DEPTH_8U, ORV_DEPTH_32F, false, true, false},
                                    {"orvDCT2D", orvDCT2D, ORV_DEPTH_8U, ORV_DEPTH_16S, false, true, false},
                                    {"orvDCT2D", orvDCT2D, ORV_DEPTH_32F, ORV_DEPTH_8U, true, true, false},
                                    {"orvDCT2D", orvDCT2D, ORV_DEPTH_16S, ORV_DEPTH_8U, true, true, false}};

// Sums along rows and then along columns, with the factor of a result and a source.
template <class Number, class Factor>
std::vector<Number> separable(const std::vector<Number> &in, int width, int height, Factor factor)
{
    std::vector<Number> rows(in.size()), out(in.size());
    for (int y = 0; y < height; ++y)
        for (int k = 0; k < width; ++k)
            for (int x = 0; x < width; ++x)
                rows[std::size_t(y * width + k)] += factor(k, x, width) * in[std::size_t(y * width + x)];
    for (int x = 0; x < width; ++x)
        for (int k = 0; k < height; ++k)
            for (int y = 0; y < height; ++y)
                out[std::size_t(k * width + x)] += factor(k, y, height) * rows[std::size_t(y * width + x)];
    return out;
}

// Calls put(index in packed form, index of the number, index of its conjugate, whether the imaginary part is there).
template <class Put> void overPacked(int width, int height, Put put)
{
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool edge = x == 0 || (width % 2 == 0 && x == width - 1);
            const int k = (x + 1) / 2, l = edge ? (y + 1) / 2 : y;
            put(std::size_t(y * width + x), std::size_t(l * width + k),
                std::size_t((height - l) % height * width + (width - k) % width),
                edge ? y > 0 && y % 2 == 0 : x % 2 == 0);
        }
}

Numbers modelOf(const Transform &transform, const Numbers &in, int width, int height)
{
    if (transform.cosine)
        return separable(in, width, height, [&](int result, int source, int n) {
            const int k = transform.inverse ? source : result, i = transform.inverse ? result : source;
            return std::sqrt((k == 0 ? 1.0 : 2.0) / n) * std::cos((2 * i + 1) * k * std::numbers::pi / (2 * n));
        });
    const auto root = [&](int k, int i, int n) {
        return std::polar(transform.inverse ? 1.0 / n : 1.0,
                          (transform.inverse ? 2 : -2) * std::numbers::pi * k * i / n);
    };
    Complexes numbers(in.begin(), in.end());
    Numbers out(in.size());
    if (!transform.inverse) {
        numbers = separable(numbers, width, height, root);
        overPacked(width, height, [&](std::size_t at, std::size_t number, std::size_t, bool imaginary) {
            out[at] = imaginary ? numbers[number].imag() : numbers[number].real();
        });
        return out;
    }
    overPacked(width, height, [&](std::size_t at, std::size_t number, std::size_t, bool imaginary) {
        numbers[number] = imaginary ? std::complex(numbers[number].real(), in[at]) : std::complex(in[at], 0.0);
    });
    overPacked(width, height, [&](std::size_t, std::size_t number, std::size_t conjugate, bool) {
        numbers[conjugate] = std::conj(numbers[number]);
    });
    numbers = separable(numbers, width, height, root);
    std::transform(numbers.begin(), numbers.end(), out.begin(), [](const auto &value) { return value.real(); });
    return out;
}

double valueOf(const Sample &sample)
{
    return sample.depth == ORV_DEPTH_32F ? sample.real() : static_cast<double>(sample.integer());
}

std::shared_ptr<TestImage> imageOf(const Form &form, const OrvROI &area, bool wholeImage, int amplitude, Random &random)
{
    const auto image = std::make_shared<TestImage>(form, random);
    if (!wholeImage)
        image->setRectangle(area.coi, area.xOffset, area.yOffset, area.width, area.height);
    for (int y = 0; y < form.height && amplitude > 0; ++y)
        for (int x = 0; x < form.width; ++x)
            for (int channel = 0; channel < form.channels; ++channel) {
                const int value = random.between(form.depth == ORV_DEPTH_8U ? 0 : -amplitude, amplitude);
                image->set(x, y, channel,
                           form.depth == ORV_DEPTH_32F ? realSample(value / 3.0) : integerSample(form.depth, value));
            }
    if (random.once(3))
        image->setMask(randomMask(form.width, form.height, random));
    return image;
}

// A call with rectangles of one size, and of two sizes where these may differ.
Call drawCall(const Transform &transform, Random &random)
{
    static const int sides[] = {1, 2, 3, 4, 5, 7, 8, 8, 9, 13, 15, 16, 17, 31, 33, 37};
    const bool square = random.once(3), whole = random.once(2);
    const int width = random.oneOf(sides), height = square ? width : random.oneOf(sides);
    const int order = random.between(0, 1), channels = random.oneOf(std::initializer_list<int>{1, 1, 2, 3, 4, 4, 5});
    const bool single = random.once(3);
    Call call;
    for (const std::int32_t depth : {transform.from, transform.to}) {
        const int more = whole ? 0 : random.between(0, 5), wider = transform.cosine ? 0 : random.between(0, 2);
        const Form form = {.depth = depth,
                           .channels = single ? random.between(1, 5) : channels,
                           .alpha = random.between(0, 1),
                           .order = order,
                           .width = width + more + wider,
                           .height = height + more,
                           .extraStep = random.between(0, 9)};
        const int coi = single ? random.between(1, form.channels) : 0;
        const int amplitude = depth == ORV_DEPTH_8U ? 255 : depth == ORV_DEPTH_16S ? 300 : 20000;
        call.images.push_back(imageOf(form, {coi, more / 2, more - more / 2, width + wider, height}, whole && coi == 0,
                                      call.images.empty() ? amplitude : 0, random));
    }
    return call;
}

bool isBlock(const TestImage &image)
{
    const OrvROI area = clipped(image);
    return image.form.width == 8 && image.form.height == 8 && area.width == 8 && area.height == 8;
}

// How many channels the call transforms.
int channelsOf(const Transform &transform, const Call &call)
{
    const Form &from = call.images[0]->form, &to = call.images[1]->form;
    const bool planes = to.order == ORV_DATA_ORDER_PLANE || (from.channels == 1 && to.channels == 1);
    const int count = clipped(*call.images[0]).coi != 0 ? 1 : to.channels;
    if (!planes && (transform.planesOnly || (!transform.cosine && (count == 2 || count > 4))))
        return 0;
    return count == 4 && to.alpha != 0 ? 3 : count;
}

void testValues(const Transform &transform, Random &random)
{
    const Call call = drawCall(transform, random);
    const TestImage &source = *call.images[0], &destination = *call.images[1];
    const OrvROI from = clipped(source), to = clipped(destination);
    const int width = std::min(from.width, to.width), height = std::min(from.height, to.height);
    const Snapshot before(call);
    const Slot slot(random);
    Reports reports;
    transform.call(&source.header, const_cast<OrvImage *>(&destination.header), transform.flags());
    ASSERT_TRUE(before.unchanged(&destination));
    const int channels = channelsOf(transform, call);
    const bool reported = !reports.all().empty();
    EXPECT_EQ(reported, channels == 0 && transform.planesOnly && !transform.inverse);
    Bytes rest = *destination.memory();
    const bool fixed = transform.cosine && isBlock(source) && isBlock(destination);
    for (int channel = 0; channel < channels; ++channel) {
        const int in = std::max(from.coi - 1, 0) + channel, out = std::max(to.coi - 1, 0) + channel;
        Numbers numbers;
        for (int i = 0; i < width * height; ++i)
            numbers.push_back(valueOf(source.get(from.xOffset + i % width, from.yOffset + i / width, in)));
        const Numbers model = modelOf(transform, numbers, width, height);
        double most = 0;
        for (const double value : model)
            most = std::max(most, std::abs(value));
        const bool floats = transform.to == ORV_DEPTH_32F;
        const double bound = 2e-6 * most + (floats ? 0 : fixed ? 0.75 : 0.5);
        for (int i = 0; i < width * height; ++i) {
            const int x = to.xOffset + i % width, y = to.yOffset + i / width;
            const double right = model[std::size_t(i)];
            const double expected =
                floats ? right : std::clamp(right, double(lowestOf(transform.to)), double(highestOf(transform.to)));
            ASSERT_NEAR(valueOf(destination.get(x, y, out)), expected, bound) << transform.name << " at " << i << "\n"
                                                                              << source << destination;
            destination.write(rest, x, y, out, destination.read(before.of(destination), x, y, out));
        }
    }
    EXPECT_EQ(rest, before.of(destination)) << transform.name << "\n" << source << destination;
}

TEST(Transforms, AreNaiveSums)
{
    Random random(51);
    for (const Transform &transform : transforms)
        for (int round = 0; round < 120 && !testing::Test::HasFailure(); ++round)
            testValues(transform, random);
}

// Blocks inside a larger image are transformed in floats and rounded.
TEST(Transforms, OnlyWholeBlocksAreFixedPoint)
{
    Random random(57);
    int differing = 0;
    for (int block = 0; block < 50; ++block) {
        const std::int32_t shift = block % 2;
        TestImage source({.depth = ORV_DEPTH_8U, .width = 8 + shift}, random), result({.depth = ORV_DEPTH_16S}, random);
        source.setRectangle(0, shift, 0, 8, 8);
        std::int16_t fixed[64];
        orv::krnDct8x8Fwd8u16s(source.header.imageData + shift, source.header.widthStep, fixed, 16);
        orvDCT2D(&source.header, &result.header, ORV_DCT_FORWARD);
        int wrong = 0;
        for (int i = 0; i < 64; ++i)
            wrong += result.get(i % 8, i / 8, 0).integer() != fixed[i];
        differing += shift == 1 && wrong > 0;
        EXPECT_TRUE(shift == 1 || wrong == 0);
    }
    EXPECT_GT(differing, 0);
}

// The reports of flags on images that are served otherwise.
std::vector<Report> reportsOfFlags(const Transform &transform, int flags, bool missing)
{
    const auto refuse = [&](OrvStatus status, const char *text) {
        return std::vector<Report>{{status, transform.name, text, transform.unit()}};
    };
    const bool forward = (flags & 1) != 0, inverse = (flags & 2) != 0;
    if ((flags & (transform.cosine ? 8 : 128)) != 0)
        return {};
    if (transform.cosine && forward == inverse)
        return refuse(-5, "Bad value of the transform flag");
    if (!forward && !inverse)
        return refuse(-5, "0 == (flags & 1) && 0 == (flags & 2 )");
    if (!transform.cosine && forward && inverse)
        return refuse(-5, "(flags & 1) != 0 && (flags & 2 ) != 0");
    if (!transform.cosine && (flags & 48) == 48)
        return refuse(-5, "(flags & 32) != 0 && (flags & 16 ) != 0");
    if (missing) {
        std::vector<Report> both = refuse(-5, transform.cosine ? "src==0" : "srcImage==0");
        both.push_back(refuse(-5, transform.cosine ? "dst==0" : "dstImage==0")[0]);
        return both;
    }
    return inverse == transform.inverse ? std::vector<Report>{} : refuse(-50, "");
}

TEST(Transforms, FlagsAreTestedFirst)
{
    Random random(52);
    for (const Transform &transform : transforms)
        for (int flags = 0; flags < 256; ++flags) {
            TestImage source({.depth = transform.from}, random), destination({.depth = transform.to}, random);
            const Bytes before = *destination.memory();
            for (const bool missing : {true, false}) {
                Reports reports;
                transform.call(missing ? nullptr : &source.header, missing ? nullptr : &destination.header, flags);
                EXPECT_EQ(reports.all(), reportsOfFlags(transform, flags, missing)) << flags;
                const bool runs = !missing && reports.all().empty() && (flags & (transform.cosine ? 8 : 128)) == 0;
                EXPECT_EQ(*destination.memory() != before, runs) << transform.name << " " << flags;
            }
        }
}

// The faults of two images, in the order of the checks.
struct Fault {
    OrvStatus status;
    const char *context;
    void (*make)(OrvImage &source, OrvImage &destination);
};

std::vector<Fault> faultsOf(const Transform &transform)
{
    const bool cosine = transform.cosine;
    std::vector<Fault> faults = {
        {cosine ? ORV_STATUS_NOT_IMPLEMENTED : ORV_STATUS_BAD_ARGUMENT, "Images with 1u depth are not processed",
         [](OrvImage &source, OrvImage &) { source.depth = ORV_DEPTH_1U; }},
        {ORV_STATUS_BAD_ARGUMENT,
         cosine ? "(src->dataOrder != dst->dataOrder)" : "(srcImage->dataOrder != dstImage->dataOrder)",
         [](OrvImage &source, OrvImage &) { source.dataOrder = ORV_DATA_ORDER_PLANE; }},
        {ORV_STATUS_BAD_CHANNELS, "", [](OrvImage &, OrvImage &destination) { destination.nChannels = 3; }}};
    if (cosine) {
        faults.push_back({ORV_STATUS_BAD_ARGUMENT, "(srcRoi.width != dstRoi.width)",
                          [](OrvImage &source, OrvImage &) { source.width = 7; }});
        faults.push_back({ORV_STATUS_BAD_ARGUMENT, "(srcRoi.height != dstRoi.height)",
                          [](OrvImage &, OrvImage &destination) { destination.height = 7; }});
    }
    faults.push_back({ORV_STATUS_NOT_IMPLEMENTED, "", [](OrvImage &source, OrvImage &destination) {
                          source.depth = ORV_DEPTH_16U;
                          destination.depth = ORV_DEPTH_16U;
                      }});
    return faults;
}

TEST(Transforms, ImagesAreComparedInOrder)
{
    Random random(53);
    for (const Transform &transform : transforms) {
        const std::vector<Fault> faults = faultsOf(transform);
        for (std::size_t first = 0; first < faults.size(); ++first)
            for (const bool more : {false, true}) {
                TestImage source({.depth = transform.from}, random), destination({.depth = transform.to}, random);
                for (std::size_t i = more ? faults.size() - 1 : first; i > first; --i)
                    faults[i].make(source.header, destination.header);
                faults[first].make(source.header, destination.header);
                Reports reports;
                const Bytes before = *destination.memory();
                transform.call(&source.header, &destination.header, transform.flags());
                const std::vector<Report> expected = {
                    {faults[first].status, transform.name, faults[first].context, transform.unit()}};
                EXPECT_EQ(reports.all(), expected);
                EXPECT_EQ(*destination.memory(), before);
                reports.clear();
                transform.call(&source.header, &source.header, transform.flags());
                const std::vector<Report> inPlace = {{ORV_STATUS_BAD_ARGUMENT, transform.name,
                                                      "Function does not support inplace operation", transform.unit()}};
                EXPECT_EQ(reports.all(), inPlace);
            }
    }
}

// Nothing is done and nothing reported: depths of the side that is looked at last, headers that have no pixels to
// transform, and missing images whose status a report handler clears.
TEST(Transforms, OddImagesAreLeftInSilence)
{
    Random random(54);
    static OrvROI beyond = {5, 0, 0, 4, 4}, before = {-1, 0, 0, 4, 4}, outside = {0, 8, 0, 4, 4},
                  flat = {0, 0, 0, 0, 4};
    void (*const makes[])(OrvImage &, OrvImage &) = {
        [](OrvImage &source, OrvImage &) { source.imageData = nullptr; },
        [](OrvImage &, OrvImage &destination) { destination.imageData = nullptr; },
        [](OrvImage &source, OrvImage &destination) {
            source.nChannels = destination.nChannels = 0;
            source.dataOrder = destination.dataOrder = ORV_DATA_ORDER_PLANE;
        },
        [](OrvImage &source, OrvImage &destination) { source.widthStep = destination.widthStep = 0; },
        [](OrvImage &source, OrvImage &destination) { source.roi = destination.roi = &beyond; },
        [](OrvImage &source, OrvImage &destination) { source.roi = destination.roi = &before; },
        [](OrvImage &source, OrvImage &destination) { source.roi = destination.roi = &outside; },
        [](OrvImage &source, OrvImage &destination) { source.roi = destination.roi = &flat; }};
    for (const Transform &transform : transforms) {
        Reports reports;
        const auto silent = [&](TestImage &source, TestImage &destination) {
            const Bytes kept = *destination.memory();
            transform.call(&source.header, &destination.header, transform.flags());
            EXPECT_TRUE(reports.all().empty() && *destination.memory() == kept) << transform.name;
        };
        for (const auto make : makes) {
            TestImage source({.depth = transform.from}, random), destination({.depth = transform.to}, random);
            make(source.header, destination.header);
            silent(source, destination);
        }
        TestImage source({.depth = transform.from}, random), destination({.depth = transform.to}, random);
        if (transform.inverse || transform.cosine) {
            (transform.inverse ? destination : source).header.depth = ORV_DEPTH_8S;
            silent(source, destination);
        }
        orvRedirectError([](OrvStatus, const char *, const char *, const char *, std::int32_t) -> OrvStatus {
            orvSetErrStatus(ORV_STATUS_OK);
            return ORV_STATUS_OK;
        });
        transform.call(nullptr, nullptr, transform.flags());
    }
}

TEST(Transforms, ExhaustedMemoryLeavesTheDestination)
{
    Random random(55);
    for (const Transform &transform : transforms)
        for (int failing = 0, allocations = 1; failing < allocations; ++failing) {
            const Form form = {.channels = transform.planesOnly ? 1 : 3, .width = 20, .height = 41};
            Form from = form, to = form;
            from.depth = transform.from;
            to.depth = transform.to;
            const Call call = {{std::make_shared<TestImage>(from, random), std::make_shared<TestImage>(to, random)},
                               {}};
            for (const auto &image : call.images)
                image->setMask(randomMask(20, 41, random));
            const Snapshot before(call);
            Reports reports;
            MemoryWatch memory;
            memory.failAt(failing);
            transform.call(&call.images[0]->header, &call.images[1]->header, transform.flags());
            allocations = memory.allocations();
            EXPECT_EQ(memory.live(), 0u);
            EXPECT_TRUE(reports.all().empty());
            EXPECT_TRUE(before.unchanged(failing < allocations ? nullptr : call.images[1].get()));
            allocations += failing < allocations; // a failure ends the call
        }
}

TEST(Transforms, SamplesThatAreNotFiniteSpoilTheirChannelOnly)
{
    Random random(56);
    for (const Transform &transform : transforms)
        for (const double odd : {HUGE_VAL, std::nan("")}) {
            if (transform.from != ORV_DEPTH_32F)
                continue;
            const Form form = {.depth = transform.from, .channels = 3, .order = ORV_DATA_ORDER_PLANE, .width = 24};
            Form to = form;
            to.depth = transform.to;
            TestImage source(form, random), clean(to, random), spoilt(to, random);
            for (int i = 0; i < 24 * 8 * 3; ++i)
                source.set(i % 24, i / 24 % 8, i / 192, realSample(random.between(-999, 999)));
            transform.call(&source.header, &clean.header, transform.flags());
            source.set(5, 3, 1, realSample(odd));
            transform.call(&source.header, &spoilt.header, transform.flags());
            for (int i = 0; i < 24 * 8; ++i)
                for (const int channel : {0, 2})
                    EXPECT_EQ(spoilt.get(i % 24, i / 24, channel).bits, clean.get(i % 24, i / 24, channel).bits);
        }
}

} // namespace
} // namespace front
