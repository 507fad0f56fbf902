// Closes the region that begin.h opened.

} // namespace slotN
} // namespace orv

#if ORV_SSE_LEVEL > 0
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#endif
