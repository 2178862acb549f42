#include "diagnosis/redaction/affected_rules.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include "diagnosis/lint/reading/weighted_ids.h"
#include "diagnosis/redaction/redaction_file.h"

namespace diagnosis {

namespace {

using rule_source::AlarmItem;
using rule_source::AlarmRule;
using rule_source::CommandRule;
using rule_source::Family;
using rule_source::NodeRule;
using rule_source::Rule;
using rule_source::RuleSet;
using rule_source::ThresholdBean;

/// Event numbers from first to last.
struct Range {
    std::int64_t first;
    std::int64_t last;
};
using Ranges = std::vector<Range>;

// The events of a derived table whose items have no number.
const Ranges DEFAULT_EVENTS = {{902000000, 902499999}, {902500007, 902500007}};

std::string Lower(std::string_view text)
{
    return LowerLetters(std::string(text));
}

// The names and keywords of a text in lower case: what letters, digits, "_" and bytes above ASCII make.
std::set<std::string> WordsOf(const std::string& text)
{
    const auto isPart = [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') || byte == '_'
            || static_cast<unsigned char>(byte) >= 0x80;
    };
    std::set<std::string> words;
    for (auto at = text.begin(); at != text.end();) {
        const auto begin = std::find_if(at, text.end(), isPart);
        at = std::find_if_not(begin, text.end(), isPart);
        if (begin != at) {
            words.emplace(begin, at);
        }
    }
    return words;
}

bool IsAny(const RedactedRows& rows, const Ranges& ranges)
{
    return rows.hasOtherEvents || std::any_of(ranges.begin(), ranges.end(), [&rows](const Range& range) {
        const auto event = rows.events.lower_bound(range.first);
        return event != rows.events.end() && *event <= range.last;
    });
}

// The part of a range whose rows count as many as their "COUNT" says.
Ranges Weighted(const rule_source::IdRange& ids)
{
    Ranges weighted;
    for (const lint::WeightedIds& one : lint::WEIGHTED_IDS) {
        const Range both{std::max(one.first, ids.first), std::min(one.last, ids.last)};
        if (!ids.IsEmpty() && both.first <= both.last) {
            weighted.push_back(both);
        }
    }
    return weighted;
}

Ranges EventsOf(const ThresholdBean& bean)
{
    Ranges ranges;
    for (const rule_source::DataItem& item : bean.dataItems) {
        if (!item.ids.IsEmpty()) {
            ranges.push_back({item.ids.first, item.ids.last});
        }
    }
    return ranges.empty() ? DEFAULT_EVENTS : ranges;
}

// What the building of a derived table reads of an event, in lower case.
std::set<std::string> MembersOfTable(const ThresholdBean& bean)
{
    std::set<std::string> members = {"casename", "fieldname", "occurrence_time"};
    for (const rule_source::DataItem& item : bean.dataItems) {
        for (const rule_source::Param& param : item.params.Params()) {
            members.insert(Lower(param.key));
        }
    }
    return members;
}

/// Finds what one rule after the other reads of what was replaced.
class Search {
public:
    Search(const RuleSet& rules, const RedactionReport& report) : mReport(report)
    {
        ReadTables(rules.commonPart);
        for (const std::string& key : report.bundleKeys) {
            mKeys.insert(key);
        }
        for (const std::string& table : report.derivedTables) {
            mOldTables.merge(WordsOf(table));
        }
        mNodes.insert(report.nodeFiles.begin(), report.nodeFiles.end());
    }

    std::vector<std::string> ReadsOf(const Rule& rule)
    {
        mReads.clear();
        LookAtFilters(rule);
        if (rule.family == Family::ALARM) {
            LookAt(static_cast<const AlarmRule&>(rule));
        } else if (rule.family == Family::COMMAND) {
            LookAt(static_cast<const CommandRule&>(rule));
        } else if (rule.family == Family::NODE) {
            for (const rule_source::NodeInfo& node : static_cast<const NodeRule&>(rule).nodes) {
                NoteIf(mNodes.count(std::string(node.path)) != 0, "node file " + std::string(node.path));
            }
        }
        return mReads;
    }

private:
    void NoteIf(bool isRead, const std::string& what)
    {
        if (isRead && std::find(mReads.begin(), mReads.end(), what) == mReads.end()) {
            mReads.push_back(what);
        }
    }
    void NoteKey(bool isRead, const char* key) { NoteIf(isRead && mKeys.count(key) != 0, key); }

    void LookAtFilters(const Rule& rule)
    {
        NoteKey(!rule.production.empty() || !rule.blackProducts.empty(), "device.Product");
        NoteKey(!rule.platform.empty(), "device.Platform");
        NoteKey(!rule.deviceType.empty(), "device.DeviceType");
    }

