#include "diagnosis/rule_set/obstacles.h"

#include <algorithm>
#include <string_view>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/reading/device_filter.h"

namespace diagnosis::rule_set {

namespace {

using lint::DeviceProfile;
using lint::Quoted;
using rule_source::BindingAlternative;
using rule_source::Rule;
using rule_source::RuleSet;
using rule_source::TreeEvent;

/// Events of this DetectMode are left to the host.
constexpr std::string_view LEFT_TO_HOST = "2";

// The engine joins the names of an alternative with commas and splits them there again.
std::vector<std::string_view> NamesOf(const BindingAlternative& alternative)
{
    std::vector<std::string_view> names;
    for (const rule_source::RuleName& read : alternative.names) {
        for (std::size_t start = 0; start <= read.name.size();) {
            const std::size_t end = std::min(read.name.find(',', start), read.name.size());
            if (end > start) {
                names.push_back(read.name.substr(start, end - start));
            }
            start = end + 1;
        }
    }
    return names;
}

// The filter that rejects a device in all its scenes. A rule without scenes is rejected in every one.
const char* RejectingFilter(const Rule& rule, const DeviceProfile& device)
{
    return rule.detectScene.empty() ? "detectScene" : lint::RejectedBy(rule, device);
}

bool MayHold(const RuleSet& rules, const BindingAlternative& alternative, const DeviceProfile& device)
{
    const auto names = NamesOf(alternative);
    return !names.empty() && std::all_of(names.begin(), names.end(), [&](std::string_view name) {
        const Rule* const rule = rules.rules.Find(name);
        return rule != nullptr && RejectingFilter(*rule, device) == nullptr;
    });
}

std::string ScenesText(const DeviceProfile& device)
{
    std::string text;
    for (const int scene : device.scenes) {
        text += (text.empty() ? "" : " or ") + Quoted(std::to_string(scene));
    }
    return text;
}

// `production "LT-13" does not contain "LT-14"`
std::string RejectionText(const Rule& rule, std::string_view filter, const DeviceProfile& device)
{
    if (filter == "detectScene") {
        return rule.detectScene.empty() ? "it names no scene in detectScene, and so never runs"
                                        : "detectScene " + Quoted(rule.detectScene) + " does not contain "
                + ScenesText(device);
    }
    const bool isBlack = filter == "blackProducts";
    const std::string_view list = isBlack ? rule.blackProducts
        : filter == "production"          ? rule.production
        : filter == "platform"            ? rule.platform
                                          : rule.deviceType;
    const std::string& text = isBlack || filter == "production" ? device.product
        : filter == "platform"                                  ? device.platform
                                                                : device.deviceType;
    return std::string(filter) + " " + Quoted(list) + (isBlack ? " contains " : " does not contain ") + Quoted(text);
}

/// Collects the obstacles of one event.
class ObstacleList {
public:
    ObstacleList(const RuleSet& rules, const TreeEvent& event, const DeviceProfile& device)
        : mRules(rules), mEvent(event), mDevice(device)
    {
    }

    std::vector<Obstacle> Obstacles()
    {
        if (mEvent.detectMode.Text() == LEFT_TO_HOST) {
            Add("its DetectMode is 2: a detection leaves it to the host");
        } else if (mEvent.binding == nullptr) {
            Add(mEvent.kind == rule_source::EventKind::INTERMEDIATE ? "no event of its gate can be true"
                                                                    : "no rule decides it");
        } else {
            AddRules(mEvent.binding->alternatives);
        }
        return std::move(mObstacles);
    }

private:
    Obstacle& Add(std::string reason)
    {
        mObstacles.push_back(
            {std::string(mEvent.id), PlaceOf(mEvent.element), std::move(reason), "", Place{}, ""});
        return mObstacles.back();
    }

    void AddRules(const std::vector<BindingAlternative>& alternatives)
    {
        for (const BindingAlternative& alternative : alternatives) {
            for (const std::string_view name : NamesOf(alternative)) {
                if (mObstacles.size() == MOST_OBSTACLES) {
                    return;
                }
                AddRule(name);
            }
        }
        if (mObstacles.empty()) {
            Add(alternatives.empty() ? "its entry in EventRules names no rule"
                                     : "no scene lets all the rules run that are needed at once");
        }
    }

    void AddRule(std::string_view name)
    {
        const Rule* const rule = mRules.rules.Find(name);
        const char* const filter = rule == nullptr ? nullptr : RejectingFilter(*rule, mDevice);
        if (rule == nullptr) {
            Add("no rule has this name").rule = name;
        } else if (filter != nullptr) {
            Obstacle& obstacle = Add(RejectionText(*rule, filter, mDevice));
            obstacle.rule = name;
            obstacle.rulePlace = PlaceOf(rule->element);
            obstacle.filter = filter;
        }
    }

    const RuleSet& mRules;
    const TreeEvent& mEvent;
    const DeviceProfile& mDevice;
    std::vector<Obstacle> mObstacles;
};

} // namespace

bool MayHold(const RuleSet& rules, const TreeEvent& event, const DeviceProfile& device)
{
    if (event.detectMode.Text() == LEFT_TO_HOST || event.binding == nullptr) {
        return false;
    }
    const auto& alternatives = event.binding->alternatives;
    return std::any_of(alternatives.begin(), alternatives.end(), [&](const BindingAlternative& alternative) {
        return (alternative.kind == BindingAlternative::Kind::SINGLE
                   || alternative.kind == BindingAlternative::Kind::GROUP)
            && MayHold(rules, alternative, device);
    });
}

std::vector<Obstacle> ObstaclesOf(const RuleSet& rules, const TreeEvent& event, const DeviceProfile& device)
{
    return ObstacleList(rules, event, device).Obstacles();
}

} // namespace diagnosis::rule_set
