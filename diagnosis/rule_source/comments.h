#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_COMMENTS_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_COMMENTS_H

#include <string_view>
#include <vector>

#include "diagnosis/rule_source/source_file.h"

namespace diagnosis::rule_source {

/// A comment of a file.
struct Comment {
    int line = 0;
    /// What stands between its marks.
    std::string_view text;
    /// The element that follows it under the same parent; null where none does.
    Element next;
};

/// The comments that hold `word`, in file order. A file whose text lacks the word is not walked.
std::vector<Comment> CommentsWith(const SourceFile& file, std::string_view word);

} // namespace diagnosis::rule_source

#endif
