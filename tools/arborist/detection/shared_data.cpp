#include "tools/arborist/detection/shared_data.h"

#include <fstream>
#include <iterator>
#include <string_view>

namespace command {

namespace {

std::string WithoutComments(std::string text)
{
    std::string kept;
    std::size_t from = 0;
    for (auto at = text.find("<!--"); at != std::string::npos; at = text.find("<!--", from)) {
        kept.append(text, from, at - from);
        const auto end = text.find("-->", at + 4);
        from = end == std::string::npos ? text.size() : end + 3;
    }
    return kept.append(text, from);
}

bool EndsName(std::string_view text, std::size_t at)
{
    return at >= text.size() || std::string_view(" \t\r\n/>").find(text[at]) != std::string_view::npos;
}

// From the start tag of `element` to its end tag. The file was read as XML before, so that plain search serves.
std::string_view Inside(std::string_view text, const std::string& element)
{
    const std::string start = "<" + element;
    auto at = text.find(start);
    while (at != std::string_view::npos && !EndsName(text, at + start.size())) {
        at = text.find(start, at + 1);
    }
    return at == std::string_view::npos ? "" : text.substr(at, text.find("</" + element + ">", at) - at);
}

} // namespace

bool HasThresholds(const std::string& path, const std::string& treeTag)
{
    std::ifstream file(path, std::ios::binary);
    const std::string text =
        WithoutComments({std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()});
    return Inside(Inside(text, "RuleCommonPart"), treeTag).find("<thresholdsOrLumbraData") != std::string_view::npos;
}

} // namespace command
