#ifndef ARBORIST_EVALUATION_RULE_FILTER_H
#define ARBORIST_EVALUATION_RULE_FILTER_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "arborist/frame/evidence_words.h"

class DeviceDetails;
class Rule;
struct DetectInfo;

/// Decides from a rule's filter attributes whether it applies to the device and scene of a detection.
///
/// Each filter searches the rule's text for the device's value. Shares ownership of its input, which may be null: then
/// every rule is rejected. Has no other state.
class RuleFilter {
public:
    /// The filter that rejected a rule. The rule's text belongs to the rule.
    struct Rejection {
        Evidence::Reason reason;
        std::string deviceValue;
        std::string_view ruleText;
    };

    explicit RuleFilter(std::shared_ptr<const DetectInfo> detectInfo);

    /// The first filter that rejects the rule, in the order product, scene, platform, device type; nothing if it
    /// applies.
    std::optional<Rejection> Reject(const Rule& rule) const;

private:
    std::optional<Rejection> RejectByProduct(const Rule& rule) const;
    std::optional<Rejection> RejectByScene(const Rule& rule) const;
    std::optional<Rejection> RejectByText(Evidence::Reason reason, const std::string& ruleText,
                                          std::string (DeviceDetails::*value)() const) const;

    std::shared_ptr<const DetectInfo> mDetectInfo;
};

#endif
