#ifndef ARBORIST_BENCH_HEAP_GAUGE_H
#define ARBORIST_BENCH_HEAP_GAUGE_H

#include <cstddef>

/// Counts the bytes that operator new allocates in a program that links heap_gauge.cpp. One at a time; not thread-safe.
class HeapGauge {
public:
    HeapGauge();
    ~HeapGauge();
    HeapGauge(const HeapGauge&) = delete;
    HeapGauge& operator=(const HeapGauge&) = delete;

    /// Bytes above those at the start, now and at the peak; freeing earlier memory reduces them.
    double Live() const;
    double Peak() const;
};

#endif
