// Images of the tests.
#include "front/test_image.h"

#include <algorithm>
#include <bit>
#include <ostream>
#include <utility>

namespace front {
namespace {

bool isSigned(std::int32_t depth)
{
    return depth < 0;
}

int bitsOf(std::int32_t depth)
{
    return 8 * bytesOf(depth);
}

// Samples at which formulas go wrong; any bits that happen to be for the rest.
std::uint32_t randomBits(std::int32_t depth, Random &random)
{
    static const std::uint32_t floats[] = {0,          0x80000000, 0x3F800000, 0xBF800000, 0x7F7FFFFF,
                                           0xFF7FFFFF, 0x00000001, 0x80000001, 0x7F800000, 0xFF800000,
                                           0x7FC00000, 0xFFC12345, 0x7F812345, 0xFFA00001};
    static const std::uint32_t masks[] = {0, 1, 2, 0x80, 0xFF};
    if (depth == ORV_DEPTH_1U)
        return random.once(4) ? random.bits() & 0xFF : random.oneOf(masks);
    if (!random.once(3))
        return random.bits();
    if (depth == ORV_DEPTH_32F)
        return random.oneOf(floats);
    const long long values[] = {lowestOf(depth), lowestOf(depth) + 1, -1, 0, 1, highestOf(depth) - 1, highestOf(depth)};
    return static_cast<std::uint32_t>(random.oneOf(values));
}

} // namespace

long long Sample::integer() const
{
    const std::uint32_t top = 1u << (bitsOf(depth) - 1);
    const long long value = bits;
    return isSigned(depth) && (bits & top) != 0 ? value - 2 * static_cast<long long>(top) : value;
}

double Sample::real() const
{
    return std::bit_cast<float>(bits);
}

bool Sample::isNan() const
{
    return depth == ORV_DEPTH_32F && (bits & 0x7FFFFFFF) > 0x7F800000;
}

Sample integerSample(std::int32_t depth, long long value)
{
    const std::uint32_t all = bitsOf(depth) == 32 ? 0xFFFFFFFF : (1u << bitsOf(depth)) - 1;
    return {depth, static_cast<std::uint32_t>(value) & all};
}

Sample realSample(double value)
{
    return {ORV_DEPTH_32F, std::bit_cast<std::uint32_t>(static_cast<float>(value))};
}

int bytesOf(std::int32_t depth)
{
    return std::max(1, (depth & 0xFF) / 8);
}

long long lowestOf(std::int32_t depth)
{
    return isSigned(depth) ? -(1LL << (bitsOf(depth) - 1)) : 0;
}

long long highestOf(std::int32_t depth)
{
    return (1LL << (bitsOf(depth) - (isSigned(depth) ? 1 : 0))) - 1;
}

long long saturated(std::int32_t depth, long long value)
{
    return std::clamp(value, lowestOf(depth), highestOf(depth));
}

std::int32_t Form::rowBytes() const
{
    return width * bytesOf(depth) * (order == ORV_DATA_ORDER_PLANE ? 1 : channels);
}

std::size_t Form::reach() const
{
    return static_cast<std::size_t>(rows() - 1) * static_cast<std::size_t>(widthStep()) +
           static_cast<std::size_t>(rowBytes());
}

void Form::stepInWholeSamples()
{
    while (widthStep() % bytesOf(depth) != 0)
        ++extraStep;
}

TestImage::TestImage(const Form &description, Random &random)
    : form(description), start_(static_cast<std::size_t>(random.once(4) ? 0 : random.between(1, 33)))
{
    const std::size_t behind = random.once(2) ? 0 : static_cast<std::size_t>(form.extraStep + random.between(1, 40));
    memory_ = std::make_shared<Bytes>(start_ + form.reach() + behind);
    for (std::uint8_t &byte : *memory_)
        byte = static_cast<std::uint8_t>(random.bits());
    for (std::int32_t row = 0; row < form.rows(); ++row)
        for (std::int32_t at = 0; at < form.rowBytes(); at += bytesOf(form.depth)) {
            const std::uint32_t bits = randomBits(form.depth, random);
            for (int byte = 0; byte < bytesOf(form.depth); ++byte)
                (*memory_)[start_ + static_cast<std::size_t>(row * form.widthStep() + at + byte)] =
                    static_cast<std::uint8_t>(bits >> (8 * byte));
        }
    fillHeader();
}

TestImage::TestImage(const Form &description, std::shared_ptr<Bytes> memory, std::size_t start)
    : form(description), memory_(std::move(memory)), start_(start)
{
    fillHeader();
}

void TestImage::fillHeader()
{
    header.nChannels = form.channels;
    header.alphaChannel = form.alpha;
    header.depth = form.depth;
    header.dataOrder = form.order;
    header.origin = form.origin;
    header.align = form.align;
    header.width = form.width;
    header.height = form.height;
    header.widthStep = form.widthStep();
    header.imageSize = form.widthStep() * form.rows();
    header.imageData = memory_->data() + start_;
}

void TestImage::setRectangle(std::int32_t coi, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height)
{
    rectangle_ = {coi, x, y, width, height};
    header.roi = &rectangle_;
}

void TestImage::setMask(std::shared_ptr<TestImage> mask)
{
    mask_ = std::move(mask);
    header.maskROI = mask_ == nullptr ? nullptr : &mask_->header;
}

std::size_t TestImage::place(std::int32_t x, std::int32_t y, std::int32_t channel) const
{
    const bool plane = form.order == ORV_DATA_ORDER_PLANE;
    const std::int32_t row = plane ? channel * form.height + y : y;
    const std::int32_t column = plane ? x : x * form.channels + channel;
    return start_ + static_cast<std::size_t>(row * form.widthStep() + column * bytesOf(form.depth));
}

Sample TestImage::read(const Bytes &bytes, std::int32_t x, std::int32_t y, std::int32_t channel) const
{
    const std::uint8_t *at = &bytes.at(place(x, y, channel));
    std::uint32_t bits = 0;
    for (int byte = 0; byte < bytesOf(form.depth); ++byte)
        bits |= static_cast<std::uint32_t>(at[byte]) << (8 * byte);
    return {form.depth, bits};
}

void TestImage::write(Bytes &bytes, std::int32_t x, std::int32_t y, std::int32_t channel, Sample sample) const
{
    std::uint8_t *at = &bytes.at(place(x, y, channel));
    for (int byte = 0; byte < bytesOf(form.depth); ++byte)
        at[byte] = static_cast<std::uint8_t>(sample.bits >> (8 * byte));
}

void TestImage::fill(Sample sample)
{
    for (std::int32_t y = 0; y < form.height; ++y)
        for (std::int32_t x = 0; x < form.width; ++x)
            for (std::int32_t channel = 0; channel < form.channels; ++channel)
                set(x, y, channel, sample);
}

std::shared_ptr<TestImage> randomMask(std::int32_t width, std::int32_t height, Random &random)
{
    Form form;
    form.depth = ORV_DEPTH_1U;
    form.order = random.between(0, 1);
    form.origin = random.between(0, 1);
    form.width = width;
    form.height = height;
    form.extraStep = random.once(3) ? 0 : random.between(1, 9);
    return std::make_shared<TestImage>(form, random);
}

Rectangles anyRectangles(Random &random)
{
    constexpr Rectangles kinds[] = {Rectangles::None,    Rectangles::None,    Rectangles::Inside, Rectangles::Inside,
                                    Rectangles::Clipped, Rectangles::Clipped, Rectangles::Absurd};
    return random.once(24) ? Rectangles::Outside : random.oneOf(kinds);
}

void setRandomRectangle(TestImage &image, Rectangles kind, std::int32_t coi, Random &random)
{
    const std::int32_t width = image.form.width, height = image.form.height;
    std::int32_t x = random.between(0, width - 1), y = random.between(0, height - 1);
    switch (kind) {
    case Rectangles::None:
        if (coi != 0)
            image.setWholeRectangle(coi);
        return;
    case Rectangles::Inside:
        image.setRectangle(coi, x, y, random.between(1, width - x), random.between(1, height - y));
        return;
    case Rectangles::Clipped:
        image.setRectangle(coi, x / 2, y / 2, width - x / 2 + random.between(0, 3),
                           height - y / 2 + random.between(0, 3));
        return;
    case Rectangles::Outside:
        (random.once(2) ? x : y) = random.between(0, 1) + (random.once(2) ? width + height : mostInt - 1);
        if (random.once(2))
            x = width;
        image.setRectangle(coi, x, y, random.between(1, width), random.between(1, height));
        return;
    case Rectangles::Absurd:
        image.setRectangle(coi, x / 2, y / 2, mostInt - random.between(0, 1), mostInt - random.between(0, 1));
        return;
    }
}

std::ostream &operator<<(std::ostream &out, const TestImage &image)
{
    const Form &form = image.form;
    out << "depth 0x" << std::hex << static_cast<std::uint32_t>(form.depth) << std::dec << ", " << form.channels
        << " channels, alpha " << form.alpha << (form.order == ORV_DATA_ORDER_PLANE ? ", planes, " : ", pixels, ")
        << form.width << " x " << form.height << ", step " << form.widthStep() << ", start " << image.start();
    if (const OrvROI *roi = image.header.roi; roi != nullptr)
        out << ", coi " << roi->coi << ", rectangle " << roi->xOffset << "," << roi->yOffset << " " << roi->width
            << " x " << roi->height;
    if (image.mask() != nullptr)
        out << ", mask {" << *image.mask() << "}";
    return out;
}

std::vector<std::int32_t> numbersOf(const OrvImage &image)
{
    std::vector<std::int32_t> numbers = {image.nSize, image.ID,        image.nChannels, image.alphaChannel,
                                         image.depth, image.dataOrder, image.origin,    image.align,
                                         image.width, image.height,    image.widthStep, image.imageSize};
    numbers.insert(numbers.end(), image.BorderMode, image.BorderMode + 4);
    numbers.insert(numbers.end(), image.BorderConst, image.BorderConst + 4);
    return numbers;
}

std::string colorsOf(const OrvImage &image)
{
    return std::string(image.colorModel, 4) + std::string(image.channelSeq, 4);
}

} // namespace front
