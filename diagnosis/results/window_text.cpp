#include "diagnosis/results/window_text.h"

#include <algorithm>

#include "diagnosis/results/value_text.h"
#include "diagnosis/text/printable.h"

namespace diagnosis {

namespace {

using namespace value_text;
using Evidence::Reason;

std::string MomentText(const Evidence::Moment& moment)
{
    return moment.local.empty() ? std::to_string(moment.seconds) : moment.local;
}

std::string IdsText(const Evidence::Window& window)
{
    const std::string first = std::to_string(window.firstId);
    return window.firstId == window.lastId ? "id " + first : "ids " + first + "-" + std::to_string(window.lastId);
}

// The threshold in words.
std::string WantedText(const Evidence::Window& window)
{
    using Evidence::Measure;
    const std::string number = std::to_string(window.threshold);
    const std::string rows = window.threshold == 1 ? " row" : " rows";
    const Measure measure = window.count.measure;
    if (measure == Measure::NONE) {
        return number;
    }
    const bool isWeighed = measure == Measure::WEIGHTS || measure == Measure::DAILY_WEIGHTS;
    const bool isDaily = measure == Measure::DAILY_ROWS || measure == Measure::DAILY_WEIGHTS;
    return number + (isWeighed ? " by weight" : rows) + (isDaily ? " on one day" : "");
}

std::string CountText(const Evidence::Window& window)
{
    const Evidence::WindowCount& count = window.count;
    std::string text = Number(count.rowsFound, "row", "rows");
    if (count.rowsBeforeStart.value_or(0) > 0) {
        text += ", " + std::to_string(*count.rowsBeforeStart) + " more cut off by the "
            + Evidence::FloorText(window.start->floor);
    }
    if (count.rowsOfOtherVersion > 0) {
        text += ", " + std::to_string(count.rowsOfOtherVersion) + " of another version";
    }
    if (count.rowsFailedTest > 0) {
        text += ", " + std::to_string(count.rowsFailedTest) + " failed the test";
    }
    text += "; reached " + std::to_string(count.reached);
    if (count.reachedById != 0 && window.firstId != window.lastId) {
        text += " by id " + std::to_string(count.reachedById);
    }
    text += " of " + WantedText(window);
    if (window.Missing() != 0) {
        text += ", " + std::to_string(window.Missing()) + " missing";
    }
    return text + (count.lastIdDecides && window.firstId != window.lastId ? "; the last id alone decides" : "");
}

std::string CoverText(const Evidence::WindowCount& count)
{
    if (!count.coveredDays) {
        return "";
    }
    const auto days = static_cast<std::uint64_t>(*count.coveredDays);
    return ", of which the log covers " + (days == 0 ? "less than a day" : Number(days, "day", "days"));
}

} // namespace

std::string StartText(const Evidence::Start& start)
{
    std::string text = "since " + MomentText(start.start) + " (";
    switch (start.floor) {
    case Evidence::Floor::PERIOD:
        text += "period of " + Number(static_cast<std::uint64_t>(std::max(0, start.periodDays)), "day", "days");
        break;
    case Evidence::Floor::REPAIR:
        text += "repair " + Printable(start.repairId);
        break;
    default:
        text += std::string("last ") + Evidence::FloorText(start.floor);
    }
    return text + (start.unreadableRepair.empty() ? ")" : "; can't be read: " + Printable(start.unreadableRepair) + ")");
}

std::string NotesText(const std::vector<Evidence::Reason>& notes, Evidence::Reason reason)
{
    std::string text;
    for (const Evidence::Reason note : notes) {
        text += note == reason ? "" : (text.empty() ? "also " : ", ") + std::string(Evidence::ReasonText(note));
    }
    return text;
}

std::string WindowText(const Evidence::Window& window)
{
    const std::string notes = NotesText(window.notes, window.reason);
    const std::string head = IdsText(window) + (window.kind.empty() ? "" : ", " + window.kind);
    if (!window.start) {
        return head + ": " + Evidence::ReasonText(window.reason);
    }
    return head + " " + StartText(*window.start) + (window.versionFilter ? ", this version only" : "")
        + CoverText(window.count) + ": "
        + (window.reason == Reason::WINDOW_SHORT || window.hit
                ? CountText(window)
                : std::string(Evidence::ReasonText(window.reason)))
        + (notes.empty() ? "" : ", " + notes);
}

std::string TestText(const Evidence::Test& test)
{
    return "  test " + Cut(test.key) + " " + Sign(test.logic) + " "
        + ComparedValue(test.value, test.type)
        + InParentheses(Printable(test.type)) + ": " + std::to_string(test.rowsPassed) + " of "
        + Number(test.rowsTested, "row passes", "rows pass")
        + (test.rowsPassedByLastId ? ", " + std::to_string(*test.rowsPassedByLastId) + " of the last id" : "");
}

const Evidence::Window* ClosestWindow(const Evidence::Alarm& alarm)
{
    const Evidence::Window* closest = nullptr;
    for (const Evidence::Window& window : alarm.windows) {
        if (window.hit) {
            return &window;
        }
        if (window.start && (closest == nullptr || window.Missing() < closest->Missing())) {
            closest = &window;
        }
    }
    return closest;
}

} // namespace diagnosis
