#include "arborist/frame/loaded_rule_set.h"

#include <atomic>

#include "arborist/frame/detect_info.h"
#include "arborist/frame/log_recording.h"
#include "arborist/frame/stopping.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/loading/fresh_records.h"

namespace {

// What the loader takes of the input: the set outlives the device and its runner.
std::shared_ptr<DetectInfo> PlaceOf(const DetectInfo& detectInfo)
{
    auto place = std::make_shared<DetectInfo>();
    place->mTreeTag = detectInfo.mTreeTag;
    place->mRuleFileDir = detectInfo.mRuleFileDir;
    place->mRuleFilePrefix = detectInfo.mRuleFilePrefix;
    return place;
}

} // namespace

struct LoadedRuleSet::Content {
    std::shared_ptr<FaultTreeParser> parser;
    FT::LogLines lines;
    std::atomic<bool> isInUse = false;
};

LoadedRuleSet::LoadedRuleSet(const DetectInfo& detectInfo) : mContent(std::make_unique<Content>())
{
    const StopScope unstoppable(nullptr);
    const FT::LogRecording recording(&mContent->lines);
    mContent->parser = std::make_shared<FaultTreeParser>(PlaceOf(detectInfo));
    mContent->parser->StartParse();
    mContent->parser->ForgetDocument();
    // Not by the first detection: a process that forks shares them, and engines of several threads ask queries.
    mContent->parser->BuildIndexes();
}

LoadedRuleSet::~LoadedRuleSet() = default;

const std::shared_ptr<FaultTreeParser>& LoadedRuleSet::GetParser() const
{
    return mContent->parser;
}

void LoadedRuleSet::LogLines() const
{
    for (const FT::LogLine& line : mContent->lines) {
        FT::LogAgain(line);
    }
}

// Takes the set for a detection, which finds every record fresh; false if another one is using it.
bool LoadedRuleSet::Take()
{
    if (mContent->isInUse.exchange(true)) {
        return false;
    }
    MakeRecordsFresh(*mContent->parser);
    return true;
}

void LoadedRuleSet::Release()
{
    mContent->isInUse = false;
}
