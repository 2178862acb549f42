#include "tools/arborist/commands/seconds.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <sstream>

namespace diagnosis::command {

Option AddSeconds(Command app, const std::string& name, double& seconds, double least,
    const std::string& description)
{
    static constexpr double MOST = 86400;
    const auto problem = [least](const std::string& text) {
        double value = 0;
        const char* end = text.data() + text.size();
        const auto [last, error] = std::from_chars(text.data(), end, value);
        std::ostringstream message;
        // "nan" is parsed, too, but fails every comparison.
        if (error != std::errc() || last != end || !(value >= least && value <= MOST)) {
            message << "must be a number of seconds from " << least << " to " << MOST << ": " << text;
        }
        return message.str();
    };
    return app.Add(name, seconds, description).Takes("SECONDS").Check(problem).ShowDefault();
}

std::chrono::milliseconds Milliseconds(double seconds)
{
    return std::chrono::milliseconds(static_cast<std::int64_t>(std::ceil(seconds * 1000)));
}

} // namespace diagnosis::command
