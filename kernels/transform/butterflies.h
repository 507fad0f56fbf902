// Butterflies: transforms of a few elements of a batch. To be included inside the unnamed namespace of a region, after
// vectors.h and rows.h. All arithmetic is that of single lanes, in one order, so that builds agree to the last bit.

// Some lanes of a batch, as floats or as doubles: a vector, or one number.
#if ORV_VECTOR_BYTES > 0
template <class Sample> using Part = Vector<Sample>;
#else
template <class Sample> using Part = Sample;
#endif
template <class Sample> constexpr std::size_t partLanes = sizeof(Part<Sample>) / sizeof(Sample);
template <class Sample> constexpr std::size_t partCount = batchLanes / partLanes<Sample>;

// Before a loop over parts. Where these are single numbers, GCC makes vectors of what the base processor has.
#if ORV_VECTOR_BYTES == 0 && !defined(__clang__)
#define ORV_PARTS ORV_INDEPENDENT
#else
#define ORV_PARTS
#endif

template <class Sample> inline Part<Sample> allLanes(Sample value)
{
#if ORV_VECTOR_BYTES > 0
    return everywhere<Sample>(value);
#else
    return value;
#endif
}

template <class Sample> struct Complex {
    Part<Sample> re, im;
};

template <class Sample> inline Complex<Sample> sum(const Complex<Sample> &a, const Complex<Sample> &b)
{
    return {a.re + b.re, a.im + b.im};
}
template <class Sample> inline Complex<Sample> difference(const Complex<Sample> &a, const Complex<Sample> &b)
{
    return {a.re - b.re, a.im - b.im};
}
// a + i b and a - i b.
template <class Sample> inline Complex<Sample> sumTurned(const Complex<Sample> &a, const Complex<Sample> &b)
{
    return {a.re - b.im, a.im + b.re};
}
template <class Sample> inline Complex<Sample> differenceTurned(const Complex<Sample> &a, const Complex<Sample> &b)
{
    return {a.re + b.im, a.im - b.re};
}
template <class Sample> inline Complex<Sample> product(const Complex<Sample> &a, const Complex<Sample> &b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
template <class Sample> inline Complex<Sample> scaled(Part<Sample> factor, const Complex<Sample> &a)
{
    return {factor * a.re, factor * a.im};
}
template <class Sample> inline Complex<Sample> exchanged(const Complex<Sample> &a)
{
    return {a.im, a.re};
}

// A complex number of a table, in all lanes.
template <class Sample> inline Complex<Sample> numberAt(const float *table, std::size_t index)
{
    return {allLanes<Sample>(table[2 * index]), allLanes<Sample>(table[2 * index + 1])};
}

template <std::size_t radix> struct Butterfly;

template <> struct Butterfly<2> {
    template <class Sample> static void run(Complex<Sample> (&x)[2])
    {
        const Complex<Sample> a = x[0], b = x[1];
        x[0] = sum(a, b);
        x[1] = difference(a, b);
    }
};

template <class Sample>
inline void transformFour(Complex<Sample> &x0, Complex<Sample> &x1, Complex<Sample> &x2, Complex<Sample> &x3)
{
    const Complex<Sample> a = sum(x0, x2), b = difference(x0, x2), c = sum(x1, x3), d = difference(x1, x3);
    x0 = sum(a, c);
    x1 = differenceTurned(b, d);
    x2 = difference(a, c);
    x3 = sumTurned(b, d);
}

template <> struct Butterfly<4> {
    template <class Sample> static void run(Complex<Sample> (&x)[4]) { transformFour(x[0], x[1], x[2], x[3]); }
};

template <> struct Butterfly<8> {
    template <class Sample> static void run(Complex<Sample> (&x)[8])
    {
        transformFour(x[0], x[2], x[4], x[6]);
        transformFour(x[1], x[3], x[5], x[7]);
        const Part<Sample> half = allLanes(static_cast<Sample>(0.70710678118654752440));
        // Odd results turned by 1/8 and by 3/8 of the circle.
        const Complex<Sample> b = {half * (x[3].re + x[3].im), half * (x[3].im - x[3].re)};
        const Complex<Sample> d = {half * (x[7].im - x[7].re), half * (x[7].re + x[7].im)};
        const Complex<Sample> even[4] = {x[0], x[2], x[4], x[6]}, odd0 = x[1], odd2 = x[5];
        x[0] = sum(even[0], odd0);
        x[4] = difference(even[0], odd0);
        x[1] = sum(even[1], b);
        x[5] = difference(even[1], b);
        x[2] = differenceTurned(even[2], odd2);
        x[6] = sumTurned(even[2], odd2);
        x[3] = {even[3].re + d.re, even[3].im - d.im};
        x[7] = {even[3].re - d.re, even[3].im + d.im};
    }
};

// Cosines and sines of the first half of the roots of unity.
template <std::size_t radix> struct CircleOf;
template <> struct CircleOf<3> {
    static constexpr double cosines[] = {-0.5}, sines[] = {0.86602540378443864676};
};
template <> struct CircleOf<5> {
    static constexpr double cosines[] = {0.30901699437494742410, -0.80901699437494742410};
    static constexpr double sines[] = {0.95105651629515357212, 0.58778525229247312917};
};
template <> struct CircleOf<7> {
    static constexpr double cosines[] = {0.62348980185873353053, -0.22252093395631440429, -0.90096886790241912624};
    static constexpr double sines[] = {0.78183148246802980871, 0.97492791218182360702, 0.43388373911755812048};
};
template <> struct CircleOf<11> {
    static constexpr double cosines[] = {0.84125353283118116886, 0.41541501300188642553, -0.14231483827328514044,
                                         -0.65486073394528506406, -0.95949297361449738989};
    static constexpr double sines[] = {0.54064081745559758211, 0.90963199535451837141, 0.98982144188093273238,
                                       0.75574957435425828377, 0.28173255684142969771};
};
template <> struct CircleOf<13> {
    static constexpr double cosines[] = {0.88545602565320989590,  0.56806474673115580251,  0.12053668025532305335,
                                         -0.35460488704253562597, -0.74851074817110109863, -0.97094181742605202716};
    static constexpr double sines[] = {0.46472317204376854566, 0.82298386589365639458, 0.99270887409805399280,
                                       0.93501624268541482343, 0.66312265824079520238, 0.23931566428755776715};
};

// Odd radices: elements from both ends of the butterfly have the same cosines, and opposite sines.
template <std::size_t radix> struct Butterfly {
    static constexpr std::size_t half = radix / 2;

    template <class Sample> static void run(Complex<Sample> (&x)[radix])
    {
        using Circle = CircleOf<radix>;
        Complex<Sample> sums[half], differences[half];
        const Complex<Sample> first = x[0];
        for (std::size_t j = 0; j < half; ++j) {
            sums[j] = sum(x[j + 1], x[radix - 1 - j]);
            differences[j] = difference(x[j + 1], x[radix - 1 - j]);
            x[0] = sum(x[0], sums[j]);
        }
        for (std::size_t k = 1; k <= half; ++k) {
            Complex<Sample> even = first, odd = {};
            for (std::size_t j = 1; j <= half; ++j) {
                const std::size_t turn = j * k % radix, place = (turn <= half ? turn : radix - turn) - 1;
                even = sum(even, scaled(allLanes(static_cast<Sample>(Circle::cosines[place])), sums[j - 1]));
                const Complex<Sample> turned =
                    scaled(allLanes(static_cast<Sample>(Circle::sines[place])), differences[j - 1]);
                odd = j == 1 ? turned : turn <= half ? sum(odd, turned) : difference(odd, turned);
            }
            x[k] = differenceTurned(even, odd);
            x[radix - k] = sumTurned(even, odd);
        }
    }
};
