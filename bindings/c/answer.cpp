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

} // namespace diagnosis::bindings
