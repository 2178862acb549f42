#include "diagnosis/report/page.h"

#include "diagnosis/report/html.h"
#include "diagnosis/report/report_style.h"

namespace diagnosis {

namespace {

constexpr char HEAD[] =
    "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'\">\n";

} // namespace

std::string PageStart(const std::string& title, const std::string& moreStyle)
{
    return HEAD + Html("title", title) + "\n<style>" + REPORT_STYLE + moreStyle + "</style>\n</head>\n<body>\n";
}

std::string PageEnd()
{
    return "<footer>" + Html("p", "Made by arborist " ARBORIST_VERSION) + "</footer>\n</body>\n</html>\n";
}

std::string Fact(const std::string& label, const std::string& value)
{
    return value.empty() ? "" : "<div>" + Html("dt", label) + Html("dd", value) + "</div>\n";
}

std::string Plural(std::uint64_t count, const std::string& one, const std::string& more)
{
    return std::to_string(count) + " " + (count == 1 ? one : more);
}

} // namespace diagnosis
