#ifndef ARBORIST_BENCH_HEAP_GAUGE_H
#define ARBORIST_BENCH_HEAP_GAUGE_H

#include <cstddef>

/// Counts the bytes that operator new hands out, in a program that links heap_gauge.cpp. One at a time, on one thread.
class HeapGauge {
public:
    HeapGauge();
    ~HeapGauge();
    HeapGauge(const HeapGauge&) = delete;
    HeapGauge& operator=(const HeapGauge&) = delete;

    /// Bytes above the start, now and at most; what was there before and is gone counts against them.
    double Live() const;
    double Peak() const;
};

#endif
