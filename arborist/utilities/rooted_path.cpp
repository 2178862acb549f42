#include "arborist/utilities/rooted_path.h"

#include <deque>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace {

constexpr int MOST_LINKS = 40;
// No system call accepts a longer path. Also bounds the work below.
constexpr std::size_t LONGEST_PATH = 4096;

// Inserts the elements of `path` in front of those that are still to be resolved.
void Prepend(std::deque<std::string>& elements, std::string_view path)
{
    std::vector<std::string> parts;
    while (!path.empty()) {
        const auto end = path.find('/');
        if (const std::string_view part = path.substr(0, end); !part.empty() && part != ".") {
            parts.emplace_back(part);
        }
        path = end == std::string_view::npos ? std::string_view() : path.substr(end + 1);
    }
    elements.insert(elements.begin(), parts.begin(), parts.end());
}

std::string Joined(const std::string& root, const std::vector<std::string>& elements)
{
    std::string path = root;
    for (const std::string& element : elements) {
        path += "/" + element;
    }
    return path;
}

} // namespace

std::string RootedPath::Resolve(const std::string& root, const std::string& path)
{
    if (path.size() >= LONGEST_PATH) {
        return "";
    }
    std::deque<std::string> open;
    Prepend(open, path);
    std::vector<std::string> walked;
    for (int links = 0; !open.empty();) {
        const std::string element = open.front();
        open.pop_front();
        if (element == "..") {
            if (!walked.empty()) {
                walked.pop_back();
            }
            continue;
        }
        walked.push_back(element);
        std::error_code error;
        const std::string target = std::filesystem::read_symlink(Joined(root, walked), error).string();
        if (error) {
            continue; // no link, or it doesn't exist
        }
        if (++links > MOST_LINKS) {
            return "";
        }
        walked.pop_back();
        if (!target.empty() && target.front() == '/') {
            walked.clear();
        }
        Prepend(open, target);
    }
    return walked.empty() ? root + "/" : Joined(root, walked);
}

std::string RootedPath::OnDevice(const std::string& root, const std::string& path)
{
    if (root.empty() || path.empty()) {
        return path;
    }
    if (path.front() == '/') {
        return Resolve(root, path);
    }
    static constexpr std::string_view HERE = "./";
    const std::string resolved = Resolve(".", path);
    return resolved.size() > HERE.size() ? resolved.substr(HERE.size()) : resolved;
}
