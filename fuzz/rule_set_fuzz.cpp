// Any bytes as the rule file of a rule set with the tag "t", and as its tree file; then everything that "arborist rules"
// tells of it. A rule set does not differ from itself.

#include <cstdlib>

#include "diagnosis/results/rule_set_json.h"
#include "diagnosis/rule_set/inventory.h"
#include "diagnosis/rule_set/schema.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/small_rule_set.h"

namespace {

using diagnosis::lint::DeviceProfile;
using diagnosis::rule_set::ReadRuleSet;
using diagnosis::rule_source::RuleSet;
using diagnosis::rule_source::SourceFile;

void Tell(const std::string& trees, const std::string& rules)
{
    ReadRuleSet read;
    read.files = {SourceFile::Of("FaultTrees.xml", trees), SourceFile::Of("FaultTreeRules.xml", rules)};
    for (const std::string& tag : diagnosis::rule_source::TagsOf(read.files.TreeRoot(), {})) {
        if (read.tags.size() < 3) {
            read.tags.push_back(std::make_unique<RuleSet>(read.files, tag));
        }
    }
    diagnosis::InventoryJson(read);
    diagnosis::CountsJson(read);
    diagnosis::ReachJson(read, {DeviceProfile{"P", "x86", "", {1, 2}}, DeviceProfile{}});
    for (const auto& tag : read.tags) {
        const auto names = diagnosis::rule_set::NamesOf(*tag);
        diagnosis::ShowJson(read, names.empty() ? "" : names.front());
        diagnosis::rule_set::XmlSchemaOf(read.files, tag->tag);
    }
    if (!DifferencesOf(read, read).empty()) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir quiet;
    const std::string text(reinterpret_cast<const char*>(data), size);
    Tell(SMALL_TREE_FILE, text);
    Tell(text, SMALL_RULE_FILE);
    return 0;
}
