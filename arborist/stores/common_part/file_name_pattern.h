#ifndef ARBORIST_STORES_COMMON_PART_FILE_NAME_PATTERN_H
#define ARBORIST_STORES_COMMON_PART_FILE_NAME_PATTERN_H

#include <memory>
#include <string>

/// An ECMAScript regular expression from a rule set, matched against paths and file names.
///
/// Compiled when the first name is matched. Matching throws std::regex_error if the pattern is invalid, has more than
/// 4096 characters or may have more than 1000 states, or takes too many steps or too much stack for a name, as back
/// references can.
class FileNamePattern {
public:
    explicit FileNamePattern(std::string pattern);
    ~FileNamePattern();
    FileNamePattern(FileNamePattern&&) noexcept;

    /// True if the whole of `name` matches. False if the pattern or the name is empty, or the name is longer than any
    /// path.
    bool Matches(const std::string& name);

private:
    struct Compiled;

    std::string mPattern;
    std::unique_ptr<Compiled> mCompiled;
};

#endif
