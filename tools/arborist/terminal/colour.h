#ifndef ARBORIST_TOOLS_TERMINAL_COLOUR_H
#define ARBORIST_TOOLS_TERMINAL_COLOUR_H

#include <string>

namespace diagnosis::command {

/// Adds the escapes of terminal colours to texts, or leaves them unchanged.
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

/// Sets the word of --color for the rest of the process: "auto" (the default), "always" or "never".
void SetColour(const std::string& word);

/// True if results, on standard output, are coloured. Under "auto": if it is a terminal that shows colours and NO_COLOR
/// is not set.
bool AreResultsColoured();
/// The same for messages, on standard error.
bool AreMessagesColoured();

} // namespace diagnosis::command

#endif
