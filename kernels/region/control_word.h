// The control word of the vector unit. To be included as vectors.h is.

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
