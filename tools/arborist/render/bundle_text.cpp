#include "tools/arborist/render/bundle_text.h"

#include <algorithm>

#include "diagnosis/text/printable.h"
#include "tools/arborist/render/log_text.h"

namespace diagnosis::command {

namespace {

using FileKind = Evidence::RuleSetFileType;

std::string Padded(std::string label)
{
    constexpr std::size_t WIDTH = 18;
    label.resize(std::max(label.size() + 1, WIDTH), ' ');
    return label;
}

std::string Line(const std::string& label, const std::string& text)
{
    return "  " + Padded(label) + Printable(text) + "\n";
}

std::string ColouredState(BundleFinding::State state, Colour colour)
{
    const std::string word = Padded(StateWord(state));
    return state == BundleFinding::State::SOUND  ? colour.Green(word)
        : state == BundleFinding::State::BROKEN ? colour.Red(word)
                                                : colour.Yellow(word);
}

std::string Count(std::size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::size_t CountThere(const std::vector<NamedPath>& paths)
{
    return static_cast<std::size_t>(std::count_if(paths.begin(), paths.end(),
        [](const NamedPath& path) { return path.isThere; }));
}

std::string RulesText(const BundleContents& contents)
{
    return contents.ruleSetFailure ? contents.ruleSetFailure->message
                                   : Count(RuleSetCount(contents, FileKind::TREES), "tree") + ", "
            + Count(RuleSetCount(contents, FileKind::RULES), "rule") + " under the tag "
            + contents.description.treeTag;
}

std::string LogLine(const BundleContents& contents)
{
    if (!contents.hasLog) {
        return "none";
    }
    return contents.logFailure ? contents.logFailure->message
                               : Count(contents.log.rows, "row") + ", " + SpanText(contents.log.span);
}

std::string PathsText(const std::string& label, const std::vector<NamedPath>& paths)
{
    std::string text = Line(label, std::to_string(paths.size()) + " named, " + std::to_string(CountThere(paths))
        + " there");
    for (const NamedPath& path : paths) {
        text += path.isThere ? "" : Line("", "missing: " + path.path);
    }
    return text;
}

std::string MomentText(const BundleContents& contents)
{
    const Bundle& bundle = contents.description;
    return bundle.now.empty() ? "the real time"
                              : bundle.now + (bundle.tz.empty() ? ", zone of this machine" : ", zone " + bundle.tz);
}

} // namespace

std::string BundleText(const BundleContents& contents)
{
    const std::string head = Printable(contents.bundle) + (contents.isZip ? " (zip)\n" : " (folder)\n");
    if (contents.failure) {
        return Printable(contents.bundle) + "\n  NO BUNDLE\n";
    }
    std::string device;
    for (const auto& [key, value] : DeviceAttributes(contents.description.device)) {
        device += value.empty() ? "" : (device.empty() ? "" : ", ") + (key + (" " + value));
    }
    const std::string& id = contents.description.deviceId;
    std::string settings;
    for (const auto& [key, value] : contents.description.settings) {
        settings += value.empty() ? "" : Line(settings.empty() ? "settings" : "", key + (" " + value));
    }
    return head + Line("rules", RulesText(contents)) + Line("scene", std::to_string(contents.description.detectScene))
        + Line("moment", MomentText(contents)) + Line("device", device.empty() ? "not known" : device)
        + (id.empty() ? "" : Line("device id", "given")) + settings
        + Line("event log", LogLine(contents))
        + Line("repair records", contents.repairFailure ? contents.repairFailure->message
                                                        : std::to_string(contents.repairRecords))
        + PathsText("node files", contents.nodeFiles) + PathsText("searched folders", contents.searchedFolders)
        + Line("code answers", std::to_string(contents.description.codeAnswers.size()));
}

std::string CheckText(const std::string& bundle, const std::vector<BundleFinding>& findings, Colour colour)
{
    std::string text = Printable(bundle) + "\n";
    for (const BundleFinding& finding : findings) {
        const Remark& what = finding.what;
        const std::string code = finding.code + (what.id.empty() ? "" : ", " + what.id);
        text += "  " + ColouredState(finding.state, colour)
            + Printable(PlacedMessage(what) + (code.empty() ? "" : " [" + code + "]")) + "\n";
    }
    return text;
}

} // namespace diagnosis::command
