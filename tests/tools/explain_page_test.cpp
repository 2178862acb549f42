#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/detection_observer.h"
#include "tests/tools/json_schema.h"

namespace {

TEST(ExplainPageTest, ListsEveryReasonInTheirOrder)
{
    using Reason = DetectionObserver::Reason;
    std::vector<std::string> words;
    // Up to the first number that has no word: reasons that are added later count, too.
    for (int reason = 1; *DetectionObserver::ReasonText(static_cast<Reason>(reason)) != '\0'; ++reason) {
        words.emplace_back(DetectionObserver::ReasonText(static_cast<Reason>(reason)));
    }
    std::string page = PageOfDocs("explain.md");
    page = page.substr(page.find("## Reasons"), page.find("## JSON") - page.find("## Reasons"));
    const std::regex row("\\| `([a-z_]+)` \\|");
    std::vector<std::string> listed;
    for (std::sregex_iterator match(page.begin(), page.end(), row), end; match != end; ++match) {
        listed.push_back((*match)[1]);
    }
    EXPECT_EQ(listed, words);
}

} // namespace
