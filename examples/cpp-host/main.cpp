// A host in C++ with everything of its own: the log goes to its standard error, an observer tells why events are true, and
// code rules are asked of the user's answers on the command line.
//
//     cpp_host [PRESENT...]     in a folder with rules/, device/ and programdata/, like a prepared examples/laptop;
//                               PRESENT are the detection texts whose fault is present

#include <cstdarg>
#include <cstdio>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "arborist/arborist.h"

namespace {

/// Prints what needs attention, one line each.
class Logger : public FT::ILogger {
public:
    void Print(unsigned int level, const std::string& format, va_list args) override
    {
        if (level >= FT::LEVEL_ERROR) {
            std::vfprintf(stderr, ("log: " + format + "\n").c_str(), args);
        }
    }
};

/// Knows the answers beforehand; a real host would run a test or ask its user.
class Runner : public CodeRuleRunner {
public:
    explicit Runner(std::set<std::string> present) : mPresent(std::move(present)) {}

    bool RunCodeRule(std::vector<std::string>, std::vector<std::string>, std::vector<std::string>,
        const std::string& userDefinedInfo) override
    {
        const bool isPresent = mPresent.count(userDefinedInfo) != 0;
        std::cout << "  asked " << userDefinedInfo << ": " << (isPresent ? "present" : "not present") << "\n";
        return isPresent;
    }

private:
    std::set<std::string> mPresent;
};

/// Tells which rule made an event true, and what each tree amounts to.
class Observer : public DetectionObserver {
public:
    void OnTreeStarted(Evidence::TreeHead tree) override { std::cout << tree.id << "\n"; }

    void OnEventDecided(Evidence::Event event) override
    {
        for (const Evidence::Alternative& alternative : event.alternatives) {
            for (const Evidence::Rule& rule : alternative.rules) {
                if (rule.verdict == Evidence::Verdict::FIRED) {
                    std::cout << "  " << event.id << ": the " << Evidence::FamilyText(rule.GetFamily()) << " rule "
                              << rule.name << " fired, " << Evidence::ReasonText(rule.reason) << "\n";
                }
            }
        }
    }

    void OnTreeFinished(Evidence::TreeResult tree) override
    {
        std::cout << "  verdict: " << Evidence::TreeVerdictText(tree.verdict.word) << "\n";
    }
};

void SetUpSettings()
{
    // Every path is meant from the working directory; the moment is that of the recording.
    SetFaultTreeProperty(Settings::PROGRAM_DATA_DIR, "programdata");
    SetFaultTreeProperty(Settings::DEVICE_ROOT_DIR, "device");
    SetFaultTreeProperty(Settings::APP_DATABASE_DIR, "databases");
    SetFaultTreeProperty(Settings::VERSION_NAME, "4.1");
    SetFaultTreeProperty(Settings::CURRENT_TIME, "1716199200");
}

std::shared_ptr<DetectInfo> DescribeDevice(std::shared_ptr<CodeRuleRunner> runner)
{
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = 1;
    info->mTreeTag = "Laptop";
    info->mRuleFileDir = "rules";
    info->mDeviceDetails = std::make_shared<DeviceDetails>("laptop", "LT-14", "x86", "quad-2.4", "8", "1920x1080", "5000");
    info->mCodeRuleRunner = std::move(runner);
    return info;
}

} // namespace

int main(int argc, char** argv)
{
    FT::Log::GetInstance().SetUserLogger(std::make_unique<Logger>());
    SetUpSettings();
    Arborist engine(DescribeDevice(std::make_shared<Runner>(std::set<std::string>(argv + 1, argv + argc))));
    engine.SetObserver(std::make_shared<Observer>());
    const auto results = engine.StartDetection();
    for (const auto& result : results) {
        for (const auto& cause : result->mRootCauseResults) {
            std::cout << result->mTreeId << ": " << cause->mNode->mName << "\n";
        }
    }
    return results.empty() ? 1 : 0;
}
