// Control words of the processor. To be included as vectors.h is.

#if ORV_VECTOR_BYTES > 0

constexpr unsigned mxcsrRoundMask = 0x6000;
constexpr unsigned mxcsrNearest = 0;

// An application may have set any rounding mode. Loops that need a certain one bracket their work with these two: the
// first sets the mode, where it differs, and gives back the old control word for the second.
inline unsigned krnSetMxcsrRound(unsigned mode)
{
    const unsigned saved = _mm_getcsr();
    if ((saved & mxcsrRoundMask) != mode)
        _mm_setcsr((saved & ~mxcsrRoundMask) | mode);
    return saved;
}

inline void krnRestoreMxcsr(unsigned saved)
{
    if ((saved & mxcsrRoundMask) != (_mm_getcsr() & mxcsrRoundMask))
        _mm_setcsr(saved);
}

#endif

// Sets the bits of the x87 control word under the mask. Gives back the old word, for the second.
inline std::uint16_t krnSetFpuControl([[maybe_unused]] std::uint16_t bits, [[maybe_unused]] std::uint16_t mask)
{
    std::uint16_t saved = 0;
#if defined(__i386__)
    __asm__ volatile("fnstcw %0" : "=m"(saved));
    const std::uint16_t set = static_cast<std::uint16_t>((saved & ~mask) | (bits & mask));
    __asm__ volatile("fldcw %0" : : "m"(set));
#endif
    return saved;
}

inline void krnRestoreFpuControl([[maybe_unused]] std::uint16_t saved)
{
#if defined(__i386__)
    __asm__ volatile("fldcw %0" : : "m"(saved));
#endif
}

// While it lives, the x87 unit of 32-bit x86 rounds to doubles, as vectors do. Elsewhere nothing uses that unit.
class DoublePrecision {
public:
    DoublePrecision() : saved_(krnSetFpuControl(0x200, 0x300)) {}
    ~DoublePrecision() { krnRestoreFpuControl(saved_); }

private:
    std::uint16_t saved_;
};

// Likewise to floats, for loops whose every step is one of floats.
class SinglePrecision {
public:
    SinglePrecision() : saved_(krnSetFpuControl(0, 0x300)) {}
    ~SinglePrecision() { krnRestoreFpuControl(saved_); }

private:
    std::uint16_t saved_;
};
