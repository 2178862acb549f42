#ifndef ARBORIST_BENCH_COMPARE_H
#define ARBORIST_BENCH_COMPARE_H

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "arborist/frame/log.h"

/// Measures ours against a baseline in the same run, and prints the lines of the table.
namespace bench {

/// Milliseconds of a single run of `work`.
template <typename Work>
double Milliseconds(Work&& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

inline double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

struct Pair {
    double ours;
    double baseline;
};

/// Medians of both in milliseconds. They alternate, so that a slow phase of the machine affects both alike.
template <typename Ours, typename Baseline>
Pair Alternate(int rounds, Ours&& ours, Baseline&& baseline)
{
    std::vector<double> oursTimes;
    std::vector<double> baselineTimes;
    for (int round = 0; round < rounds; ++round) {
        baselineTimes.push_back(Milliseconds(baseline));
        oursTimes.push_back(Milliseconds(ours));
    }
    return {Median(oursTimes), Median(baselineTimes)};
}

/// One line "name, ours, baseline, ratio, goal" on standard output. Milliseconds, or bytes if the name says so; `goal`
/// is the largest acceptable ratio.
inline void Report(const std::string& name, Pair pair, double goal)
{
    std::printf("%s, %.6g, %.6g, %.3f, %g\n", name.c_str(), pair.ours, pair.baseline, pair.ours / pair.baseline,
                goal);
    std::fflush(stdout);
}

/// Drops all lines of the library, as standard output is for the table.
class SilentLogger : public FT::ILogger {
public:
    void Print(unsigned int, const std::string&, va_list) override {}
};

inline void SilenceLog()
{
    FT::Log::GetInstance().SetUserLogger(std::make_unique<SilentLogger>());
}

/// Keeps the compiler from removing work whose result is not used.
template <typename Value>
void Keep(const Value& value)
{
    asm volatile("" : : "r,m"(value) : "memory");
}

} // namespace bench

#endif
