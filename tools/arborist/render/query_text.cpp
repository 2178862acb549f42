#include "tools/arborist/render/query_text.h"

#include "diagnosis/text/printable.h"

namespace diagnosis::command {

namespace {

std::string Line(const char* label, const std::string& id)
{
    return std::string("  ") + label + (id.empty() ? "none" : Printable(id)) + "\n";
}

} // namespace

std::string QueryText(const QueryReport& report)
{
    const std::string head = Printable(report.bundle) + ": " + Printable(report.code) + "\n";
    if (report.failure) {
        return head + "  NOT ANSWERED\n";
    }
    return head + Line("would run    ", report.wouldRun ? "yes" : "no") + Line("description  ", report.faultDescription)
        + Line("suggestion   ", report.suggestion) + Line("repair       ", report.repair);
}

} // namespace diagnosis::command
