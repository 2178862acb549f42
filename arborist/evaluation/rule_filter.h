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

/// Decides by a rule's own texts whether it applies to the device and scene of a detection.
///
/// Each filter looks for the device's value anywhere in the rule's text. Shares ownership of its input, which may be
/// null: every rule is rejected then. Holds no state beside it.
class RuleFilter {
public:
    /// What turned a rule away. The rule's text is the rule's own.
    struct Rejection {
        Evidence::Reason reason;
        std::string deviceValue;
        std::string_view ruleText;
    };

    explicit RuleFilter(std::shared_ptr<const DetectInfo> detectInfo);

    /// The first filter that the rule fails, of product, scene, platform and device type; nothing if it applies.
    std::optional<Rejection> Reject(const Rule& rule) const;

private:
    std::optional<Rejection> RejectByProduct(const Rule& rule) const;
    std::optional<Rejection> RejectByScene(const Rule& rule) const;
    std::optional<Rejection> RejectByText(Evidence::Reason reason, const std::string& ruleText,
                                          std::string (DeviceDetails::*value)() const) const;

    std::shared_ptr<const DetectInfo> mDetectInfo;
};

#endif
