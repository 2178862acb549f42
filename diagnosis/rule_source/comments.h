#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_COMMENTS_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_COMMENTS_H

#include <string_view>
#include <vector>

#include "diagnosis/rule_source/source_file.h"

namespace diagnosis::rule_source {

/// A comment of a file.
struct Comment {
    int line = 0;
    /// The text between its marks.
    std::string_view text;
    /// The element that follows it under the same parent; null if there is none.
    Element next;
};

/// The comments that contain `word`, in file order. Returns at once if the file's text doesn't contain the word.
std::vector<Comment> CommentsWith(const SourceFile& file, std::string_view word);

} // namespace diagnosis::rule_source

#endif
