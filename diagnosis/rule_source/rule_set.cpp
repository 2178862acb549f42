#include "diagnosis/rule_source/rule_set.h"

#include <future>
#include <utility>

#include "diagnosis/digest/digest.h"

namespace diagnosis::rule_source {

namespace {

/// Looks up names in a map. Tries the entry after the last match first, as both files usually have the same order.
template <typename Map>
class NextFirst {
public:
    explicit NextFirst(const Map& map) : mMap(map), mNext(map.begin()) {}

    /// Null for a name that is not there.
    const typename Map::mapped_type* Find(std::string_view name)
    {
        if (mNext == mMap.end() || mNext->first != name) {
            mNext = mMap.find(name);
        }
        if (mNext == mMap.end()) {
            return nullptr;
        }
        return &(mNext++)->second;
    }

private:
    const Map& mMap;
    typename Map::const_iterator mNext;
};

} // namespace

RuleSetFiles ReadRuleSetFiles(const std::string& folder, const std::string& prefix)
{
    const std::string start = folder + "/" + (prefix.empty() ? "" : prefix + "_");
    return ReadRuleSetFiles(RuleSetPaths{start + "FaultTrees.xml", start + "FaultTreeRules.xml"});
}

bool AreRead(const RuleSetContents& contents)
{
    return contents.trees.state == SourceFile::State::LOADED && contents.rules.state == SourceFile::State::LOADED;
}

std::string DigestOfTexts(const RuleSetContents& contents)
{
    return Sha256HexOf({contents.trees.text, contents.rules.text});
}

RuleSetContents ReadRuleSetContents(const RuleSetPaths& paths)
{
    return {SourceFile::ReadContent(paths.treeFile), SourceFile::ReadContent(paths.ruleFile)};
}

RuleSetFiles ParseRuleSetFiles(RuleSetContents contents)
{
    // Parsing takes a quarter of the time of a lint; each file has a processor of its own if there are two. A small one is
    // parsed before a thread has started.
    static constexpr std::size_t SMALL = 256 * 1024;
    const auto how = contents.trees.text.size() < SMALL ? std::launch::deferred : std::launch::async;
    auto trees = std::async(how, [&contents] { return SourceFile::Of(std::move(contents.trees)); });
    auto rules = SourceFile::Of(std::move(contents.rules));
    return {trees.get(), std::move(rules)};
}

RuleSetFiles ReadRuleSetFiles(const RuleSetPaths& paths)
{
    return ParseRuleSetFiles(ReadRuleSetContents(paths));
}

RuleSet::RuleSet(const RuleSetFiles& setFiles, const std::string& setTag) : files(setFiles), tag(setTag)
{
    hasTrees = files.trees != nullptr && files.trees->IsLoaded();
    hasRules = files.rules != nullptr && files.rules->IsLoaded();
    treeTag = files.TreeRoot().FirstChild(tag.c_str());
    trees = ReadTrees(treeTag);
    for (const SectionKind kind : SECTION_KINDS) {
        sections[static_cast<std::size_t>(kind)] = FindSection(files.RuleRoot(), SectionName(kind), tag);
    }
    bindings = ReadBindings(SectionOf(SectionKind::EVENT_RULES).tag);
    rules = ReadRules(SectionOf(SectionKind::RULE_LIST).tag);
    faultDescriptions = ReadDescriptions(
        SectionKind::FAULT_DESCRIPTIONS, SectionOf(SectionKind::FAULT_DESCRIPTIONS).tag);
    solutions = ReadDescriptions(SectionKind::SOLUTIONS, SectionOf(SectionKind::SOLUTIONS).tag);
    repairs = ReadDescriptions(SectionKind::REPAIR_DESCRIPTIONS, SectionOf(SectionKind::REPAIR_DESCRIPTIONS).tag);
    commonPart = ReadCommonPart(SectionOf(SectionKind::COMMON_PART).tag);
    unread.Look(treeTag, WordsOfTreeTag());
    for (const SectionKind kind : SECTION_KINDS) {
        unread.Look(SectionOf(kind).tag, *WordsOfSectionTag(SectionName(kind)));
    }
    for (std::size_t event = 0; event < trees.events.size(); ++event) {
        // Rule sets are mostly sorted by id: then the place at the end is the right one.
        eventsById.emplace_hint(eventsById.end(), trees.events[event].id, event);
    }
    Link();
}

void RuleSet::Link()
{
    NextFirst bindingsById(bindings.byId);
    for (TreeEvent& event : trees.events) {
        const std::size_t* const binding = bindingsById.Find(event.id);
        event.binding = binding == nullptr ? nullptr : &bindings.all[*binding];
    }
    NextFirst events(eventsById);
    const auto eventOf = [&](std::string_view id) {
        const std::size_t* const event = events.Find(id);
        return event == nullptr ? nullptr : &trees.events[*event];
    };
    NextFirst rulesByName(rules.byName);
    for (Binding& binding : bindings.all) {
        binding.event = eventOf(binding.id);
        for (BindingAlternative& alternative : binding.alternatives) {
            for (RuleName& name : alternative.names) {
                const Rule* const* const rule = rulesByName.Find(name.name);
                name.rule = rule == nullptr ? nullptr : *rule;
            }
        }
    }
    for (Descriptions* section : {&faultDescriptions, &solutions, &repairs}) {
        for (DescriptionItem& item : section->items) {
            item.event = eventOf(item.id);
        }
    }
}

} // namespace diagnosis::rule_source
