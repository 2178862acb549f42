#ifndef ARBORIST_TESTS_STORES_EVENT_LOG_NUMBER_QUESTION_H
#define ARBORIST_TESTS_STORES_EVENT_LOG_NUMBER_QUESTION_H

#include <charconv>
#include <memory>
#include <string>

#include <json/value.h>

#include "arborist/frame/log.h"
#include "arborist/stores/event_log/row_question.h"
#include "arborist/utilities/json_text.h"

/// A question for the number in a member, 0 if there is none. For a member that is no number, and for a text that is no
/// object, it logs a line and answers -1. As a yes-or-no question it asks for a number other than 0.
class NumberQuestion : public RowQuestion {
public:
    static std::shared_ptr<const RowQuestion> Of(const std::string& key)
    {
        return std::make_shared<NumberQuestion>(key, true);
    }
    static std::shared_ptr<const RowQuestion> IsThere(const std::string& key)
    {
        return std::make_shared<NumberQuestion>(key, false);
    }

    NumberQuestion(std::string key, bool isNumber) : mKey(std::move(key)), mIsNumber(isNumber) {}

    std::string GetName() const override { return (mIsNumber ? "number " : "is there ") + mKey; }
    const std::string& GetKey() const override { return mKey; }
    bool IsNumber() const override { return mIsNumber; }
    std::optional<std::int32_t> AnswerInSilence(std::string_view member) const override
    {
        std::int32_t number = 0;
        const bool isNumber =
            std::from_chars(member.data(), member.data() + member.size(), number).ec == std::errc();
        return member.empty() || isNumber ? std::optional(mIsNumber ? number : number != 0 ? 1 : 0) : std::nullopt;
    }
    std::int32_t Answer(std::string_view extra) const override
    {
        Json::Value root;
        std::string error;
        const auto silent =
            ParseJson(extra, root, error) ? AnswerInSilence(MemberText(root, mKey)) : std::nullopt;
        if (silent) {
            return *silent;
        }
        FT::Log::GetInstance().Output(
            FT::LEVEL_INFO, "FUNc:%s: %s of %s", "NumberQuestion", mKey.c_str(), std::string(extra).c_str());
        return -1;
    }

private:
    std::string mKey;
    bool mIsNumber;
};

#endif
