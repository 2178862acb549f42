#ifndef ARBORIST_TESTS_SUPPORT_EXAMPLE_PAGE_H
#define ARBORIST_TESTS_SUPPORT_EXAMPLE_PAGE_H

#include <string>
#include <utility>
#include <vector>

/// One fenced block of a page: keys and values in order, with pieces filled in.
struct PageExample {
    /// The heading above it as an identifier in UpperCamelCase, with a number unless it is the first under that
    /// heading.
    std::string name;
    int line = 0;
    std::vector<std::pair<std::string, std::string>> entries;

    /// All values of a key, in order.
    std::vector<std::string> All(const std::string& key) const;
    /// The first value of a key; `fallback` if the key is missing.
    std::string First(const std::string& key, const std::string& fallback = "") const;
    bool Has(const std::string& key) const { return !All(key).empty(); }
};

/// The examples of a page ("arborist" blocks), with the pieces of its "arborist-pieces" block filled in.
std::vector<PageExample> ReadExamples(const std::string& page);

/// Third-level headings of a page whose section lacks an example or a line that begins with "Instead:".
std::vector<std::string> IncompleteSections(const std::string& page);

#endif
