#include "diagnosis/lint/suppressions.h"

#include "diagnosis/lint/registry.h"
#include "diagnosis/rule_source/comments.h"

namespace diagnosis::lint {

namespace {

constexpr std::string_view WORD = "arborist-disable";
constexpr std::string_view BLANKS = " \t\r\n,";

// The words after the first one, up to a colon, which the reason follows.
std::vector<std::string_view> IdsOf(std::string_view comment)
{
    comment.remove_prefix(comment.find(WORD) + WORD.size());
    comment = comment.substr(0, comment.find(':'));
    std::vector<std::string_view> ids;
    for (std::size_t start = comment.find_first_not_of(BLANKS); start != std::string_view::npos;) {
        const std::size_t end = comment.find_first_of(BLANKS, start);
        ids.push_back(comment.substr(start, end - start));
        start = comment.find_first_not_of(BLANKS, end);
    }
    return ids;
}

} // namespace

Suppressions::Suppressions(const rule_source::RuleSetFiles& files)
{
    Add(files.trees.get());
    Add(files.rules.get());
}

void Suppressions::Add(const rule_source::SourceFile* file)
{
    if (file == nullptr) {
        return;
    }
    for (const rule_source::Comment& comment : rule_source::CommentsWith(*file, WORD)) {
        for (const std::string_view id : IdsOf(comment.text)) {
            if (comment.next) {
                mByElement.emplace(comment.next, mSuppressed.size());
            }
            mSuppressed.push_back({file, comment.line, id, comment.next});
        }
    }
}

bool Suppressions::Covers(const Reported& reported)
{
    if (mByElement.empty()) {
        return false;
    }
    bool isCovered = false;
    for (rule_source::Element element = reported.element; element; element = element.Parent()) {
        const auto [begin, end] = mByElement.equal_range(element);
        for (auto entry = begin; entry != end; ++entry) {
            Suppressed& one = mSuppressed[entry->second];
            if (one.id == reported.check->id) {
                one.isUsed = true;
                isCovered = true;
            }
        }
    }
    return isCovered;
}

std::string Suppressions::Complaint(const Suppressed& suppressed)
{
    const std::string start = "the comment suppresses " + Quoted(suppressed.id) + ", ";
    return FindCheck(suppressed.id) == nullptr ? start + "which is no check"
        : !suppressed.element                  ? start + "and no element follows it"
                                               : start + "which finds nothing in the element that follows";
}

} // namespace diagnosis::lint
