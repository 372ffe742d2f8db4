#ifndef ZYN_BENCH_ALLOCATION_COUNT_H
#define ZYN_BENCH_ALLOCATION_COUNT_H

/// How often this thread has asked for memory with `new`, in the program and in what it is linked with.
long AllocationCount();

#endif
