#ifndef ARBORIST_STORES_COMMON_PART_FILE_NAME_PATTERN_H
#define ARBORIST_STORES_COMMON_PART_FILE_NAME_PATTERN_H

#include <memory>
#include <string>

/// An ECMAScript regular expression that a rule set holds against paths and file names.
///
/// Compiled at the first name. One that can't be compiled, that is longer than 4096 characters, or that would need
/// beyond all measure to decide a name (back references can), raises std::regex_error there.
class FileNamePattern {
public:
    explicit FileNamePattern(std::string pattern);
    ~FileNamePattern();
    FileNamePattern(FileNamePattern&&) noexcept;

    /// Whether the whole of `name` matches. False when the pattern or the name is empty, or the name is longer than a
    /// path can be.
    bool Matches(const std::string& name);

private:
    struct Compiled;

    std::string mPattern;
    std::unique_ptr<Compiled> mCompiled;
};

#endif
