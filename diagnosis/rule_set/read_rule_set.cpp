#include "diagnosis/rule_set/read_rule_set.h"

#include <algorithm>

#include "diagnosis/text/near_match.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::SourceFile;

std::optional<Failure> ProblemOf(const SourceFile& file)
{
    if (file.IsLoaded()) {
        return std::nullopt;
    }
    const bool isMissing = file.GetState() == SourceFile::State::MISSING;
    const std::string line = file.ProblemLine() > 0 ? ":" + std::to_string(file.ProblemLine()) : "";
    return Failure{isMissing ? FailureCode::RULE_FILE_MISSING : FailureCode::RULE_FILE_MALFORMED,
        file.Path() + line + ": " + file.Problem()};
}

std::optional<Failure> UnknownTag(const SourceFile& trees, const std::string& tag, const std::vector<std::string>& tags)
{
    const std::string reason = tags.empty() ? "it has no tag" : "it has no tag \"" + tag + "\"" + DidYouMean(tag, tags);
    return Failure{FailureCode::NO_TREE, trees.Path() + ": " + reason};
}

} // namespace

const rule_source::RuleSet* ReadRuleSet::Find(const std::string& tag) const
{
    const auto found = std::find_if(tags.begin(), tags.end(), [&tag](const auto& read) { return read->tag == tag; });
    return found == tags.end() ? nullptr : found->get();
}

std::optional<Failure> ReadInto(const Selection& selection, ReadRuleSet& target)
{
    target.folder = selection.folder;
    target.files = rule_source::ReadRuleSetFiles(selection.folder, selection.prefix);
    for (const auto* file : {target.files.trees.get(), target.files.rules.get()}) {
        if (auto problem = ProblemOf(*file)) {
            return problem;
        }
    }
    const std::vector<std::string> tags = rule_source::TagsOf(target.files.TreeRoot(), {});
    for (const std::string& tag : tags) {
        if (selection.tag.empty() || selection.tag == tag) {
            target.tags.push_back(std::make_unique<rule_source::RuleSet>(target.files, tag));
        }
    }
    return target.tags.empty() ? UnknownTag(*target.files.trees, selection.tag, tags) : std::nullopt;
}

} // namespace diagnosis::rule_set
