#ifndef ARBORIST_TOOLS_TERMINAL_COLOUR_H
#define ARBORIST_TOOLS_TERMINAL_COLOUR_H

#include <optional>
#include <string>

namespace diagnosis::command {

/// Puts texts in colours of a terminal, or leaves them as they are.
class Colour {
public:
    explicit Colour(bool isOn) : mIsOn(isOn) {}

    std::string Red(const std::string& text) const { return Wrap("31;1", text); }
    std::string Green(const std::string& text) const { return Wrap("32", text); }
    std::string Yellow(const std::string& text) const { return Wrap("33", text); }
    std::string Bold(const std::string& text) const { return Wrap("1", text); }
    std::string Faint(const std::string& text) const { return Wrap("2", text); }

private:
    std::string Wrap(const char* code, const std::string& text) const
    {
        return mIsOn && !text.empty() ? std::string("\x1b[") + code + "m" + text + "\x1b[0m" : text;
    }

    bool mIsOn;
};

/// Whether results are coloured under "auto", "always" or "never": under "auto" when standard output is a terminal that
/// shows colours and NO_COLOR is not set. Nothing for any other word.
std::optional<bool> IsColoured(const std::string& word);

} // namespace diagnosis::command

#endif
