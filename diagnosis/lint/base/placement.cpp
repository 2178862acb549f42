#include "diagnosis/lint/base/placement.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <tuple>

#include "diagnosis/rule_source/source_place.h"
#include "diagnosis/text/printable.h"
#include "diagnosis/text/running_hash.h"

namespace diagnosis::lint {

namespace {

using rule_source::Element;
using rule_source::SourceFile;
using rule_source::SourcePlace;

// Limit on names in a path, which every path below repeats.
constexpr std::size_t LONGEST_KEY = 80;
// A file may be a single line with many findings.
constexpr std::size_t LONGEST_SOURCE = 4096;

std::string_view IdTextOf(Element element)
{
    // Searches only the first children for an "ID", which usually comes first, as each child of a wide element would
    // search again.
    static constexpr int MOST_CHILDREN = 16;
    int looked = 0;
    for (const Element child : rule_source::Children(element)) {
        if (child.Name() == "ID" || ++looked == MOST_CHILDREN) {
            return child.Name() == "ID" ? child.Text() : std::string_view();
        }
    }
    return {};
}

std::string StepOf(Element element)
{
    std::string_view key = element.Value("name");
    key = key.empty() ? element.Value("id") : key;
    key = key.empty() ? IdTextOf(element) : key;
    return std::string(element.Name()) + (key.empty() ? "" : "[" + std::string(key.substr(0, LONGEST_KEY)) + "]");
}

/// Finds paths of elements of which many have one parent.
class PathMemory {
public:
    std::string Of(Element element)
    {
        if (!element || !element.Parent()) {
            return "";
        }
        if (!(element.Parent() == mParent)) {
            mParent = element.Parent();
            mPath = ElementPath(mParent);
        }
        return mPath + (mPath.empty() ? "" : "/") + StepOf(element);
    }

private:
    Element mParent;
    std::string mPath;
};

std::optional<SourcePlace> PlaceOf(const Reported& reported)
{
    const Details& details = reported.details;
    return details.attribute  ? rule_source::PlaceOfValue(reported.element, details.attribute)
        : details.isAboutText ? rule_source::PlaceOfText(reported.element)
                              : rule_source::PlaceOfName(reported.element);
}

int Characters(std::string_view text)
{
    return static_cast<int>(std::count_if(
        text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

// Sets the column only if the place is on the finding's line, as nearly always.
void SetColumn(const Reported& reported, Finding& finding)
{
    const auto place = reported.element ? PlaceOf(reported) : std::nullopt;
    if (!place) {
        return;
    }
    const std::size_t start = reported.file->LineStart(finding.line);
    const std::size_t end = start + finding.source.size();
    if (place->offset < start || place->offset > end) {
        return;
    }
    const std::string_view text = reported.file->Text();
    const std::size_t length = std::min(place->length, end - place->offset);
    finding.column = Characters(text.substr(start, place->offset - start)) + 1;
    finding.columns = std::max(1, Characters(text.substr(place->offset, length)));
}

std::string Escaped(const std::string& text, bool isValue)
{
    std::string escaped;
    for (const char character : text) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '"':
            escaped += isValue ? "&quot;" : "\"";
            break;
        case '\'':
            escaped += isValue ? "&apos;" : "'";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

void SetEdits(const Reported& reported, Finding& finding)
{
    using What = FixOf::What;
    const FixOf& fix = reported.details.fix;
    std::optional<SourcePlace> place;
    if (fix.what == What::TEXT) {
        place = rule_source::PlaceOfText(reported.element);
    } else if (fix.what == What::VALUE) {
        place = rule_source::PlaceOfValue(reported.element, reported.details.attribute);
    } else if (fix.what == What::REMOVE_ATTRIBUTE) {
        place = rule_source::PlaceOfAttribute(reported.element, reported.details.attribute);
    }
    if (place) {
        finding.edits.push_back({place->offset, place->length,
            reported.file->Text().substr(place->offset, place->length), Escaped(fix.text, fix.what == What::VALUE),
            fix.isSafe});
    }
}

// A number distinguishes equal findings.
void SetFingerprints(std::vector<Finding>& findings)
{
    std::map<std::uint64_t, int> seen;
    for (Finding& finding : findings) {
        RunningHash hash;
        // The name of the file without its folders: a rule set may be checked out anywhere.
        const std::string file = finding.file.substr(finding.file.rfind('/') + 1);
        for (const std::string& part : {std::string(finding.check->id), file, finding.element, finding.message}) {
            hash = hash.Extended(part).Extended(std::string_view("\0", 1));
        }
        hash = hash.Extended(std::to_string(seen[hash.Value()]++));
        char digits[17];
        std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash.Value()));
        finding.fingerprint = digits;
    }
}

Finding Placed(const Reported& reported, PathMemory& paths)
{
    Finding finding;
    finding.check = reported.check;
    finding.file = reported.file->Path();
    finding.line = reported.line;
    finding.source = reported.file->Line(reported.line).substr(0, LONGEST_SOURCE);
    finding.element = paths.Of(reported.element);
    finding.message = reported.message;
    finding.help = reported.details.help;
    SetColumn(reported, finding);
    SetEdits(reported, finding);
    return finding;
}

// Equal for what is about a file and so is found again for each of its tags.
auto Identity(const Reported& reported)
{
    return std::make_tuple(std::string_view(reported.file->Path()), reported.line, std::string_view(reported.check->id),
        std::hash<Element>()(reported.element), std::string_view(reported.message));
}

// The distinct findings in order of line.
std::vector<const Reported*> Distinct(const std::vector<Reported>& reported)
{
    std::vector<const Reported*> distinct;
    distinct.reserve(reported.size());
    for (const Reported& one : reported) {
        distinct.push_back(&one);
    }
    std::sort(distinct.begin(), distinct.end(),
        [](const Reported* one, const Reported* other) { return Identity(*one) < Identity(*other); });
    const auto isSame = [](const Reported* one, const Reported* other) { return Identity(*one) == Identity(*other); };
    distinct.erase(std::unique(distinct.begin(), distinct.end(), isSame), distinct.end());
    return distinct;
}

auto Order(const Finding& finding)
{
    return std::make_tuple(std::string_view(finding.file), finding.line, finding.column,
        std::string_view(finding.check->id), std::string_view(finding.element), std::string_view(finding.message));
}

} // namespace

bool IsBefore(const Finding& one, const Finding& other)
{
    return Order(one) < Order(other);
}

std::string ElementPath(Element element)
{
    std::string path;
    for (; element && element.Parent(); element = element.Parent()) {
        path = StepOf(element) + (path.empty() ? "" : "/") + path;
    }
    return path;
}

std::vector<Finding> PlaceFindings(const std::vector<Reported>& reported)
{
    std::vector<Finding> findings;
    findings.reserve(reported.size());
    PathMemory paths;
    for (const Reported* one : Distinct(reported)) {
        findings.push_back(Placed(*one, paths));
    }
    std::sort(findings.begin(), findings.end(), IsBefore);
    SetFingerprints(findings);
    return findings;
}

} // namespace diagnosis::lint
