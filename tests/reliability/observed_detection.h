#ifndef ARBORIST_TESTS_RELIABILITY_OBSERVED_DETECTION_H
#define ARBORIST_TESTS_RELIABILITY_OBSERVED_DETECTION_H

#include <string>
#include <vector>

#include "tests/frame/all_families.h"

class Arborist;

/// The device of AllFamilies with a logger that allocates nothing: it keeps the last lines in a fixed room.
class ObservedDetection : public AllFamilies {
protected:
    /// What a detection told its host.
    struct Answer {
        /// "T/alarm": the root causes of all trees, in order.
        std::vector<std::string> causes;
        /// True if a verdict calls itself incomplete, or a problem was reported: the host knows that causes may lack.
        bool isDoubted = false;
        /// True if it ended with std::bad_alloc.
        bool isOutOfMemory = false;
    };

    ObservedDetection();

    /// Detects with an observer; the calls that CallCounter counts fail as it was started. Any exception but
    /// std::bad_alloc reaches the test.
    static Answer Detect(Arborist& engine);
    /// An engine of its own, which is gone at the end.
    Answer DetectAnew() const;

    /// The whole and right answer.
    static const std::vector<std::string> CAUSES;
    /// A failure, with the last log lines, if an answer names a cause that isn't there, or lacks one without a doubt.
    static testing::AssertionResult IsHonest(const Answer& answer);
};

/// The number of files that this process has open.
std::size_t OpenFiles();

#endif
