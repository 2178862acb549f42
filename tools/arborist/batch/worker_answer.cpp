#include "tools/arborist/batch/worker_answer.h"

#include <cstdint>
#include <cstring>

namespace diagnosis::command {

namespace {

/// Precedes each answer.
struct AnswerHead {
    std::int32_t status;
    std::uint32_t outcome;
    std::uint32_t isWorthARetry;
    VerdictCounts verdicts;
    std::uint32_t codeLength;
    std::uint32_t lineLength;

    std::size_t Length() const { return std::size_t{codeLength} + lineLength; }
};

AnswerHead HeadOf(const std::string& bytes)
{
    AnswerHead head;
    std::memcpy(&head, bytes.data(), sizeof head);
    return head;
}

} // namespace

std::string PackedAnswer(const BundleAnswer& answer)
{
    const AnswerHead head{static_cast<std::int32_t>(answer.status), static_cast<std::uint32_t>(answer.outcome),
        answer.isWorthARetry ? 1U : 0U, answer.verdicts, static_cast<std::uint32_t>(answer.code.size()),
        static_cast<std::uint32_t>(answer.line.size())};
    return std::string(reinterpret_cast<const char*>(&head), sizeof head) + answer.code + answer.line;
}

bool IsWholeAnswer(const std::string& bytes)
{
    return bytes.size() >= sizeof(AnswerHead) && bytes.size() >= sizeof(AnswerHead) + HeadOf(bytes).Length();
}

BundleAnswer UnpackedAnswer(const std::string& bytes)
{
    const AnswerHead head = HeadOf(bytes);
    return {static_cast<ExitStatus>(head.status), bytes.substr(sizeof head + head.codeLength),
        static_cast<BundleOutcome>(head.outcome), bytes.substr(sizeof head, head.codeLength),
        head.isWorthARetry != 0, head.verdicts};
}

} // namespace diagnosis::command
