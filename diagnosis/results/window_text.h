#ifndef ARBORIST_DIAGNOSIS_RESULTS_WINDOW_TEXT_H
#define ARBORIST_DIAGNOSIS_RESULTS_WINDOW_TEXT_H

#include <string>
#include <vector>

#include "arborist/frame/evidence.h"

namespace diagnosis {

/// The time from which rows count, and why: "since 2024-05-13 12:00:00 (period of 7 days)".
std::string StartText(const Evidence::Start& start);
/// "also bad_number, no_value": the notes that are not the reason itself. Empty if there are none.
std::string NotesText(const std::vector<Evidence::Reason>& notes, Evidence::Reason reason);
/// A window of an alarm rule: ids, start, and what was counted.
std::string WindowText(const Evidence::Window& window);
/// A test on the rows of a window, indented by two blanks.
std::string TestText(const Evidence::Test& test);

/// The window that reached its threshold, or the one that came closest to it; null if none was counted.
const Evidence::Window* ClosestWindow(const Evidence::Alarm& alarm);

} // namespace diagnosis

#endif
