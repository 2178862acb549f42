#ifndef ARBORIST_DIAGNOSIS_LINT_SUPPRESSIONS_H
#define ARBORIST_DIAGNOSIS_LINT_SUPPRESSIONS_H

#include <map>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

/// The comments of a rule set that suppress findings: `<!-- arborist-disable A301 A302: why -->` covers the element
/// that follows, with its content.
class Suppressions {
public:
    explicit Suppressions(const rule_source::RuleSetFiles& files);

    /// True if a comment covers the finding; marks the comment as used.
    bool Covers(const Reported& reported);
    /// Reports each id of a comment that suppressed nothing, unless its check did not run: `wasRun(id)`. Call it after
    /// all calls of Covers.
    template <typename WasRun>
    void ReportUnused(Report& report, WasRun wasRun) const
    {
        for (const Suppressed& one : mSuppressed) {
            if (!one.isUsed && wasRun(one.id)) {
                report.AddToFile(*one.file, one.line, Complaint(one));
            }
        }
    }

private:
    struct Suppressed {
        const rule_source::SourceFile* file = nullptr;
        int line = 0;
        std::string_view id;
        rule_source::Element element;
        bool isUsed = false;
    };

    void Add(const rule_source::SourceFile* file);
    static std::string Complaint(const Suppressed& suppressed);

    std::vector<Suppressed> mSuppressed;
    /// Indices of those before an element.
    std::unordered_multimap<rule_source::Element, std::size_t> mByElement;
};

} // namespace diagnosis::lint

#endif
