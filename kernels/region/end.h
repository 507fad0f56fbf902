// Closes the region that begin.h opened.

} // namespace slotN
} // namespace orv

// GCC compiles lambdas of templates where these are instantiated, at the end of the source: its target pragma stays on,
// and nothing may follow.
#if defined(ORV_REGION_TARGET_1) && defined(__clang__)
#pragma clang attribute pop
#endif