    void LookAt(const AlarmRule& rule)
    {
        for (const AlarmItem& item : rule.items) {
            NoteKey(item.beginFlag == "1" || item.beginFlag == "2", "settings.VersionName");
            const Ranges ids = item.ids.IsEmpty() ? Ranges() : Ranges{{item.ids.first, item.ids.last}};
            if (item.HasTests()) {
                NoteMembers(MembersOf(item), ids);
                NoteWhole(ids);
            } else if (const Ranges weighted = Weighted(item.ids); !weighted.empty()) {
                NoteMembers({"count"}, weighted);
                NoteWhole(weighted);
            }
        }
    }

    static std::set<std::string> MembersOf(const AlarmItem& item)
    {
        std::set<std::string> members;
        for (const rule_source::ConditionAlternative& alternative : item.condition.alternatives) {
            for (const rule_source::Test& test : alternative.tests) {
                if (const rule_source::Param* const param = item.params.Find(test.id)) {
                    members.insert(Lower(param->key));
                }
            }
        }
        return members;
    }

    void NoteMembers(const std::set<std::string>& members, const Ranges& ids)
    {
        for (const RedactedMember& member : mReport.members) {
            NoteIf(members.count(LowerLetters(member.name)) != 0 && IsAny(member.where, ids),
                "member " + member.name + " of the event log");
        }
    }
    void NoteWhole(const Ranges& ids)
    {
        NoteIf(IsAny(mReport.wholeTexts, ids), "events whose extra is no JSON object");
    }

    void LookAt(const CommandRule& rule)
    {
        for (const rule_source::ConditionAlternative& alternative : rule.condition.alternatives) {
            for (const rule_source::Test& test : alternative.tests) {
                const bool isOfDevice = test.logicType == "dynamic" || test.logicType == "systemParam";
                for (const char* key : {"device.CpuName", "device.RamSize", "device.Resolution", "device.BatteryCapacity"}) {
                    NoteKey(isOfDevice, key);
                }
            }
        }
        if (!rule.referenceDefDb) {
            LookAtTables(Lower(rule.sql));
        }
    }

    void LookAtTables(const std::string& sql)
    {
        std::set<const ThresholdBean*> beans;
        const std::set<std::string> words = WordsOf(sql);
        for (const std::string& word : words) {
            const auto [first, last] = mTables.equal_range(word);
            std::for_each(first, last, [&beans](const auto& table) { beans.insert(table.second); });
            const bool isOld = mOldTables.count(word) != 0 && (!mAreTablesBuilt || first == last);
            NoteIf(isOld, "the derived database of an earlier run");
        }
        for (const ThresholdBean* bean : beans) {
            const Ranges ids = EventsOf(*bean);
            NoteMembers(MembersOfTable(*bean), ids);
            NoteWhole(ids);
        }
        NoteKey(!beans.empty(), "settings.VersionName");
        NoteIf(mReport.hadQuote, "values with quotes, behind which a derived table may run SQL");
    }

    // Each derived table under the words of its name, which may be any text.
    void ReadTables(const rule_source::CommonPart& common)
    {
        for (const ThresholdBean& bean : common.beans) {
            for (const std::string& word : bean.dataItems.empty() ? std::set<std::string>() : WordsOf(Lower(bean.name))) {
                mTables.emplace(word, &bean);
            }
            // An item without a number ends the building of all tables, and those of an earlier run stay.
            mAreTablesBuilt = mAreTablesBuilt && std::all_of(bean.dataItems.begin(), bean.dataItems.end(),
                [](const rule_source::DataItem& item) { return item.ids.first != 0; });
        }
    }

    const RedactionReport& mReport;
    std::multimap<std::string, const ThresholdBean*> mTables;
    bool mAreTablesBuilt = mReport.hasLog;
    // The words of their names.
    std::set<std::string> mOldTables;
    std::set<std::string> mKeys;
    std::set<std::string> mNodes;
    std::vector<std::string> mReads;
};

} // namespace

std::vector<AffectedRule> AffectedRules(const RuleSet& rules, const RedactionReport& report)
{
    Search search(rules, report);
    std::vector<AffectedRule> affected;
    for (const Rule* rule : rules.rules.all) {
        if (!rule->isKept || rule->isReplaced) {
            continue;
        }
        if (auto reads = search.ReadsOf(*rule); !reads.empty()) {
            affected.push_back({std::string(rule->name), std::move(reads)});
        }
    }
    return affected;
}

} // namespace diagnosis
