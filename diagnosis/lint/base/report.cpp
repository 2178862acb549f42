#include "diagnosis/lint/base/report.h"

namespace diagnosis::lint {

namespace {

FixOf ReplacementOf(const Details& details)
{
    return details.attribute  ? FixOf::Value(details.near, false)
        : details.isAboutText ? FixOf::Text(details.near, false)
                              : FixOf::Name(details.near);
}

} // namespace

void Report::Add(rule_source::Element element, std::string message, Details details)
{
    if (!details.near.empty()) {
        details.help = DidYouMean(details.near);
        details.fix = details.fix.what == FixOf::What::NOTHING ? ReplacementOf(details) : details.fix;
    }
    Reported reported;
    reported.check = mCheck;
    reported.file = element.File();
    reported.element = element;
    reported.line = details.attribute ? details.attribute.Line() : element.Line();
    reported.message = std::move(message);
    reported.details = std::move(details);
    mFindings.push_back(std::move(reported));
}

void Report::AddToFile(const rule_source::SourceFile& file, int line, std::string message)
{
    Reported reported;
    reported.check = mCheck;
    reported.file = &file;
    reported.line = line;
    reported.message = std::move(message);
    mFindings.push_back(std::move(reported));
}

std::string DidYouMean(const std::string& near)
{
    return near.empty() ? "" : "did you mean " + Quoted(near) + "?";
}

std::string Quoted(std::string_view name)
{
    static constexpr std::size_t LONGEST = 120; // foreign files may have names of any length
    const bool isCut = name.size() > LONGEST;
    return "\"" + std::string(name.substr(0, LONGEST)) + (isCut ? "..." : "") + "\"";
}

} // namespace diagnosis::lint
