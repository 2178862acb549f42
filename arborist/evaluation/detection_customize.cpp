#include "arborist/evaluation/detection_customize.h"

#include <utility>

#include "arborist/evaluation/extra_member.h"
#include "arborist/frame/log.h"
#include "arborist/stores/event_log/log_event.h"
#include "arborist/stores/event_log/row_question.h"
#include "arborist/utilities/string_util.h"

namespace {

std::string CountIn(std::string_view extra)
{
    return ExtraMember::Read(extra, DetectionCustomize::KEY_COUNT, [](const std::string& error) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: parseJson err. %s ",
            "DetectionCustomize::CheckDmdEventCount", error.c_str());
    });
}

std::int32_t WeightOf(const std::string& count)
{
    return count.empty() ? 1 : static_cast<std::int32_t>(StringUtil::StringToInt64Def(count, 0, 10));
}

class Weight : public RowQuestion {
public:
    explicit Weight(std::function<void(const std::string&)> tell) : mTell(std::move(tell)) {}

    std::string GetName() const override { return "weight"; }
    const std::string& GetKey() const override { return mKey; }
    bool IsNumber() const override { return true; }
    std::optional<std::int32_t> AnswerInSilence(std::string_view count) const override
    {
        return count.empty() ? 1 : StringUtil::Int32Of(count);
    }
    std::int32_t Answer(std::string_view extra) const override
    {
        const std::string count = CountIn(extra);
        if (mTell) {
            mTell(count);
        }
        return WeightOf(count);
    }

private:
    const std::string mKey = DetectionCustomize::KEY_COUNT;
    std::function<void(const std::string&)> mTell;
};

} // namespace

bool DetectionCustomize::IsDmdEvent(std::int32_t eventId)
{
    for (const IdRange& range : DMD_RANGES) {
        if (eventId >= range.first && eventId <= range.last) {
            return true;
        }
    }
    return false;
}

std::int32_t DetectionCustomize::CheckDmdEventCount(const LogEvent& event)
{
    return event.extra.empty() ? 0 : WeightOf(CountIn(event.extra));
}

std::shared_ptr<const RowQuestion> DetectionCustomize::WeightQuestion(std::function<void(const std::string&)> tell)
{
    return std::make_shared<Weight>(std::move(tell));
}
