// Reading a rule set against the XML library's own reading of the two files. What the objects cost when they go is in
// neither time, but for the tree file's document, which the loader clears.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include <tinyxml2.h>

#include "arborist/loading/fault_tree_parser.h"
#include "bench/compare.h"
#include "bench/heap_gauge.h"
#include "bench/rule_set_generator.h"

namespace {

// A folder with the two files, removed at the end.
class RuleSetDir {
public:
    explicit RuleSetDir(const bench::RuleSetSize& size)
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "arborist-bench-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        mPath = pattern;
        std::ofstream(TreeFile()) << bench::TreeFileText(size);
        std::ofstream(RuleFile()) << bench::RuleFileText(size);
    }
    ~RuleSetDir() { std::filesystem::remove_all(mPath); }
    RuleSetDir(const RuleSetDir&) = delete;
    RuleSetDir& operator=(const RuleSetDir&) = delete;

    const std::string& Path() const { return mPath; }
    std::string TreeFile() const { return mPath + "/" + FaultTreeParser::FAULT_TREE_FILE; }
    std::string RuleFile() const { return mPath + "/" + FaultTreeParser::FAULT_TREE_RULES_FILE; }

private:
    std::string mPath;
};

std::unique_ptr<tinyxml2::XMLDocument> Loaded(const std::string& path)
{
    auto document = std::make_unique<tinyxml2::XMLDocument>();
    if (document->LoadFile(path.c_str()) != tinyxml2::XML_SUCCESS) {
        std::abort();
    }
    return document;
}

struct Documents {
    explicit Documents(const RuleSetDir& dir) : trees(Loaded(dir.TreeFile())), rules(Loaded(dir.RuleFile())) {}

    std::unique_ptr<tinyxml2::XMLDocument> trees;
    std::unique_ptr<tinyxml2::XMLDocument> rules;
};

std::unique_ptr<FaultTreeParser> Parsed(const RuleSetDir& dir, const bench::RuleSetSize& size)
{
    auto detectInfo = std::make_shared<DetectInfo>();
    detectInfo->mTreeTag = bench::RULE_SET_TAG;
    detectInfo->mRuleFileDir = dir.Path();
    auto parser = std::make_unique<FaultTreeParser>(detectInfo);
    parser->StartParse();
    if (parser->GetFaultTrees().size() != size.trees || parser->GetRuleMap().size() != size.rules) {
        std::abort();
    }
    return parser;
}

bench::Pair Times(const RuleSetDir& dir, const bench::RuleSetSize& size)
{
    std::vector<double> ours;
    std::vector<double> baseline;
    for (int round = 0; round < 9; ++round) {
        std::optional<Documents> documents;
        baseline.push_back(bench::Milliseconds([&] { documents.emplace(dir); }));
        documents.reset();
        std::unique_ptr<FaultTreeParser> parser;
        ours.push_back(bench::Milliseconds([&] { parser = Parsed(dir, size); }));
    }
    return {bench::Median(ours), bench::Median(baseline)};
}

// What stays in memory beside the rule file's document, against both documents.
bench::Pair Memory(const RuleSetDir& dir, const bench::RuleSetSize& size)
{
    const HeapGauge gauge;
    const auto ruleDocument = Loaded(dir.RuleFile());
    const double ruleBytes = gauge.Live();
    const auto treeDocument = Loaded(dir.TreeFile());
    const double bothBytes = gauge.Live();
    const auto parser = Parsed(dir, size);
    return {gauge.Live() - bothBytes - ruleBytes, bothBytes};
}

} // namespace

int main()
{
    bench::SilenceLog();
    const bench::RuleSetSize size;
    const RuleSetDir dir(size);
    std::printf("# rule set of %.1f MB: trees %.1f MB, rules %.1f MB\n",
        static_cast<double>(std::filesystem::file_size(dir.TreeFile()) + std::filesystem::file_size(dir.RuleFile())) / 1e6,
        static_cast<double>(std::filesystem::file_size(dir.TreeFile())) / 1e6,
        static_cast<double>(std::filesystem::file_size(dir.RuleFile())) / 1e6);
    bench::Report("load", Times(dir, size), 1.3);
    bench::Report("load: bytes kept", Memory(dir, size), 0.5);
    return 0;
}
