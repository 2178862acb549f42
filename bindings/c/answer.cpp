#include "bindings/c/answer.h"

#include "diagnosis/results/detection_json.h"
#include "diagnosis/text/json_writer.h"
#include "diagnosis/text/printable.h"

namespace diagnosis::bindings {

std::string WarningsJson(const std::vector<Warning>& warnings)
{
    JsonWriter json;
    WriteWarnings(json, warnings);
    return json.Line();
}

std::string ValidUtf8(const std::string& text)
{
    std::string valid;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = Utf8Length(rest);
        valid += length == 0 ? std::string_view("\xEF\xBF\xBD") : rest.substr(0, length);
        rest.remove_prefix(length == 0 ? 1 : length);
    }
    return valid;
}

std::string OneLine(const std::string& text)
{
    static constexpr std::size_t MOST = 1000;
    static constexpr std::size_t REST = 200;
    if (text.size() <= MOST) {
        return Printable(text);
    }
    // The reason often stands behind a name. A character that the cut divides is shown by its bytes.
    return Printable(text.substr(0, MOST - REST)) + "..." + Printable(text.substr(text.size() - REST));
}

} // namespace diagnosis::bindings
