#include "tests/support/recording_observer.h"

#include "tests/support/evidence_lines.h"

namespace {

const char* Text(Evidence::RuleSetFileState state)
{
    switch (state) {
    case Evidence::RuleSetFileState::LOADED:
        return "loaded";
    case Evidence::RuleSetFileState::MISSING:
        return "missing";
    case Evidence::RuleSetFileState::MALFORMED:
        return "malformed";
    }
    return "";
}

const char* Text(Evidence::Trouble::Kind kind)
{
    switch (kind) {
    case Evidence::Trouble::Kind::STATEMENT_FAILED:
        return "statement";
    case Evidence::Trouble::Kind::EVENT_LOG_UNREADABLE:
        return "log";
    case Evidence::Trouble::Kind::REPAIRS_UNREADABLE:
        return "repairs";
    case Evidence::Trouble::Kind::BAD_EXTRA:
        return "extra";
    case Evidence::Trouble::Kind::NO_COPY_FOLDER:
        return "copies";
    case Evidence::Trouble::Kind::NOT_COPIED:
        return "copy";
    case Evidence::Trouble::Kind::TABLE_NOT_BUILT:
        return "table";
    case Evidence::Trouble::Kind::REPAIR_HISTORY_LOST:
        return "repair history";
    case Evidence::Trouble::Kind::NO_THRESHOLDS:
        return "thresholds";
    case Evidence::Trouble::Kind::CAUSES_LEFT_OUT:
        return "causes";
    }
    return "";
}

} // namespace

std::vector<std::string> RecordingObserver::Lines(const std::string& word) const
{
    return LinesOfWord(mLines, word);
}

void RecordingObserver::OnRuleSetRead(Evidence::RuleSet ruleSet)
{
    for (const Evidence::RuleSetFile& file : ruleSet.files) {
        const char* type = file.type == Evidence::RuleSetFileType::TREES ? "trees " : "rules ";
        mLines.push_back(std::string("file ") + type + Text(file.state) + " " + file.path + " count "
            + std::to_string(file.count) + " line " + std::to_string(file.line) + (file.message.empty() ? "" : ": ")
            + file.message);
    }
    for (const Evidence::ExternalDatabase& database : ruleSet.databases) {
        mLines.push_back("database " + database.name + " '" + database.pattern + "'");
    }
}

void RecordingObserver::OnTreeStarted(Evidence::TreeHead tree)
{
    mLines.push_back("tree " + tree.id + " version " + tree.version + " type " + tree.type);
}

void RecordingObserver::OnEventDecided(Evidence::Event event)
{
    mLines.push_back("event " + event.id + " (" + event.name + ")");
    for (std::size_t alternative = 0; alternative < event.alternatives.size(); ++alternative) {
        const auto& rules = event.alternatives[alternative].rules;
        for (std::size_t place = 0; place < rules.size(); ++place) {
            const std::string inGroup = event.alternatives[alternative].inGroup ? "." + std::to_string(place) : "";
            AddRule(event.id, rules[place], "#" + std::to_string(alternative) + inGroup);
        }
    }
    mLines.push_back("decided " + event.id + (event.fired ? " TRUE" : " FALSE") + WhyText(event.reason));
}

void RecordingObserver::AddRule(const std::string& eventId, const Evidence::Rule& rule, const std::string& place)
{
    const std::string name = eventId + " " + rule.name + " " + Evidence::FamilyText(rule.GetFamily()) + " ";
    if (rule.reason != Evidence::Reason::GROUP_ENDED) {
        mLines.push_back("ask " + name + place);
    }
    const auto lines = EvidenceLines(rule);
    mLines.insert(mLines.end(), lines.begin(), lines.end());
    mLines.push_back("rule " + name + Evidence::VerdictText(rule.verdict) + WhyText(rule.reason));
}

void RecordingObserver::OnTreeFolded(std::vector<Evidence::FoldedEvent> events)
{
    for (const Evidence::FoldedEvent& event : events) {
        mLines.push_back("folded " + std::to_string(event.depth) + " " + TypeText(event.type)
            + (event.gate == Evidence::GateType::NONE ? "" : " ") + GateText(event.gate) + " "
            + event.id + " (" + event.name + ") " + Evidence::StateText(event.status)
            + (event.observable ? " observable" : "") + (event.userDefined.empty() ? "" : " ") + event.userDefined);
    }
}

void RecordingObserver::OnRootCause(Evidence::RootCause rootCause)
{
    mLines.push_back(
        "cause " + rootCause.id + ": " + TextOf(rootCause.cutSet, " & ") + " up " + TextOf(rootCause.wayUp));
}

void RecordingObserver::OnTreeFinished(Evidence::TreeResult result)
{
    mLines.push_back("finished " + result.id + (result.isFault ? " fault" : " no fault"));
}

void RecordingObserver::OnTrouble(Evidence::Trouble trouble)
{
    std::string line = std::string("trouble ") + Text(trouble.kind);
    for (const std::string* text : {&trouble.eventId, &trouble.ruleName, &trouble.subject, &trouble.file}) {
        line += text->empty() ? "" : " " + *text;
    }
    line += trouble.line == 0 ? "" : ":" + std::to_string(trouble.line);
    mLines.push_back(line + (trouble.words.empty() ? "" : ": " + trouble.words));
}
