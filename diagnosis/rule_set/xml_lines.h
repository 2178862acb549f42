#ifndef ARBORIST_DIAGNOSIS_RULE_SET_XML_LINES_H
#define ARBORIST_DIAGNOSIS_RULE_SET_XML_LINES_H

#include <string>

namespace diagnosis::rule_set {

/// An element in lines of its own. `start` is the content of its start tag, escaped: `attribute name="id"`. `content` is
/// empty, or lines that end in line ends; they are indented.
std::string XmlLines(const std::string& start, const std::string& content = "");

} // namespace diagnosis::rule_set

#endif
