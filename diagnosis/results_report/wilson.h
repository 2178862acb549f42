#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_WILSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_WILSON_H

#include <cstdint>

namespace diagnosis {

/// A share that was seen in a sample, and between which shares it may lie where the sample comes from.
struct ShareInterval {
    double share = 0;
    double low = 0;
    double high = 1;
};

/// The interval of Wilson's score for `part` of `whole`, at 95 percent and without correction for continuity. It holds
/// for small samples, too, and lies between 0 and 1: E. B. Wilson, "Probable inference, the law of succession, and
/// statistical inference", Journal of the American Statistical Association 22 (1927), 209-212; compared with others by
/// R. G. Newcombe, "Two-sided confidence intervals for the single proportion: comparison of seven methods", Statistics
/// in Medicine 17 (1998), 857-872. Of nothing the share is 0, and the interval from 0 to 1.
ShareInterval WilsonInterval(std::uint64_t part, std::uint64_t whole);

} // namespace diagnosis

#endif
