#ifndef ARBORIST_TESTS_SUPPORT_DECIMAL_COMMA_H
#define ARBORIST_TESTS_SUPPORT_DECIMAL_COMMA_H

#include <string>

/// Sets a locale with a decimal comma as long as the object exists. Generates the locale, so that none need be
/// installed. One at a time.
class DecimalComma {
public:
    DecimalComma();
    ~DecimalComma();
    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;

    /// False if the system has no program that generates locales.
    bool IsSet() const { return mIsSet; }

private:
    std::string mFolder;
    bool mIsSet = false;
};

#endif
