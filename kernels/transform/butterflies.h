// Butterflies: transforms of a few elements of a batch. To be included inside the unnamed namespace of a region, after
// vectors.h and rows.h. All arithmetic is that of single lanes, in one order, so that builds agree to the last bit.

// Some lanes of a batch: a vector, or one number.
#if ORV_VECTOR_BYTES > 0
using Part = Floats;
#else
using Part = float;
#endif
constexpr std::size_t partLanes = sizeof(Part) / sizeof(float), partCount = batchLanes / partLanes;

inline Part allLanes(float value)
{
#if ORV_VECTOR_BYTES > 0
    return everywhere<float>(value);
#else
    return value;
#endif
}

struct Complex {
    Part re, im;
};

inline Complex sum(const Complex &a, const Complex &b)
{
    return {a.re + b.re, a.im + b.im};
}
inline Complex difference(const Complex &a, const Complex &b)
{
    return {a.re - b.re, a.im - b.im};
}
// a + i b and a - i b.
inline Complex sumTurned(const Complex &a, const Complex &b)
{
    return {a.re - b.im, a.im + b.re};
}
inline Complex differenceTurned(const Complex &a, const Complex &b)
{
    return {a.re + b.im, a.im - b.re};
}
inline Complex product(const Complex &a, const Complex &b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

// A twiddle of a table.
inline Complex twiddleAt(const float *table, std::size_t index)
{
    return {allLanes(table[2 * index]), allLanes(table[2 * index + 1])};
}

template <std::size_t radix> struct Butterfly;

template <> struct Butterfly<2> {
    static void run(Complex (&x)[2])
    {
        const Complex a = x[0], b = x[1];
        x[0] = sum(a, b);
        x[1] = difference(a, b);
    }
};

inline void transformFour(Complex &x0, Complex &x1, Complex &x2, Complex &x3)
{
    const Complex a = sum(x0, x2), b = difference(x0, x2), c = sum(x1, x3), d = difference(x1, x3);
    x0 = sum(a, c);
    x1 = differenceTurned(b, d);
    x2 = difference(a, c);
    x3 = sumTurned(b, d);
}

template <> struct Butterfly<4> {
    static void run(Complex (&x)[4]) { transformFour(x[0], x[1], x[2], x[3]); }
};

template <> struct Butterfly<8> {
    static void run(Complex (&x)[8])
    {
        transformFour(x[0], x[2], x[4], x[6]);
        transformFour(x[1], x[3], x[5], x[7]);
        const Part half = allLanes(0.70710678118654752440f);
        // Odd results turned by 1/8 and by 3/8 of the circle.
        const Complex b = {half * (x[3].re + x[3].im), half * (x[3].im - x[3].re)};
        const Complex d = {half * (x[7].im - x[7].re), half * (x[7].re + x[7].im)};
        const Complex even[4] = {x[0], x[2], x[4], x[6]}, odd0 = x[1], odd2 = x[5];
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
    static constexpr float cosines[] = {-0.5f}, sines[] = {0.86602540378443864676f};
};
template <> struct CircleOf<5> {
    static constexpr float cosines[] = {0.30901699437494742410f, -0.80901699437494742410f};
    static constexpr float sines[] = {0.95105651629515357212f, 0.58778525229247312917f};
};
template <> struct CircleOf<7> {
    static constexpr float cosines[] = {0.62348980185873353053f, -0.22252093395631440429f, -0.90096886790241912624f};
    static constexpr float sines[] = {0.78183148246802980871f, 0.97492791218182360702f, 0.43388373911755812048f};
};
template <> struct CircleOf<11> {
    static constexpr float cosines[] = {0.84125353283118116886f, 0.41541501300188642553f, -0.14231483827328514044f,
                                        -0.65486073394528506406f, -0.95949297361449738989f};
    static constexpr float sines[] = {0.54064081745559758211f, 0.90963199535451837141f, 0.98982144188093273238f,
                                      0.75574957435425828377f, 0.28173255684142969771f};
};
template <> struct CircleOf<13> {
    static constexpr float cosines[] = {0.88545602565320989590f,  0.56806474673115580251f,  0.12053668025532305335f,
                                        -0.35460488704253562597f, -0.74851074817110109863f, -0.97094181742605202716f};
    static constexpr float sines[] = {0.46472317204376854566f, 0.82298386589365639458f, 0.99270887409805399280f,
                                      0.93501624268541482343f, 0.66312265824079520238f, 0.23931566428755776715f};
};

// Odd radices: elements from both ends of the butterfly have the same cosines, and opposite sines.
template <std::size_t radix> struct Butterfly {
    static constexpr std::size_t half = radix / 2;

    static void run(Complex (&x)[radix])
    {
        using Circle = CircleOf<radix>;
        Complex sums[half], differences[half];
        const Complex first = x[0];
        for (std::size_t j = 0; j < half; ++j) {
            sums[j] = sum(x[j + 1], x[radix - 1 - j]);
            differences[j] = difference(x[j + 1], x[radix - 1 - j]);
            x[0] = sum(x[0], sums[j]);
        }
        for (std::size_t k = 1; k <= half; ++k) {
            Complex even = first, odd = {};
            for (std::size_t j = 1; j <= half; ++j) {
                const std::size_t turn = j * k % radix;
                const Part cosine = allLanes(Circle::cosines[(turn <= half ? turn : radix - turn) - 1]);
                const Part sine = allLanes(Circle::sines[(turn <= half ? turn : radix - turn) - 1]);
                const Complex real = {cosine * sums[j - 1].re, cosine * sums[j - 1].im};
                const Complex turned = {sine * differences[j - 1].re, sine * differences[j - 1].im};
                even = sum(even, real);
                odd = j == 1 ? turned : turn <= half ? sum(odd, turned) : difference(odd, turned);
            }
            x[k] = differenceTurned(even, odd);
            x[radix - k] = sumTurned(even, odd);
        }
    }
};
