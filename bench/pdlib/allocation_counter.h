// Counts every heap allocation of the process, so that a benchmark can show that a path makes
// none. Linking allocation_counter.cpp into an executable replaces the global operator new and
// delete and interposes glibc's malloc family; the libraries the executable loads allocate
// through them too.
#ifndef PDLIB_BENCH_ALLOCATION_COUNTER_H
#define PDLIB_BENCH_ALLOCATION_COUNTER_H

#include <cstdint>

/// Allocations so far: operator new, malloc, calloc, realloc and the aligned variants.
uint64_t AllocationCount();

#endif // PDLIB_BENCH_ALLOCATION_COUNTER_H
