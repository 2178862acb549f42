#ifndef ARBORIST_DIAGNOSIS_REDACTION_EXTRA_TEXT_H
#define ARBORIST_DIAGNOSIS_REDACTION_EXTRA_TEXT_H

#include <set>
#include <string>
#include <vector>

#include "diagnosis/redaction/redaction_file.h"

namespace diagnosis {

/// The "extra" of one event, redacted.
struct RedactedExtra {
    std::string text;
    /// The members that were replaced, by their names in lower case.
    std::set<std::string> members;
    /// True if the whole text was replaced, because it is no JSON object or one that readers may understand in several
    /// ways.
    bool isWhole = false;
    /// True if a replaced value had a quote: a derived table leaves out the row, or runs what is behind the quote as SQL.
    bool hadQuote = false;

    bool IsChanged() const { return isWhole || !members.empty(); }
};

/// Replaces the values of members by their keyed hashes, at any depth, whatever the case of their names. All other bytes of
/// the text stay. A value that is a list or an object is replaced as one; one that is null or empty stays, as does an empty
/// text.
RedactedExtra RedactExtra(
    const std::string& extra, const std::vector<const LogMembers*>& members, const std::string& key);

} // namespace diagnosis

#endif
