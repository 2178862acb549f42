#include "diagnosis/rule_set/xml_lines.h"

namespace diagnosis::rule_set {

namespace {

std::string Indented(const std::string& text)
{
    std::string indented;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\n', start) + 1;
        indented += "  " + text.substr(start, end - start);
        start = end;
    }
    return indented;
}

} // namespace

std::string XmlLines(const std::string& start, const std::string& content)
{
    const std::string name = start.substr(0, start.find(' '));
    return content.empty() ? "<" + start + "/>\n" : "<" + start + ">\n" + Indented(content) + "</" + name + ">\n";
}

} // namespace diagnosis::rule_set
