// Transforms of one complex sequence, at any byte address. To be included inside the unnamed namespace of a region,
// after butterflies.h. The includer has batch.h.

// Sixteen floats, the complex numbers of eight lanes, as an element of a batch, and back.
inline void loadElement(const unsigned char *in, float *re, float *im)
{
#if ORV_VECTOR_BYTES > 0
    for (std::size_t part = 0; part < partCount<float>; ++part) {
        const std::size_t lane = part * partLanes<float>;
        const Floats a = loadVector<float>(in, 2 * lane), b = loadVector<float>(in, 2 * lane + partLanes<float>);
        storeVector<float>(re, lane, inOrderOfPairs(evenFloats(a, b)));
        storeVector<float>(im, lane, inOrderOfPairs(oddFloats(a, b)));
    }
#else
    for (std::size_t lane = 0; lane < batchLanes; ++lane) {
        re[lane] = load<float>(in, 2 * lane);
        im[lane] = load<float>(in, 2 * lane + 1);
    }
#endif
}
inline void storeElement(unsigned char *out, const float *re, const float *im, float scale)
{
#if ORV_VECTOR_BYTES > 0
    for (std::size_t part = 0; part < partCount<float>; ++part) {
        const std::size_t lane = part * partLanes<float>;
        const Floats a = forPairsInOrder(allLanes<float>(scale) * loadVector<float>(re, lane));
        const Floats b = forPairsInOrder(allLanes<float>(scale) * loadVector<float>(im, lane));
        storeVector<float>(out, 2 * lane, interleaveLow<float>(a, b));
        storeVector<float>(out, 2 * lane + partLanes<float>, interleaveHigh<float>(a, b));
    }
#else
    for (std::size_t lane = 0; lane < batchLanes; ++lane) {
        store<float>(out, 2 * lane, scale * re[lane]);
        store<float>(out, 2 * lane + 1, scale * im[lane]);
    }
#endif
}

// Eight elements with eight others: element j has lane j of each of them.
inline void transposeElements(const float *in, float *out)
{
#if ORV_VECTOR_BYTES > 0
    for (std::size_t column = 0; column < batchElement; column += 4)
        for (std::size_t part = 0; part < partCount<float>; ++part) {
            U8s rows[4];
            for (std::size_t i = 0; i < 4; ++i) {
                const float *const from = in + batchElement * (partLanes<float> * part + i) + column;
                rows[i] = loadLanes<std::uint8_t>(from, from + (partCount<float> == 1 ? 4 * batchElement : 0));
            }
            transpose<4>(rows);
            for (std::size_t i = 0; i < 4; ++i)
                storeVector<std::uint8_t>(out + batchElement * ((column + i) % batchLanes) +
                                              column / batchLanes * batchLanes + partLanes<float> * part,
                                          0, rows[i]);
        }
#else
    for (std::size_t i = 0; i < batchLanes; ++i)
        for (std::size_t j = 0; j < batchElement; ++j)
            out[batchElement * (j % batchLanes) + j / batchLanes * batchLanes + i] = in[batchElement * i + j];
#endif
}

// Turns elements by the twiddles of their lanes, and transforms across the lanes: element j gets result j of all of
// them.
template <class Sample>
inline void crossElements(std::size_t count, const float *elements, const float *twiddles, float *block)
{
    alignas(32) float turned[batchLanes * batchElement] = {};
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t part = 0; part < partCount<Sample>; ++part)
            Elements{turned}.store(
                i, part,
                product(ConstElements{elements}.load<Sample>(i, part), ConstElements{twiddles}.load<Sample>(i, part)));
    transposeElements(turned, block);
    runPassOf<Sample, batchLanes>({batchLanes, 1, 1, nullptr, nullptr}, Elements{block}, Elements{block});
}

// The last pass of a sequence whose elements are spread over the lanes. `re` and `im` are places in an element.
template <class Sample>
inline void crossLanes(const LinePlan &plan, const float *elements, unsigned char *out, float scale, std::size_t re,
                       std::size_t im)
{
    const std::size_t count = plan.core.length;
    alignas(32) float block[batchLanes * batchElement];
    for (std::size_t k = 0; k < count; k += batchLanes) {
        const std::size_t some = count - k < batchLanes ? count - k : batchLanes;
        crossElements<Sample>(some, elements + batchElement * k, plan.laneTwiddles + batchElement * k, block);
        for (std::size_t i = 0; i < batchLanes; ++i) {
            const float *const result = block + batchElement * i;
            unsigned char *const to = out + 2 * sizeof(float) * (count * i + k);
            if (some == batchLanes)
                storeElement(to, result + re, result + im, scale);
            else
                for (std::size_t lane = 0; lane < some; ++lane) {
                    store<float>(to, 2 * lane, scale * result[re + lane]);
                    store<float>(to, 2 * lane + 1, scale * result[im + lane]);
                }
        }
    }
}

// Complex numbers into complex numbers, which may be the same. An inverse transform exchanges real and imaginary parts
// on both sides.
inline void transformLine(const LinePlan &plan, bool inverse, const unsigned char *in, unsigned char *out, float scale,
                          float *work)
{
    const std::size_t re = inverse ? batchLanes : 0, im = batchLanes - re, count = plan.core.length;
    const bool oneLane = plan.laneTwiddles == nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        float *const element = work + batchElement * i;
        if (!oneLane) {
            loadElement(in + sizeof(float) * batchElement * i, element + re, element + im);
            continue;
        }
        for (std::size_t lane = 0; lane < batchElement; ++lane)
            element[lane] = 0;
        element[re] = load<float>(in, 2 * i);
        element[im] = load<float>(in, 2 * i + 1);
    }
    const float *const result = transformBatch(plan.core, work, work + batchElement * plan.core.batchRoom);
    if (!oneLane && plan.precise) {
        const DoublePrecision doubles;
        return crossLanes<double>(plan, result, out, scale, re, im);
    }
    if (!oneLane) {
        const SinglePrecision floats;
        return crossLanes<float>(plan, result, out, scale, re, im);
    }
    for (std::size_t i = 0; i < count; ++i) {
        store<float>(out, 2 * i, scale * result[batchElement * i + re]);
        store<float>(out, 2 * i + 1, scale * result[batchElement * i + im]);
    }
}
