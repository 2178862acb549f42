#include <fstream>
#include <iterator>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/detection_observer.h"

namespace {

std::string Page()
{
    std::ifstream file(std::string(ARBORIST_SOURCE_DIR) + "/docs/explain.md", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(ExplainPageTest, ListsEveryReasonInTheirOrder)
{
    using Reason = DetectionObserver::Reason;
    std::vector<std::string> words;
    // Up to the first number that has no word: reasons that are added later count, too.
    for (int reason = 1; *DetectionObserver::ReasonText(static_cast<Reason>(reason)) != '\0'; ++reason) {
        words.emplace_back(DetectionObserver::ReasonText(static_cast<Reason>(reason)));
    }
    std::string page = Page();
    page = page.substr(page.find("## Reasons"), page.find("## JSON") - page.find("## Reasons"));
    const std::regex row("\\| `([a-z_]+)` \\|");
    std::vector<std::string> listed;
    for (std::sregex_iterator match(page.begin(), page.end(), row), end; match != end; ++match) {
        listed.push_back((*match)[1]);
    }
    EXPECT_EQ(listed, words);
}

} // namespace
