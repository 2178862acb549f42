#include "arborist/evaluation/rule_check.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

using Evidence::Check;
using Evidence::Reason;

// Called with each reason of a rule and the check that follows from it.
using Visitor = std::function<void(Reason, Check)>;

// What a filter compared may be unknown, and a rule without scenes is switched off for good.
Check CheckOfFilter(Reason reason, const Evidence::Filter& filter)
{
    if (reason == Reason::FILTERED_SCENE) {
        return filter.ruleText.empty() ? Check::RULE_UNUSABLE : Check::NOT_SELECTED;
    }
    return filter.deviceValue.empty() ? Check::DATA_MISSING : Evidence::CheckOf(reason);
}

void VisitReason(Reason reason, const Visitor& visit)
{
    visit(reason, Evidence::CheckOf(reason));
}

bool HasOtherWindow(const Evidence::Alarm& alarm, const Evidence::Window& absent)
{
    return std::any_of(alarm.windows.begin(), alarm.windows.end(), [&absent](const Evidence::Window& window) {
        return window.item == absent.item && window.reason != Reason::WINDOW_ABSENT;
    });
}

void VisitWindows(const Evidence::Alarm& alarm, bool fired, const Visitor& visit)
{
    for (const Evidence::Window& window : alarm.windows) {
        if (window.reason != Reason::WINDOW_ABSENT || !HasOtherWindow(alarm, window)) {
            VisitReason(window.reason, visit);
        }
        for (const Reason note : window.notes) {
            if (window.hit || !fired) {
                VisitReason(note, visit);
            }
        }
    }
}

// True if a window was reached that further rows can't undo: it counts rows, not weights, which may be negative.
bool IsSureWithMoreRows(const Evidence::Alarm& alarm)
{
    using Evidence::Measure;
    return std::any_of(alarm.windows.begin(), alarm.windows.end(), [](const Evidence::Window& window) {
        return window.hit && window.count.measure != Measure::WEIGHTS
            && window.count.measure != Measure::DAILY_WEIGHTS;
    });
}

void VisitNotes(const Evidence::Rule& rule, const Evidence::Alarm* alarm, const Visitor& visit)
{
    for (const Reason note : rule.notes) {
        const bool isOfRows = note == Reason::LOG_DAMAGED || note == Reason::NO_VALUE;
        if (alarm == nullptr || !isOfRows || !IsSureWithMoreRows(*alarm)) {
            VisitReason(note, visit);
        }
    }
}

// What decided comes first.
void VisitReasons(const Evidence::Rule& rule, const Visitor& visit)
{
    // An alarm rule's reason is that of one of its windows.
    const auto* const alarm = std::get_if<Evidence::Alarm>(&rule.part);
    if (rule.filter) {
        visit(rule.reason, CheckOfFilter(rule.reason, *rule.filter));
    } else if (alarm != nullptr && !alarm->windows.empty()) {
        VisitWindows(*alarm, rule.verdict == Evidence::Verdict::FIRED, visit);
    } else {
        VisitReason(rule.reason, visit);
    }
    if (const auto* const command = std::get_if<Evidence::Command>(&rule.part)) {
        for (const Evidence::Statement& statement : command->statements) {
            VisitReason(statement.reason, visit);
        }
    }
    VisitNotes(rule, alarm, visit);
}

std::string DetailOf(const Evidence::Alarm& alarm, Reason reason)
{
    for (const Evidence::Window& window : alarm.windows) {
        if (reason == Reason::REPAIR_UNREADABLE && window.start && !window.start->unreadableRepair.empty()) {
            return window.start->unreadableRepair;
        }
    }
    return {};
}

std::string DetailOf(const Evidence::Node& node)
{
    for (const Evidence::NodeFile& file : node.files) {
        if (!file.readable) {
            return file.path;
        }
    }
    return {};
}

std::string DetailOf(const Evidence::Command& command, Reason reason)
{
    if (reason == Reason::REPAIR_UNREADABLE && command.start) {
        return command.start->unreadableRepair;
    }
    for (const Evidence::Statement& statement : command.statements) {
        if (reason == Reason::STATEMENT_FAILED && !statement.error.empty()) {
            return statement.error; // it may have failed behind the row that decided
        }
        if (statement.reason == reason) {
            return statement.database;
        }
    }
    return {};
}

} // namespace

Check CheckOfRule(const Evidence::Rule& rule)
{
    Check worst = Check::NONE;
    VisitReasons(rule, [&worst](Reason, Check check) { worst = Evidence::WorseOf(worst, check); });
    return worst;
}

Reason ReasonOfCheck(const Evidence::Rule& rule)
{
    Reason first = Reason::NONE;
    VisitReasons(rule, [&](Reason reason, Check check) {
        if (first == Reason::NONE && check == rule.check) {
            first = reason;
        }
    });
    return first;
}

std::string DetailOfCheck(const Evidence::Rule& rule)
{
    const Reason reason = ReasonOfCheck(rule);
    if (rule.badName) {
        return *rule.badName;
    }
    if (reason == Reason::NODE_UNREADABLE) {
        return DetailOf(std::get<Evidence::Node>(rule.part));
    }
    if (const auto* const command = std::get_if<Evidence::Command>(&rule.part)) {
        return DetailOf(*command, reason);
    }
    const auto* const alarm = std::get_if<Evidence::Alarm>(&rule.part);
    if (reason == Reason::LOG_DAMAGED || (alarm != nullptr && reason == Reason::NO_VALUE)) {
        return rule.logProblem;
    }
    return alarm == nullptr ? "" : DetailOf(*alarm, reason);
}

Check CheckOfAlternative(const Evidence::Alternative& alternative)
{
    Check worst = Check::NONE;
    Check worstAnswer = Check::NONE;
    Check last = Check::NONE;
    bool fired = true;
    for (const Evidence::Rule& rule : alternative.rules) {
        if (rule.reason == Reason::GROUP_ENDED) {
            break;
        }
        last = rule.check;
        fired = rule.verdict == Evidence::Verdict::FIRED;
        worst = Evidence::WorseOf(worst, last);
        worstAnswer = Evidence::WorseOf(worstAnswer, Evidence::IsOpen(last) ? Check::NONE : last);
    }
    return fired || Evidence::IsOpen(last) ? worst : worstAnswer;
}
