#include "diagnosis/rule_source/source_file.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include <tinyxml2.h>

#include "arborist/frame/rule_set_summary.h"
#include "diagnosis/text/file_text.h"

namespace diagnosis::rule_source {

namespace {

// What the library says of an error begins with its name and number: "Error=XML_ERROR_MISMATCHED_ELEMENT ErrorID=14
// (0xe) Line number=3: XMLElement name=a". Only the part behind the line adds anything to the name.
std::string ReasonOf(const tinyxml2::XMLDocument& document)
{
    std::string name = document.ErrorName();
    for (const char* prefix : {"XML_ERROR_", "XML_"}) {
        if (name.rfind(prefix, 0) == 0) {
            name.erase(0, std::string(prefix).size());
            break;
        }
    }
    for (char& letter : name) {
        letter = letter == '_' ? ' ' : static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter);
    }
    return name;
}

} // namespace

SourceFile::SourceFile(Content content)
    : mContent(std::move(content)), mDocument(std::make_unique<tinyxml2::XMLDocument>())
{
    const std::string& text = mContent.text;
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 1)) {
        mLineStarts.push_back(end + 1);
    }
}

SourceFile::~SourceFile() = default;

SourceFile::Content SourceFile::ReadContent(const std::string& path)
{
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        return {path, "", State::MISSING, "there is no such file"};
    }
    auto text = std::filesystem::is_regular_file(status) ? FileText(path) : std::nullopt;
    if (!text) {
        return {path, "", State::UNREADABLE, std::filesystem::is_directory(status) ? "it is a folder" : "it can't be read"};
    }
    return {path, std::move(*text)};
}

std::unique_ptr<SourceFile> SourceFile::Of(Content content)
{
    std::unique_ptr<SourceFile> file(new SourceFile(std::move(content)));
    if (file->IsLoaded()) {
        file->Parse();
    }
    return file;
}

std::unique_ptr<SourceFile> SourceFile::Of(const std::string& path, std::string text)
{
    return Of(Content{path, std::move(text)});
}

void SourceFile::Parse()
{
    mDocument->SetUserData(this);
    mProblemLine = LineOfTooManyAttributes(mContent.text);
    if (mProblemLine != 0) {
        mContent.state = State::MALFORMED;
        mContent.problem = "an element has too many attributes";
        return;
    }
    const tinyxml2::XMLError error = mDocument->Parse(mContent.text.data(), mContent.text.size());
    if (error == tinyxml2::XML_SUCCESS) {
        return;
    }
    mContent.state = error == tinyxml2::XML_ELEMENT_DEPTH_EXCEEDED ? State::TOO_DEEP : State::MALFORMED;
    mContent.problem = ReasonOf(*mDocument);
    mProblemLine = mDocument->ErrorLineNum();
}

Element SourceFile::Root() const
{
    return IsLoaded() ? Element(mDocument->RootElement()) : Element();
}

std::size_t SourceFile::LineStart(int number) const
{
    const auto index = static_cast<std::size_t>(number) - 1;
    return number < 1 || index >= mLineStarts.size() ? mContent.text.size() : mLineStarts[index];
}

std::string_view SourceFile::Line(int number) const
{
    const std::size_t start = LineStart(number);
    if (start == mContent.text.size()) {
        return {};
    }
    // Not searched for: a file may be one line of many megabytes, of which thousands of findings ask.
    std::string_view line = std::string_view(mContent.text).substr(start, LineStart(number + 1) - start);
    if (line.back() == '\n') {
        line.remove_suffix(1);
    }
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

} // namespace diagnosis::rule_source
