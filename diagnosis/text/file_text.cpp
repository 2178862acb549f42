#include "diagnosis/text/file_text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "diagnosis/text/json_text.h"

namespace diagnosis {

std::optional<std::string> FileText(const std::string& path, std::size_t most)
{
    static constexpr std::size_t PIPE_BLOCK = 65536;
    std::ifstream file(path, std::ios::binary);
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    // One byte more than the file has, so that the first block ends it.
    const std::size_t block = error ? PIPE_BLOCK : std::min(static_cast<std::size_t>(size), most) + 1;
    const bool isOpen = file.is_open();
    std::string text;
    for (std::size_t length = 0; file && length <= most;) {
        text.resize(length + block);
        file.read(text.data() + length, static_cast<std::streamsize>(block));
        length += static_cast<std::size_t>(file.gcount());
        text.resize(length);
    }
    return isOpen && !file.bad() ? std::optional(std::move(text)) : std::nullopt;
}

std::optional<Json::Value> ReadJsonFile(const std::string& path, std::string& problem, std::size_t most)
{
    const auto text = FileText(path, most);
    if (!text) {
        problem = path + ": it can't be read";
        return std::nullopt;
    }
    if (text->size() > most) {
        problem = path + ": " + TOO_LARGE;
        return std::nullopt;
    }
    auto json = ParseJson(*text, problem);
    if (!json) {
        problem = path + ": " + problem;
    }
    return json;
}

} // namespace diagnosis
