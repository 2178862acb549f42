#include "tests/reliability/observed_detection.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <new>

#include "arborist/frame/arborist.h"
#include "arborist/frame/detection_observer.h"
#include "arborist/frame/log.h"

namespace {

// The last lines of the log, the oldest overwritten.
std::array<std::array<char, 200>, 25> lines;
std::atomic<std::size_t> printed{0};

class RingLogger : public FT::ILogger {
public:
    void Print(unsigned int, const std::string& format, va_list args) override
    {
        std::array<char, 200>& line = lines[printed++ % lines.size()];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        std::vsnprintf(line.data(), line.size(), format.c_str(), args);
#pragma GCC diagnostic pop
    }
};

class DoubtObserver : public DetectionObserver {
public:
    explicit DoubtObserver(bool& doubts) : hasDoubts(doubts) {}

    void OnTreeFinished(Evidence::TreeResult result) override
    {
        hasDoubts = hasDoubts || !result.verdict.isComplete || !result.verdict.open.empty();
    }
    void OnTrouble(Evidence::Trouble) override { hasDoubts = true; }
    void OnRuleSetRead(Evidence::RuleSet ruleSet) override
    {
        hasDoubts = hasDoubts || std::any_of(ruleSet.files.begin(), ruleSet.files.end(), [](const auto& file) {
            return file.state != Evidence::RuleSetFileState::LOADED;
        });
    }

private:
    bool& hasDoubts;
};

} // namespace

const std::vector<std::string> ObservedDetection::CAUSES = {
    "T/alarm", "T/derived", "T/external", "T/node", "T/code"};

ObservedDetection::ObservedDetection()
{
    FT::Log::GetInstance().SetUserLogger(std::make_unique<RingLogger>());
}

ObservedDetection::Answer ObservedDetection::Detect(Arborist& engine)
{
    Answer answer;
    bool hasDoubts = false;
    try {
        engine.SetObserver(std::make_shared<DoubtObserver>(hasDoubts));
        for (const auto& result : engine.StartDetection()) {
            for (const auto& cause : result->mRootCauseResults) {
                answer.causes.push_back(result->mTreeId + "/" + cause->mNode->mId);
            }
        }
    } catch (const std::bad_alloc&) {
        answer.isOutOfMemory = true;
    }
    engine.SetObserver(nullptr);
    answer.isDoubted = hasDoubts;
    return answer;
}

ObservedDetection::Answer ObservedDetection::DetectAnew() const
{
    Arborist engine(mInfo);
    return Detect(engine);
}

testing::AssertionResult ObservedDetection::IsHonest(const Answer& answer)
{
    const bool areTrue = std::all_of(answer.causes.begin(), answer.causes.end(),
        [](const auto& cause) { return std::find(CAUSES.begin(), CAUSES.end(), cause) != CAUSES.end(); });
    if (areTrue && (answer.isDoubted || answer.isOutOfMemory || answer.causes == CAUSES)) {
        return testing::AssertionSuccess();
    }
    testing::AssertionResult failure = testing::AssertionFailure();
    failure << testing::PrintToString(answer.causes);
    for (std::size_t line = printed - std::min<std::size_t>(printed, lines.size()); line < printed; ++line) {
        failure << "\n" << lines[line % lines.size()].data();
    }
    return failure;
}

std::size_t OpenFiles()
{
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}
