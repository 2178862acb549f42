#ifndef ARBORIST_TESTS_SUPPORT_EVIDENCE_LINES_H
#define ARBORIST_TESTS_SUPPORT_EVIDENCE_LINES_H

#include <string>
#include <vector>

#include "arborist/frame/evidence.h"

/// Each thing that a record holds as one line of text that begins with a word ("window"), in the order in which an
/// engine meets them, so that a test can compare a record as a list.
std::vector<std::string> EvidenceLines(const Evidence::Rule& rule);
/// Those that begin with this word.
std::vector<std::string> EvidenceLines(const Evidence::Rule& rule, const std::string& word);

std::string EvidenceLine(const Evidence::Start& start);
std::string EvidenceLine(const Evidence::Comparison& comparison);

/// The lines that begin with this word.
std::vector<std::string> LinesOfWord(const std::vector<std::string>& lines, const std::string& word);
/// All pieces in one text.
std::string TextOf(const std::vector<std::string>& texts, const char* separator = ",");
/// " [reason]", nothing for none.
std::string WhyText(Evidence::Reason reason);

#endif
