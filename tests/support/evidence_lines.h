#ifndef ARBORIST_TESTS_SUPPORT_EVIDENCE_LINES_H
#define ARBORIST_TESTS_SUPPORT_EVIDENCE_LINES_H

#include <string>
#include <vector>

#include "arborist/frame/evidence.h"

/// The content of a record as lines of text that begin with a word ("window"), in the order in which the engine adds
/// it, so that a test can compare a record with a list.
std::vector<std::string> EvidenceLines(const Evidence::Rule& rule);
/// Only the lines that begin with this word.
std::vector<std::string> EvidenceLines(const Evidence::Rule& rule, const std::string& word);

std::string EvidenceLine(const Evidence::Start& start);
std::string EvidenceLine(const Evidence::Comparison& comparison);

/// The lines that begin with this word.
std::vector<std::string> LinesOfWord(const std::vector<std::string>& lines, const std::string& word);
/// Joins the texts.
std::string TextOf(const std::vector<std::string>& texts, const char* separator = ",");
/// " [reason]", nothing for none.
std::string WhyText(Evidence::Reason reason);

#endif
