#ifndef ARBORIST_DIAGNOSIS_TEXT_IN_SECONDS_H
#define ARBORIST_DIAGNOSIS_TEXT_IN_SECONDS_H

#include <chrono>
#include <string>

namespace diagnosis {

/// A time for people: "2 s", "0.5 s".
std::string InSeconds(std::chrono::milliseconds time);

} // namespace diagnosis

#endif
