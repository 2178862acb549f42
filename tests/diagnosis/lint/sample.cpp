#include "tests/diagnosis/lint/sample.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

constexpr char ROOT[] = ARBORIST_SOURCE_DIR "/tests/diagnosis/lint/samples";

std::string PathOf(const std::vector<std::string>& folders, const std::string& name)
{
    for (const std::string& folder : folders) {
        if (fs::exists(folder + "/" + name)) {
            return folder + "/" + name;
        }
    }
    return name;
}

std::set<std::string> Words(const std::string& text)
{
    std::istringstream stream(text);
    std::set<std::string> words;
    for (std::string word; stream >> word;) {
        words.insert(word);
    }
    return words;
}

} // namespace

std::vector<std::string> LintSample::Folders(const std::string& which) const
{
    return {folder + "/" + which, folder, std::string(ROOT) + "/plain"};
}

diagnosis::rule_source::RuleSetFiles LintSample::Files(const std::string& which) const
{
    using diagnosis::rule_source::SourceFile;
    const auto folders = Folders(which);
    return {SourceFile::Read(PathOf(folders, "FaultTrees.xml")),
        SourceFile::Read(PathOf(folders, "FaultTreeRules.xml"))};
}

void LintSample::CopyTo(const TempDir& dir, const std::string& which) const
{
    for (const char* file : {"FaultTrees.xml", "FaultTreeRules.xml"}) {
        fs::copy_file(PathOf(Folders(which), file), dir.Path(file));
    }
}

std::vector<LintSample> AllLintSamples()
{
    std::vector<LintSample> samples;
    for (const auto& entry : fs::directory_iterator(ROOT)) {
        std::string name = entry.path().filename().string();
        if (entry.is_directory() && name.front() == 'A') {
            const std::string id = name.substr(0, name.find('-'));
            std::replace(name.begin(), name.end(), '-', '_');
            samples.push_back({id, name, entry.path().string()});
        }
    }
    std::sort(samples.begin(), samples.end(),
        [](const LintSample& one, const LintSample& other) { return one.name < other.name; });
    return samples;
}

const LintSample& SampleNamed(const std::string& start)
{
    static const std::vector<LintSample> samples = AllLintSamples();
    return *std::find_if(samples.begin(), samples.end(),
        [&](const LintSample& sample) { return sample.name.rfind(start, 0) == 0; });
}

LintEffect ReadEffect(const LintSample& sample)
{
    std::ifstream file(sample.folder + "/effect.txt");
    std::ostringstream text;
    text << file.rdbuf();
    LintEffect effect;
    for (const auto& example : ReadExamples("### x\n```arborist\n" + text.str() + "```\n")) {
        for (const auto& [key, value] : example.entries) {
            if (key == "bad" || key == "good") {
                (key == "bad" ? effect.bad : effect.good).push_back(value);
            } else if (key == "also") {
                effect.also = Words(value);
            } else {
                effect.scene.emplace_back(key, value);
            }
        }
    }
    return effect;
}
