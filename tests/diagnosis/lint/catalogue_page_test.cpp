#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "diagnosis/lint/registry.h"

namespace {

using diagnosis::lint::Check;
using diagnosis::lint::CheckClass;

constexpr char PAGE[] = ARBORIST_SOURCE_DIR "/docs/lint-checks.md";

std::string Needs(const Check& check)
{
    return check.kind == CheckClass::DEVICE ? "`--device`" : check.kind != CheckClass::HOST ? ""
        : std::string(check.finds).find("--log") != std::string::npos ? "`--log`"
                                                                       : "`--device-root`";
}

// Words in quotes of messages are code on a page.
std::string AsMarkdown(std::string text)
{
    for (char& character : text) {
        character = character == '"' ? '`' : character;
    }
    return text;
}

std::string PageOfRegistry()
{
    std::string page = "# The checks of `arborist lint`\n\n"
        "`arborist lint --explain ID` shows a bad and a good sample of each. [lint.md](lint.md) describes how to run them.\n\n"
        "| Id | Severity | Needs | Finds | At run time |\n|---|---|---|---|---|\n";
    for (const Check* check : diagnosis::lint::AllChecks()) {
        page += std::string("| ") + check->id + " | " + SeverityWord(check->severity) + " | " + Needs(*check) + " | **"
            + check->title + "**: " + AsMarkdown(check->finds) + " | " + AsMarkdown(check->atRunTime) + " |\n";
    }
    return page;
}

TEST(LintChecksPage, IsWhatTheRegistrySays)
{
    if (std::getenv("ARBORIST_WRITE_PAGES") != nullptr) {
        std::ofstream(PAGE, std::ios::binary) << PageOfRegistry();
    }
    std::ifstream file(PAGE, std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_TRUE(page == PageOfRegistry())
        << "run lint_tests --gtest_filter='LintChecksPage.*' with ARBORIST_WRITE_PAGES=1, and look at the page";
}

} // namespace
