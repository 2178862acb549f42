#include "tools/arborist/render/results_diff_text.h"

#include <algorithm>

#include "diagnosis/text/printable.h"

namespace diagnosis::command {

namespace {

using results_db::CauseChange;
using results_db::NotComparable;
using results_db::Occurrences;
using results_db::ResultsDiff;
using results_db::ResultsSide;
using results_db::TreeVerdict;

// The longest list; a comparison of two quite different rule sets would fill screens.
constexpr std::size_t MOST_LISTED = 30;

std::string Joined(const std::vector<std::string>& texts, const char* separator)
{
    std::string text;
    for (const std::string& part : texts) {
        text += (text.empty() ? "" : separator) + Printable(part);
    }
    return text;
}

std::string Count(std::int64_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// In columns of this width, to the right.
std::string Right(const std::string& text, std::size_t width)
{
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

// "3: b1, b2, ..."
std::string Examples(const Occurrences& bundles)
{
    const bool areAll = bundles.count <= static_cast<std::int64_t>(bundles.examples.size());
    return Joined(bundles.examples, ", ") + (areAll ? "" : ", ...");
}

std::string SideText(const char* name, const ResultsSide& side)
{
    std::string text = std::string(name) + " " + Printable(side.path) + ": " + Count(side.bundles, "bundle");
    text += side.failed == 0 ? "" : ", " + std::to_string(side.failed) + " failed";
    text += "\n        engine " + (side.engines.empty() ? "not known" : Joined(side.engines, ", "));
    text += "\n        rules  " + (side.ruleSets.empty() ? "not known" : Joined(side.ruleSets, ", "));
    if (!side.firstMoment.empty()) {
        text += "\n        now    " + side.firstMoment;
        text += side.firstMoment == side.lastMoment ? "" : " to " + side.lastMoment;
    }
    return text + "\n";
}

std::string WhatDiffers(const ResultsDiff& diff)
{
    std::vector<std::string> differs;
    if (diff.before.engines != diff.after.engines) {
        differs.push_back("engine");
    }
    if (diff.before.ruleSets != diff.after.ruleSets) {
        differs.push_back("rules");
    }
    if (diff.otherMoment > 0) {
        differs.push_back("the moment of " + Count(diff.otherMoment, "bundle"));
    }
    return "differs: " + (differs.empty() ? "neither engine nor rules nor moments" : Joined(differs, ", ")) + "\n";
}

// The verdicts that occur on either side.
std::vector<std::size_t> ShownVerdicts(const ResultsDiff& diff)
{
    std::vector<std::size_t> shown;
    for (std::size_t verdict = 0; verdict < results_db::TREE_VERDICTS; ++verdict) {
        std::int64_t trees = 0;
        for (std::size_t other = 0; other < results_db::TREE_VERDICTS; ++other) {
            trees += diff.matrix[verdict][other] + diff.matrix[other][verdict];
        }
        if (trees > 0) {
            shown.push_back(verdict);
        }
    }
    return shown;
}

std::string MatrixText(const ResultsDiff& diff, const Colour& colour)
{
    static constexpr std::size_t WIDTH = 16;
    if (diff.compared == 0) {
        return "";
    }
    const auto word = [](std::size_t verdict) { return VerdictWord(static_cast<TreeVerdict>(verdict)); };
    const std::vector<std::size_t> shown = ShownVerdicts(diff);
    std::string text = "\nverdicts in " + Count(diff.compared, "bundle") + ", before (down) and after (across):\n"
        + Right("", WIDTH);
    for (const std::size_t after : shown) {
        text += Right(word(after), WIDTH);
    }
    for (const std::size_t before : shown) {
        text += "\n" + Right(word(before), WIDTH);
        for (const std::size_t after : shown) {
            const std::string number = Right(std::to_string(diff.matrix[before][after]), WIDTH);
            text += before != after && diff.matrix[before][after] > 0 ? colour.Yellow(number) : number;
        }
    }
    return text + "\n";
}

std::string CauseName(const CauseChange& cause)
{
    return Shown(cause.tree) + ": " + Joined(cause.cutSet, " & ");
}

bool IsListed(const CauseChange& cause)
{
    return cause.added.count + cause.gone.count + cause.notComparable.count > 0;
}

std::string RestText(std::size_t listed)
{
    return listed <= MOST_LISTED ? "" : "  and " + std::to_string(listed - MOST_LISTED) + " more, see --json\n";
}

std::string CausesText(const ResultsDiff& diff, const Colour& colour)
{
    static constexpr std::size_t WIDTH = 9;
    std::int64_t unchanged = 0;
    std::int64_t notComparable = 0;
    for (const CauseChange& cause : diff.causes) {
        unchanged += cause.unchanged.count;
        notComparable += cause.notComparable.count;
    }
    std::string text = "\nroot causes: " + std::to_string(diff.Added()) + " new, " + std::to_string(diff.Gone()) + " gone, "
        + std::to_string(unchanged) + " unchanged, " + std::to_string(notComparable) + " not comparable\n";
    std::size_t listed = 0;
    for (const CauseChange& cause : diff.causes) {
        if (!IsListed(cause) || ++listed > MOST_LISTED) {
            continue;
        }
        text += listed > 1 ? "" : "      new     gone unchanged not comp.\n";
        text += colour.Red(Right(std::to_string(cause.added.count), WIDTH))
            + colour.Green(Right(std::to_string(cause.gone.count), WIDTH))
            + Right(std::to_string(cause.unchanged.count), WIDTH + 1)
            + Right(std::to_string(cause.notComparable.count), WIDTH + 1) + "  " + CauseName(cause) + "  "
            + colour.Faint(Printable(cause.name)) + "\n";
    }
    return text + RestText(listed);
}

// One line for each kind of change, with bundles to look at.
std::string ExamplesText(const ResultsDiff& diff, const Colour& colour)
{
    std::vector<std::string> lines;
    for (const results_db::VerdictChange& change : diff.verdicts) {
        lines.push_back(colour.Yellow("~") + " " + Shown(change.tree) + ": " + VerdictWord(change.before) + " -> "
            + VerdictWord(change.after) + " in " + Count(change.bundles.count, "bundle") + ": "
            + Examples(change.bundles));
    }
    for (const CauseChange& cause : diff.causes) {
        if (cause.added.count > 0) {
            lines.push_back(colour.Red("+") + " " + CauseName(cause) + ": " + Examples(cause.added));
        }
        if (cause.gone.count > 0) {
            lines.push_back(colour.Green("-") + " " + CauseName(cause) + ": " + Examples(cause.gone));
        }
    }
    std::string text = lines.empty() ? "" : "\nexamples:\n";
    for (std::size_t line = 0; line < std::min(lines.size(), MOST_LISTED); ++line) {
        text += "  " + lines[line] + "\n";
    }
    return text + RestText(lines.size());
}

std::string NotComparableText(NotComparable reason, const Occurrences& occurrences)
{
    static constexpr struct {
        const char* what;
        const char* why;
    } TEXTS[] = {{"bundle", "only after"}, {"bundle", "only before"}, {"bundle", "failed before"},
        {"bundle", "failed after"}, {"bundle", "failed on both sides"}, {"tree", "undecided before"},
        {"tree", "undecided after"}, {"tree", "undecided on both sides"}, {"root cause", "with open checks before"},
        {"root cause", "with open checks after"}};
    const auto& text = TEXTS[static_cast<std::size_t>(reason)];
    return "  " + Count(occurrences.count, text.what) + " " + text.why + ": " + Examples(occurrences) + "\n";
}

std::string NotComparedText(const ResultsDiff& diff)
{
    std::string text;
    for (std::size_t reason = 0; reason < diff.notComparable.size(); ++reason) {
        if (diff.notComparable[reason].count > 0) {
            text += NotComparableText(static_cast<NotComparable>(reason), diff.notComparable[reason]);
        }
    }
    return text.empty() ? "" : "\nnot comparable, and neither new nor gone:\n" + text;
}

std::string NewlyOpenText(const ResultsDiff& diff)
{
    std::string text = diff.newlyOpen.empty() ? "" : "\nnewly open checks:\n";
    for (std::size_t place = 0; place < std::min(diff.newlyOpen.size(), MOST_LISTED); ++place) {
        const results_db::NewlyOpen& open = diff.newlyOpen[place];
        text += "  " + Shown(open.tree) + ": " + Shown(open.event) + (open.rule.empty() ? "" : " by " + Shown(open.rule))
            + ": " + Printable(open.reason) + " in " + Count(open.bundles.count, "bundle") + ": "
            + Examples(open.bundles) + "\n";
    }
    return text + RestText(diff.newlyOpen.size());
}

} // namespace

std::string ResultsDiffText(const ResultsDiff& diff, const Colour& colour)
{
    return SideText("before:", diff.before) + SideText("after: ", diff.after) + WhatDiffers(diff)
        + MatrixText(diff, colour) + CausesText(diff, colour) + ExamplesText(diff, colour) + NotComparedText(diff)
        + NewlyOpenText(diff);
}

} // namespace diagnosis::command
