#include "arborist/utilities/json_text.h"

#include <memory>
#include <new>

#include <json/reader.h>

#include "arborist/frame/thread_value.h"

namespace {

// One reader for each thread: creating one takes longer than parsing a short text.
struct ReaderOfThread {
    const std::unique_ptr<Json::CharReader> reader{Json::CharReaderBuilder().newCharReader()};
};

Json::CharReader& Reader()
{
    return *ValueOfThread<ReaderOfThread, ReaderOfThread>().reader;
}

// Where the JSON library has no memory for a text, it throws its own error instead of std::bad_alloc.
bool IsLackOfMemory(std::string_view words)
{
    return words.find("Failed to allocate") != std::string_view::npos;
}

// Null if there is none.
const Json::Value* MemberOf(const Json::Value& root, std::string_view key)
{
    return root.isObject() ? root.find(key.data(), key.data() + key.size()) : nullptr;
}

bool IsNested(const Json::Value& value)
{
    return value.isObject() || value.isArray();
}

} // namespace

bool ParseJson(std::string_view text, Json::Value& root, std::string& error)
{
    error.clear();
    try {
        return Reader().parse(text.data(), text.data() + text.size(), &root, &error) && error.empty();
    } catch (const Json::Exception& exception) {
        if (IsLackOfMemory(exception.what())) {
            throw std::bad_alloc();
        }
        error = exception.what();
        return false;
    }
}

std::string MemberText(const Json::Value& root, std::string_view key)
{
    const Json::Value* const member = MemberOf(root, key);
    return member == nullptr || IsNested(*member) ? "" : member->asString();
}

bool IsMemberReadable(const Json::Value& root, std::string_view key)
{
    const Json::Value* const member = MemberOf(root, key);
    return root.isObject() && (member == nullptr || !IsNested(*member));
}
