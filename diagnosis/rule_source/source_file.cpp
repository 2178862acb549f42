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

SourceFile::SourceFile(std::string path)
    : mPath(std::move(path)), mDocument(std::make_unique<tinyxml2::XMLDocument>())
{
}

SourceFile::~SourceFile() = default;

std::unique_ptr<SourceFile> SourceFile::Read(const std::string& path)
{
    std::unique_ptr<SourceFile> file(new SourceFile(path));
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        file->mProblem = "there is no such file";
        return file;
    }
    auto text = std::filesystem::is_regular_file(status) ? FileText(path) : std::nullopt;
    if (!text) {
        file->mState = State::UNREADABLE;
        file->mProblem = std::filesystem::is_directory(status) ? "it is a folder" : "it can't be read";
        return file;
    }
    file->mText = std::move(*text);
    file->Parse();
    return file;
}

std::unique_ptr<SourceFile> SourceFile::Of(const std::string& path, std::string text)
{
    std::unique_ptr<SourceFile> file(new SourceFile(path));
    file->mText = std::move(text);
    file->Parse();
    return file;
}

void SourceFile::Parse()
{
    mDocument->SetUserData(this);
    mProblemLine = LineOfTooManyAttributes(mText);
    if (mProblemLine != 0) {
        mState = State::MALFORMED;
        mProblem = "an element has too many attributes";
        return;
    }
    const tinyxml2::XMLError error = mDocument->Parse(mText.data(), mText.size());
    if (error == tinyxml2::XML_SUCCESS) {
        mState = State::LOADED;
        return;
    }
    mState = error == tinyxml2::XML_ELEMENT_DEPTH_EXCEEDED ? State::TOO_DEEP : State::MALFORMED;
    mProblem = ReasonOf(*mDocument);
    mProblemLine = mDocument->ErrorLineNum();
}

Element SourceFile::Root() const
{
    return IsLoaded() ? Element(mDocument->RootElement()) : Element();
}

std::size_t SourceFile::LineStart(int number) const
{
    if (mLineStarts.empty()) {
        mLineStarts.push_back(0);
        for (std::size_t end = mText.find('\n'); end != std::string::npos; end = mText.find('\n', end + 1)) {
            mLineStarts.push_back(end + 1);
        }
    }
    const auto index = static_cast<std::size_t>(number) - 1;
    return number < 1 || index >= mLineStarts.size() ? mText.size() : mLineStarts[index];
}

std::string_view SourceFile::Line(int number) const
{
    const std::size_t start = LineStart(number);
    std::string_view line = std::string_view(mText).substr(start, mText.find('\n', start) - start);
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

} // namespace diagnosis::rule_source
