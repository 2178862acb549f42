#ifndef ARBORIST_DIAGNOSIS_TEXT_NEAR_MATCH_H
#define ARBORIST_DIAGNOSIS_TEXT_NEAR_MATCH_H

#include <string>
#include <vector>

namespace diagnosis {

/// The candidate that `word` was most likely meant to be: the same but for case, or a slip or two away. Empty when
/// none is near; of equally near ones the first.
std::string NearMatch(const std::string& word, const std::vector<std::string>& candidates);

/// `; did you mean "..."?` for the near match, or nothing: the tail of a message about an unknown word.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& candidates);

} // namespace diagnosis

#endif
