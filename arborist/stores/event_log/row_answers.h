#ifndef ARBORIST_STORES_EVENT_LOG_ROW_ANSWERS_H
#define ARBORIST_STORES_EVENT_LOG_ROW_ANSWERS_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "arborist/stores/event_log/answer_table.h"
#include "arborist/stores/event_log/row_bits.h"

/// Texts by row of a snapshot.
using RowTexts = std::map<std::uint32_t, std::string>;

/// The answers of the rows of an entry to the questions of a visit. Shares ownership of the columns.
struct RowAnswers {
    /// The rows that count.
    RowBits rows;
    /// For each question the column with its answers.
    std::vector<std::shared_ptr<const AnswerColumn>> columns{};
    /// The texts of the rows to ask again.
    RowTexts texts{};
};

#endif
