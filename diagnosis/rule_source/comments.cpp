#include "diagnosis/rule_source/comments.h"

#include <tinyxml2.h>

namespace diagnosis::rule_source {

namespace {

using tinyxml2::XMLNode;

// The node after `node` in the order of the file; null after the last.
const XMLNode* After(const XMLNode* node)
{
    if (node->FirstChild() != nullptr) {
        return node->FirstChild();
    }
    while (node != nullptr && node->NextSibling() == nullptr) {
        node = node->Parent();
    }
    return node == nullptr ? nullptr : node->NextSibling();
}

} // namespace

std::vector<Comment> CommentsWith(const SourceFile& file, std::string_view word)
{
    std::vector<Comment> comments;
    if (!file.IsLoaded() || file.Text().find(word) == std::string::npos) {
        return comments;
    }
    for (const XMLNode* node = file.Document().FirstChild(); node != nullptr; node = After(node)) {
        const tinyxml2::XMLComment* const comment = node->ToComment();
        if (comment != nullptr && std::string_view(comment->Value()).find(word) != std::string_view::npos) {
            comments.push_back({comment->GetLineNum(), comment->Value(), Element(comment->NextSiblingElement())});
        }
    }
    return comments;
}

} // namespace diagnosis::rule_source
