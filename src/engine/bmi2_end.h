// Closes the region that bmi2_begin.h opened: what the compiler makes after
// the translation unit's code (its static initialisation, run at start-up on
// every processor) is compiled for the baseline again.
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
