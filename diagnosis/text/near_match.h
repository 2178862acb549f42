#ifndef ARBORIST_DIAGNOSIS_TEXT_NEAR_MATCH_H
#define ARBORIST_DIAGNOSIS_TEXT_NEAR_MATCH_H

#include <string>
#include <vector>

namespace diagnosis {

/// The candidate that `word` was probably meant to be: it differs in case, or by one or two letters. Empty if none is
/// near; the first of equally near ones.
std::string NearMatch(const std::string& word, const std::vector<std::string>& candidates);

/// The end of a message about an unknown word: `; did you mean "..."?` for the near match, or nothing.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& candidates);

} // namespace diagnosis

#endif
