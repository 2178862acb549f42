#ifndef ARBORIST_TESTS_SUPPORT_DECIMAL_COMMA_H
#define ARBORIST_TESTS_SUPPORT_DECIMAL_COMMA_H

#include <string>

/// A locale of the process whose numbers have a comma, made for as long as the object lives: none need be installed.
/// One at a time.
class DecimalComma {
public:
    DecimalComma();
    ~DecimalComma();
    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;

    /// False where the system has no program that makes a locale.
    bool IsSet() const { return mIsSet; }

private:
    std::string mFolder;
    bool mIsSet = false;
};

#endif
