#include "arborist/stores/event_log/answer_cache.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "arborist/stores/event_log/answer_reader.h"
#include "arborist/stores/event_log/unchanged_log.h"

namespace {

// One pass over all rows costs as much as reading one row in this many by itself.
constexpr std::size_t WORTH_READING_ALL = 32;

// The rows that count and have a column which must be asked again.
std::vector<std::uint32_t> RowsToAskAgain(const RowAnswers& answers)
{
    std::vector<std::uint32_t> asked;
    const auto& columns = answers.columns;
    if (std::none_of(columns.begin(), columns.end(), [](const auto& column) { return column->HasAskedAgain(); })) {
        return asked;
    }
    answers.rows.ForEach([&](std::uint32_t row) {
        if (std::any_of(
                columns.begin(), columns.end(), [row](const auto& column) { return column->IsAskedAgain(row); })) {
            asked.push_back(row);
        }
    });
    return asked;
}

} // namespace

std::vector<Requests::Number> AnswerCache::Foresee(
    std::int32_t firstId, std::int32_t lastId, const Questions& questions)
{
    std::vector<Requests::Number> numbers;
    for (const auto& question : questions) {
        numbers.push_back(mRequests.NumberOf(question));
        mRequests.Add({firstId, lastId, numbers.back()});
    }
    return numbers;
}

void AnswerCache::Reset(std::shared_ptr<const EventLogSnapshot> snapshot)
{
    mSnapshot = std::move(snapshot);
    mAnswers.reset();
    mCanReadAll = true;
}

bool AnswerCache::Has(const Asked& asked, std::uint32_t firstRow, std::uint32_t endRow) const
{
    return mAnswers != nullptr && mAnswers->GetSince() <= asked.startTime &&
        std::all_of(asked.questions.begin(), asked.questions.end(), [&](Requests::Number question) {
            return mAnswers->Find(question, firstRow, endRow) != nullptr;
        });
}

void AnswerCache::Prepare(const Asked& asked)
{
    const std::size_t first = mSnapshot->FirstEntryFrom(asked.firstId);
    const std::size_t end = mSnapshot->FirstEntryFrom(asked.lastId + std::int64_t{1});
    if (asked.questions.empty() || first == end || !mCanReadAll || !mSnapshot->AreRowIdsAscending()) {
        return;
    }
    const std::uint32_t firstRow = mSnapshot->GetEntry(first).begin;
    const std::uint32_t endRow = mSnapshot->GetEntry(end - 1).end;
    if (firstRow == endRow) {
        return;
    }
    const bool isWorthwhile = (endRow - firstRow) * WORTH_READING_ALL >= mSnapshot->GetRowCount() ||
        !mSnapshot->GetOrigin().canSearchEvents; // then rows can't be read one by one
    if (isWorthwhile && !Has(asked, firstRow, endRow)) {
        ReadAllFor(asked);
    }
}

// Requests the questions of this visit first, then those that were added after them, as far as there is room.
void AnswerCache::ReadAllFor(const Asked& asked)
{
    std::vector<Requests::Request> wanted;
    for (const Requests::Number question : asked.questions) {
        wanted.push_back({asked.firstId, asked.lastId, question});
    }
    const std::vector<Requests::Request> all = mRequests.AllFrom(wanted.back());
    wanted.insert(wanted.end(), all.begin(), all.end());
    ReadAll(wanted, asked.startTime);
}

void AnswerCache::ReadForeseen()
{
    const std::vector<Requests::Request>& wanted = mRequests.All();
    if (!wanted.empty() && mAnswers == nullptr && mCanReadAll && mSnapshot->AreRowIdsAscending()) {
        ReadAll(wanted, 0);
    }
}

void AnswerCache::ReadAll(const std::vector<Requests::Request>& wanted, std::int64_t since)
{
    mAnswers.reset();
    if (const auto log = UnchangedLog::Open(mDb, mSnapshot)) {
        mAnswers = AnswerReader(*log, mRequests).ReadAll(wanted, since);
        mCanReadAll = mAnswers != nullptr;
    }
}

std::shared_ptr<const RowAnswers> AnswerCache::Find(const Asked& asked, const Entry& entry,
    const EventLogSnapshot::RowRange& range, const EventLogSnapshot::Filter& filter) const
{
    auto answers = std::make_shared<RowAnswers>(RowAnswers{mSnapshot->Select(range, filter)});
    return FillColumns(asked, entry, *answers) && FillTexts(*answers) ? answers : nullptr;
}

bool AnswerCache::FillColumns(const Asked& asked, const Entry& entry, RowAnswers& answers) const
{
    if (Has(asked, entry.begin, entry.end)) {
        for (const Requests::Number question : asked.questions) {
            answers.columns.push_back(mAnswers->Find(question, entry.begin, entry.end));
        }
        return true;
    }
    const auto log = UnchangedLog::Open(mDb, mSnapshot);
    auto columns = log ? AnswerReader(*log, mRequests).ReadOneByOne(entry, answers.rows, asked.questions) : std::nullopt;
    if (columns) {
        answers.columns = std::move(*columns);
    }
    return columns.has_value();
}

bool AnswerCache::FillTexts(RowAnswers& answers) const
{
    const std::vector<std::uint32_t> asked = RowsToAskAgain(answers);
    if (asked.empty()) {
        return true;
    }
    const auto log = mSnapshot->GetOrigin().isInTableOrder ? UnchangedLog::Open(mDb, mSnapshot) : nullptr;
    auto texts = log ? AnswerReader(*log, mRequests).ReadTexts(asked) : std::nullopt;
    if (texts) {
        answers.texts = std::move(*texts);
    }
    return texts.has_value();
}
