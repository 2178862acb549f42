// Reading a rule set against the XML library's own reading of the two files. Neither time includes destroying the
// objects, except for the tree file's document, which the loader clears.

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <tinyxml2.h>

#include "bench/compare.h"
#include "bench/heap_gauge.h"
#include "bench/rule_set_dir.h"

namespace {

std::unique_ptr<tinyxml2::XMLDocument> Loaded(const std::string& path)
{
    auto document = std::make_unique<tinyxml2::XMLDocument>();
    if (document->LoadFile(path.c_str()) != tinyxml2::XML_SUCCESS) {
        std::abort();
    }
    return document;
}

struct Documents {
    explicit Documents(const bench::RuleSetDir& dir) : trees(Loaded(dir.TreeFile())), rules(Loaded(dir.RuleFile())) {}

    std::unique_ptr<tinyxml2::XMLDocument> trees;
    std::unique_ptr<tinyxml2::XMLDocument> rules;
};

bench::Pair Times(const bench::RuleSetDir& dir, const bench::RuleSetSize& size)
{
    std::vector<double> ours;
    std::vector<double> baseline;
    for (int round = 0; round < 9; ++round) {
        std::optional<Documents> documents;
        baseline.push_back(bench::Milliseconds([&] { documents.emplace(dir); }));
        documents.reset();
        std::unique_ptr<FaultTreeParser> parser;
        ours.push_back(bench::Milliseconds([&] { parser = bench::Parsed(dir, size); }));
    }
    return {bench::Median(ours), bench::Median(baseline)};
}

// Memory that stays in use without the rule file's document, against that of both documents.
bench::Pair Memory(const bench::RuleSetDir& dir, const bench::RuleSetSize& size)
{
    const HeapGauge gauge;
    const auto ruleDocument = Loaded(dir.RuleFile());
    const double ruleBytes = gauge.Live();
    const auto treeDocument = Loaded(dir.TreeFile());
    const double bothBytes = gauge.Live();
    const auto parser = bench::Parsed(dir, size);
    return {gauge.Live() - bothBytes - ruleBytes, bothBytes};
}

} // namespace

int main()
{
    bench::SilenceLog();
    const bench::RuleSetSize size;
    const bench::RuleSetDir dir(size);
    std::printf("# rule set of %.1f MB: trees %.1f MB, rules %.1f MB\n",
        static_cast<double>(std::filesystem::file_size(dir.TreeFile()) + std::filesystem::file_size(dir.RuleFile())) / 1e6,
        static_cast<double>(std::filesystem::file_size(dir.TreeFile())) / 1e6,
        static_cast<double>(std::filesystem::file_size(dir.RuleFile())) / 1e6);
    bench::Report("load", Times(dir, size), 1.3);
    bench::Report("load: bytes kept", Memory(dir, size), 0.5);
    return 0;
}
