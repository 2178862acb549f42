#include "diagnosis/lint/base/placement.h"

#include <algorithm>
#include <compare>
#include <tuple>
#include <unordered_map>

#include "diagnosis/rule_source/source_place.h"
#include "diagnosis/text/printable.h"
#include "diagnosis/text/running_hash.h"

namespace diagnosis::lint {

namespace {

using rule_source::Element;
using rule_source::SourcePlace;

// A longer name would be repeated in the path of everything below it.
constexpr std::size_t LONGEST_KEY = 80;
// A file may be a single line with findings anywhere in it.
constexpr std::size_t LONGEST_SOURCE = 4096;

std::string_view IdTextOf(Element element)
{
    // An "ID" is the first child, so that the children of a wide element need not be searched.
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

/// Makes the paths of elements. Those that follow each other mostly have the same ones above them.
class PathMaker {
public:
    std::string Of(Element element)
    {
        FindWay(element);
        std::size_t same = 0;
        while (same < mSteps.size() && same < mWay.size() && mSteps[same].element == mWay[mWay.size() - 1 - same]) {
            ++same;
        }
        mSteps.resize(same);
        mPath.resize(same == 0 ? 0 : mSteps.back().end);
        for (std::size_t step = same; step < mWay.size(); ++step) {
            const Element next = mWay[mWay.size() - 1 - step];
            mPath += (step == 0 ? "" : "/") + StepOf(next);
            mSteps.push_back({next, mPath.size()});
        }
        return mPath;
    }

private:
    struct Step {
        Element element;
        /// Length of the path up to this step.
        std::size_t end = 0;
    };

    // From the element up to the one below the root.
    void FindWay(Element element)
    {
        mWay.clear();
        for (Element parent = element.Parent(); parent; parent = parent.Parent()) {
            mWay.push_back(element);
            element = parent;
        }
    }

    std::vector<Element> mWay;
    std::vector<Step> mSteps;
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

// Only if the place is on the finding's line, as nearly all are.
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

Element ElementToFix(const Reported& reported)
{
    const Element other = reported.details.fix.element;
    return other ? other : reported.element;
}

std::optional<SourcePlace> PlaceToFix(const Reported& reported)
{
    using What = FixOf::What;
    const rule_source::Attribute attribute = reported.details.attribute;
    const Element element = ElementToFix(reported);
    switch (reported.details.fix.what) {
    case What::TEXT:
        return rule_source::PlaceOfText(element);
    case What::VALUE:
        return rule_source::PlaceOfValue(element, attribute);
    case What::NAME:
        return rule_source::PlaceOfName(element);
    case What::ATTRIBUTE_NAME:
        return rule_source::PlaceOfAttributeName(element, attribute);
    case What::REMOVE_ATTRIBUTE:
        return rule_source::PlaceOfAttribute(element, attribute);
    default:
        return std::nullopt;
    }
}

void AddEdit(const Reported& reported, const SourcePlace& place, Finding& finding)
{
    const FixOf& fix = reported.details.fix;
    const rule_source::SourceFile& file = *ElementToFix(reported).File();
    finding.edits.push_back({place.offset, place.length, file.Text().substr(place.offset, place.length),
        Escaped(fix.text, fix.what == FixOf::What::VALUE), fix.isSafe, file.Path()});
}

void SetEdits(const Reported& reported, Finding& finding)
{
    const auto place = PlaceToFix(reported);
    if (!place) {
        return;
    }
    AddEdit(reported, *place, finding);
    const bool isName = reported.details.fix.what == FixOf::What::NAME;
    if (const auto end = isName ? rule_source::PlaceOfEndName(reported.element) : std::nullopt) {
        AddEdit(reported, *end, finding);
    }
}

std::string Hexadecimal(std::uint64_t number)
{
    static constexpr char DIGITS[] = "0123456789abcdef";
    std::string digits(16, '0');
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, number >>= 4U) {
        *digit = DIGITS[number & 15U];
    }
    return digits;
}

// They are sorted by line already; this sorts those of one line.
void SortLines(std::vector<Finding>& findings)
{
    const auto isOfLine = [](const Finding& one, const Finding& other) {
        return one.line == other.line && one.file == other.file;
    };
    for (auto begin = findings.begin(); begin != findings.end();) {
        auto end = begin + 1;
        while (end != findings.end() && isOfLine(*begin, *end)) {
            ++end;
        }
        std::sort(begin, end, IsBefore);
        begin = end;
    }
}

// A number distinguishes equal findings.
void SetFingerprints(std::vector<Finding>& findings)
{
    std::unordered_map<std::uint64_t, int> seen;
    seen.reserve(findings.size());
    for (Finding& finding : findings) {
        RunningHash hash;
        // The name of the file without its folders: a rule set may be checked out anywhere.
        const std::string_view file = std::string_view(finding.file).substr(finding.file.rfind('/') + 1);
        for (const std::string_view part : {std::string_view(finding.check->id), file,
                 std::string_view(finding.element), std::string_view(finding.message)}) {
            hash = hash.Extended(part).Extended(std::string_view("\0", 1));
        }
        finding.fingerprint = Hexadecimal(hash.Extended(std::to_string(seen[hash.Value()]++)).Value());
    }
}

bool IsRule(Element element)
{
    const std::string_view name = element.Name();
    return name == "alarmRule" || name == "commandRule" || name == "codeRule" || name == "nodeRule";
}

// An entry of the event rules, or an event of a tree.
bool IsEvent(Element element)
{
    const std::string_view name = element.Name();
    return name == "Event" || name == "Basic-Event" || name == "Intermediate-Event" || name == "Undeveloped-Event";
}

void SetOwner(Element element, Finding& finding)
{
    for (; element; element = element.Parent()) {
        if (IsRule(element)) {
            finding.rule = element.Value("name");
            return;
        }
        if (IsEvent(element)) {
            finding.event = IdTextOf(element);
            return;
        }
    }
}

Finding Placed(Reported& reported, PathMaker& paths)
{
    Finding finding;
    finding.check = reported.check;
    finding.file = reported.file->Path();
    finding.line = reported.line;
    finding.source = reported.file->Line(reported.line).substr(0, LONGEST_SOURCE);
    finding.element = paths.Of(reported.element);
    SetColumn(reported, finding);
    SetEdits(reported, finding);
    finding.message = std::move(reported.message);
    finding.help = std::move(reported.details.help);
    finding.absent = reported.details.absent;
    return finding;
}

// Sorts by file and line. Findings about a whole file are equal: each of its tags finds them again.
std::strong_ordering Compare(const Reported& one, const Reported& other)
{
    if (one.file != other.file) {
        const auto byPath = one.file->Path() <=> other.file->Path();
        return byPath != 0 ? byPath : one.file <=> other.file;
    }
    const auto rest = [](const Reported& reported) {
        return std::make_tuple(
            reported.line, reported.check, std::hash<Element>()(reported.element), std::string_view(reported.message));
    };
    return one.line != other.line ? one.line <=> other.line : rest(one) <=> rest(other);
}

// Drops repeated ones and sorts by line.
std::vector<Reported*> Distinct(std::deque<Reported>& reported)
{
    std::vector<Reported*> distinct;
    distinct.reserve(reported.size());
    for (Reported& one : reported) {
        distinct.push_back(&one);
    }
    std::sort(distinct.begin(), distinct.end(),
        [](const Reported* one, const Reported* other) { return Compare(*one, *other) < 0; });
    const auto isSame = [](const Reported* one, const Reported* other) { return Compare(*one, *other) == 0; };
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

std::vector<Finding> PlaceFindings(std::deque<Reported> reported, const FindingDetails& details)
{
    std::vector<Finding> findings;
    findings.reserve(reported.size());
    PathMaker paths;
    for (Reported* one : Distinct(reported)) {
        findings.push_back(Placed(*one, paths));
        if (details.withOwners) {
            SetOwner(one->element, findings.back());
        }
    }
    SortLines(findings);
    if (details.withFingerprints) {
        SetFingerprints(findings);
    }
    return findings;
}

} // namespace diagnosis::lint
