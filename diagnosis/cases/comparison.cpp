#include "diagnosis/cases/comparison.h"

#include <algorithm>
#include <map>
#include <set>

#include "diagnosis/text/near_match.h"

namespace diagnosis::cases {

namespace {

using Ids = std::vector<std::string>;

Difference Replaced(std::string subject, std::string expected, std::string found, std::string note = "")
{
    return {std::move(subject), {{std::move(expected), ""}}, {{std::move(found), std::move(note)}}};
}

std::string Joined(const Ids& ids)
{
    std::string text;
    for (const std::string& id : ids) {
        text += (text.empty() ? "" : ", ") + id;
    }
    return text.empty() ? "none" : text;
}

std::string Joined(const std::set<std::string>& words)
{
    return Joined(Ids(words.begin(), words.end()));
}

// What of `ids` is not in `others`, counting repetitions, in the order of `ids`.
Ids Without(const Ids& ids, const Ids& others)
{
    std::map<std::string, std::size_t> left;
    for (const std::string& other : others) {
        ++left[other];
    }
    Ids rest;
    for (const std::string& id : ids) {
        const auto found = left.find(id);
        if (found == left.end() || found->second == 0) {
            rest.push_back(id);
        } else {
            --found->second;
        }
    }
    return rest;
}

Ids AsSet(Ids ids)
{
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

/// The answers of one detection by the names that cases use.
class Answer {
public:
    explicit Answer(const DetectionReport& report) : mReport(report)
    {
        for (std::size_t i = 0; i < report.trees.size(); ++i) {
            mTrees.emplace(report.trees[i].Id(), i);
            Index(report.trees[i].tree);
        }
    }

    /// Index of a tree in the report; nothing for one that it doesn't have. Of two trees with one id the first.
    std::optional<std::size_t> Tree(const std::string& id) const
    {
        const auto found = mTrees.find(id);
        return found == mTrees.end() ? std::nullopt : std::optional(found->second);
    }

    Ids CausesOf(std::size_t tree) const
    {
        Ids ids;
        for (const auto& cause : mReport.trees[tree].result->mRootCauseResults) {
            ids.push_back(cause->mNode->mId);
        }
        return ids;
    }

    const Evidence::TreeVerdict& VerdictOf(std::size_t tree) const { return mReport.trees[tree].verdict; }

    /// The words in all places of a name; null for an unknown one.
    const std::set<std::string>* StatusesOf(const std::string& event) const { return Find(mStatuses, event); }
    const std::set<std::string>* ReasonsOf(const std::string& name) const
    {
        const auto* const reasons = Find(mRuleReasons, name);
        return reasons == nullptr ? Find(mEventReasons, name) : reasons;
    }

    Ids TreeIds() const { return KeysOf(mTrees); }
    Ids EventIds() const { return KeysOf(mStatuses); }
    Ids RuleNamesAndEventIds() const
    {
        Ids names = KeysOf(mRuleReasons);
        const Ids events = KeysOf(mEventReasons);
        names.insert(names.end(), events.begin(), events.end());
        return names;
    }

    /// What decided an event: "rule charge_lost: window_short"; empty if nothing did.
    std::string WhyOf(const std::string& event) const
    {
        const auto why = mWhy.find(event);
        return why == mWhy.end() ? "" : why->second;
    }

    /// The same with its status in front; empty for an unknown event.
    std::string StatusAndWhyOf(const std::string& event) const
    {
        const auto* const statuses = StatusesOf(event);
        const std::string why = WhyOf(event);
        return statuses == nullptr ? "" : Joined(*statuses) + (why.empty() ? "" : ", " + why);
    }

private:
    using Words = std::map<std::string, std::set<std::string>>;

    void Index(const RecordedTree& tree)
    {
        for (const RecordedEvent& event : tree.events) {
            mStatuses[event.id].insert(Evidence::StateText(event.status));
            const Reason reason = ReasonOfEvent(tree, event);
            if (reason != Reason::NONE) {
                mEventReasons[event.id].insert(Evidence::ReasonText(reason));
                mWhy.emplace(event.id, Evidence::ReasonText(reason));
            }
        }
        for (const Evidence::Event& event : tree.evidence) {
            for (const PlacedRule& placed : RulesOf(event)) {
                const std::string reason = Evidence::ReasonText(placed.rule.reason);
                mRuleReasons[placed.rule.name].insert(reason);
                mWhy.emplace(event.id, "rule " + placed.rule.name + ": " + reason);
            }
        }
    }

    static const std::set<std::string>* Find(const Words& words, const std::string& name)
    {
        const auto found = words.find(name);
        return found == words.end() ? nullptr : &found->second;
    }

    template <typename Map>
    static Ids KeysOf(const Map& map)
    {
        Ids keys;
        for (const auto& [key, value] : map) {
            keys.push_back(key);
        }
        return keys;
    }

    const DetectionReport& mReport;
    std::map<std::string, std::size_t> mTrees;
    Words mStatuses;
    Words mRuleReasons;
    Words mEventReasons;
    std::map<std::string, std::string> mWhy;
};

class Comparer {
public:
    Comparer(const Expectations& expected, const DetectionReport& report) : mExpected(expected), mAnswer(report) {}

    std::vector<Difference> Run(const std::vector<std::string>& logLines)
    {
        for (const auto& [tree, causes] : mExpected.causes) {
            CompareCauses(tree, causes);
        }
        for (const auto& [tree, word] : mExpected.verdicts) {
            CompareVerdict(tree, word);
        }
        CompareChecks();
        for (const auto& [event, word] : mExpected.statuses) {
            CompareStatus(event, word);
        }
        for (const auto& [name, word] : mExpected.reasons) {
            CompareReason(name, word);
        }
        CompareLog(logLines);
        return std::move(mDifferences);
    }

private:
    std::optional<std::size_t> TreeOf(const std::string& subject, const std::string& tree, const std::string& expected)
    {
        const auto index = mAnswer.Tree(tree);
        if (!index) {
            mDifferences.push_back(
                Replaced(subject, expected, "no such tree" + Suggestion(tree, &Answer::TreeIds)));
        }
        return index;
    }

    // A near name; none after the first few, as each looks at all names.
    std::string Suggestion(const std::string& name, Ids (Answer::*names)() const)
    {
        static constexpr std::size_t MOST_SUGGESTIONS = 20;
        return ++mSuggestions > MOST_SUGGESTIONS ? "" : DidYouMean(name, (mAnswer.*names)());
    }

    void CompareCauses(const std::string& tree, const Expectations::Causes& expected)
    {
        const std::string subject = "root causes of " + tree;
        const auto index = TreeOf(subject, tree, Joined(expected.ids));
        if (!index) {
            return;
        }
        Ids found = mAnswer.CausesOf(*index);
        found = expected.inOrder ? found : AsSet(found);
        const Ids wanted = expected.inOrder ? expected.ids : AsSet(expected.ids);
        if (found == wanted) {
            return;
        }
        Difference difference{subject, {}, {}};
        for (const std::string& id : Without(wanted, found)) {
            difference.missing.push_back({id, mAnswer.StatusAndWhyOf(id)});
        }
        for (const std::string& id : Without(found, wanted)) {
            difference.unexpected.push_back({id, mAnswer.StatusAndWhyOf(id)});
        }
        const bool isOrder = difference.missing.empty() && difference.unexpected.empty();
        mDifferences.push_back(
            isOrder ? Replaced("order of the " + subject, Joined(wanted), Joined(found)) : std::move(difference));
    }

    void CompareVerdict(const std::string& tree, const std::string& word)
    {
        const std::string subject = "verdict of " + tree;
        if (const auto index = TreeOf(subject, tree, word)) {
            const Evidence::TreeVerdict& verdict = mAnswer.VerdictOf(*index);
            const std::string found = Evidence::TreeVerdictText(verdict.word);
            if (found != word) {
                mDifferences.push_back(Replaced(subject, word, found, OpenText(verdict)));
            }
        }
    }

    // The open checks behind a verdict: "open: CHARGE_LOST (log_unavailable)".
    static std::string OpenText(const Evidence::TreeVerdict& verdict)
    {
        Ids open;
        for (const Evidence::OpenCheck& check : verdict.open) {
            open.push_back(check.eventId + " (" + Evidence::ReasonText(check.reason) + ")");
        }
        return open.empty() ? "" : "open: " + Joined(open);
    }

    void CompareChecks()
    {
        for (const std::string& tree : mExpected.decidedTrees) {
            const std::string subject = "checks of " + tree;
            if (const auto index = TreeOf(subject, tree, "all decided")) {
                const Evidence::TreeVerdict& verdict = mAnswer.VerdictOf(*index);
                const std::size_t decided = verdict.checks.Of(Evidence::Check::DECIDED);
                const std::size_t total = verdict.checks.Total();
                if (decided < total || total == 0) {
                    mDifferences.push_back(Replaced(subject, "all decided", std::to_string(decided) + " of "
                        + std::to_string(total) + " decided", OpenText(verdict)));
                }
            }
        }
        for (const auto& [tree, counts] : mExpected.checks) {
            const auto index = TreeOf("checks of " + tree, tree, "numbers of checks");
            for (const auto& [word, count] : index ? counts : std::map<std::string, std::size_t>()) {
                const std::size_t found = CountOf(mAnswer.VerdictOf(*index).checks, word);
                if (found != count) {
                    mDifferences.push_back(Replaced("checks of " + tree + " that are " + word, std::to_string(count),
                        std::to_string(found), OpenText(mAnswer.VerdictOf(*index))));
                }
            }
        }
    }

    static std::size_t CountOf(const Evidence::CheckCounts& counts, const std::string& word)
    {
        using Evidence::Check;
        for (const Check check : {Check::DECIDED, Check::NOT_APPLICABLE, Check::NOT_SELECTED, Check::NOT_CHECKED,
                 Check::DATA_MISSING, Check::RULE_UNUSABLE}) {
            if (word == Evidence::CheckText(check)) {
                return counts.Of(check);
            }
        }
        return word == "open" ? counts.Open() : counts.Total();
    }

    void CompareStatus(const std::string& event, const std::string& word)
    {
        const auto* const found = mAnswer.StatusesOf(event);
        const std::string subject = "status of " + event;
        if (found == nullptr) {
            mDifferences.push_back(
                Replaced(subject, word, "no such event" + Suggestion(event, &Answer::EventIds)));
        } else {
            CompareWord(subject, word, *found, mAnswer.WhyOf(event));
        }
    }

    void CompareReason(const std::string& name, const std::string& word)
    {
        const auto* const found = mAnswer.ReasonsOf(name);
        const std::string subject = "reason of " + name;
        if (found == nullptr) {
            mDifferences.push_back(Replaced(subject, word,
                "no such rule or event was asked" + Suggestion(name, &Answer::RuleNamesAndEventIds)));
        } else {
            CompareWord(subject, word, *found, "");
        }
    }

    void CompareWord(const std::string& subject, const std::string& word, const std::set<std::string>& found,
        const std::string& note)
    {
        if (found.size() != 1 || *found.begin() != word) {
            mDifferences.push_back(Replaced(subject, word, Joined(found), note));
        }
    }

    void CompareLog(const std::vector<std::string>& lines)
    {
        const auto holding = [&lines](const std::string& text) {
            return std::find_if(lines.begin(), lines.end(),
                [&text](const std::string& line) { return line.find(text) != std::string::npos; });
        };
        Difference difference{"log", {}, {}};
        for (const std::string& text : mExpected.log) {
            if (holding(text) == lines.end()) {
                difference.missing.push_back({text, ""});
            }
        }
        for (const std::string& text : mExpected.noLog) {
            const auto line = holding(text);
            if (line != lines.end()) {
                difference.unexpected.push_back({*line, ""});
            }
        }
        if (!difference.missing.empty() || !difference.unexpected.empty()) {
            mDifferences.push_back(std::move(difference));
        }
    }

    const Expectations& mExpected;
    Answer mAnswer;
    std::vector<Difference> mDifferences;
    std::size_t mSuggestions = 0;
};

} // namespace

std::vector<Difference> Compare(
    const Expectations& expected, const DetectionReport& report, const std::vector<std::string>& logLines)
{
    return Comparer(expected, report).Run(logLines);
}

} // namespace diagnosis::cases
