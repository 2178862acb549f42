#ifndef ARBORIST_FRAME_COMPARABLE_H
#define ARBORIST_FRAME_COMPARABLE_H

/// Lets two records of a class be compared member by member. Expands to nothing before C++20.
#if defined(__cpp_impl_three_way_comparison)
#define ARBORIST_COMPARABLE(Record) bool operator==(const Record&) const = default;
#else
#define ARBORIST_COMPARABLE(Record)
#endif

#endif
