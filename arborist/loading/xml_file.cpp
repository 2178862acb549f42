#include "arborist/loading/xml_file.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

#include "arborist/frame/log.h"
#include "arborist/utilities/platform.h"

namespace XmlFile {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Finds an element with too many attributes in the bytes of a file, which are passed block by block. It counts quoted
// texts, of which each attribute has one, and reads comments, CDATA sections and declarations as the XML library does.
class AttributeCount {
public:
    /// The line of the element; 0 while none was found.
    int GetLine() const { return mFoundLine; }

    void Read(std::string_view block)
    {
        const char* at = block.data();
        const char* const end = at + block.size();
        while (at != end && mFoundLine == 0) {
            at = mPlace == Place::TEXT ? SkipTo('<', at, end)
                : mPlace == Place::QUOTED ? SkipTo(mEnd.back(), at, end) : at;
            if (at != end) {
                Take(*at++);
            }
        }
    }

private:
    enum class Place { TEXT, OPENING, TAG, QUOTED, SKIPPED };

    const char* SkipTo(char mark, const char* at, const char* end)
    {
        const void* const found = std::memchr(at, mark, static_cast<std::size_t>(end - at));
        const char* const stop = found == nullptr ? end : static_cast<const char*>(found);
        mLine += static_cast<int>(std::count(at, stop, '\n'));
        return stop;
    }

    void Take(char character)
    {
        mLine += character == '\n' ? 1 : 0;
        switch (mPlace) {
        case Place::TEXT: // at "<"
            mPlace = Place::OPENING;
            mOpening.clear();
            break;
        case Place::OPENING:
            TakeOpening(character);
            break;
        case Place::TAG:
            TakeOfTag(character);
            break;
        case Place::QUOTED: // at its end
            mPlace = Place::TAG;
            break;
        case Place::SKIPPED:
            mPlace = character == '>' && IsBeforeEnd() ? Place::TEXT : Place::SKIPPED;
            mBefore = {mBefore[1], character};
            break;
        }
    }

    // Decides by the first characters behind "<" what begins there.
    void TakeOpening(char character)
    {
        constexpr std::string_view COMMENT = "!--";
        constexpr std::string_view CDATA = "![CDATA[";
        mOpening += character;
        if (mOpening == "?") {
            Skip("?>");
        } else if (mOpening == COMMENT) {
            Skip("-->");
        } else if (mOpening == CDATA) {
            Skip("]]>");
        } else if (COMMENT.substr(0, mOpening.size()) != mOpening && CDATA.substr(0, mOpening.size()) != mOpening) {
            if (mOpening.front() == '!') {
                Skip(">");
                mPlace = character == '>' ? Place::TEXT : mPlace;
                return;
            }
            mPlace = Place::TAG;
            mQuotes = 0;
            TakeOfTag(character);
        }
    }

    void Skip(std::string_view end)
    {
        mPlace = Place::SKIPPED;
        mEnd = end;
        mBefore = {};
    }

    // True if the last characters are those that stand in front of ">" at the end of what is skipped.
    bool IsBeforeEnd() const
    {
        const std::size_t length = mEnd.size() - 1;
        return std::equal(mBefore.end() - static_cast<std::ptrdiff_t>(length), mBefore.end(), mEnd.begin());
    }

    void TakeOfTag(char character)
    {
        if (character == '>') {
            mPlace = Place::TEXT;
        } else if (std::string_view("\"'").find(character) != std::string_view::npos) {
            mPlace = Place::QUOTED;
            mEnd = character;
            mFoundLine = ++mQuotes > MOST_ATTRIBUTES ? mLine : 0;
        }
    }

    Place mPlace = Place::TEXT;
    std::string mOpening;
    std::string mEnd; // of what is skipped, at most two characters and ">", or quoted
    std::array<char, 2> mBefore{};
    std::size_t mQuotes = 0;
    int mLine = 1;
    int mFoundLine = 0;
};

// The line of an element with too many attributes; 0 if there is none. Leaves the file at its start.
int FindTooManyAttributes(std::FILE* file)
{
    // The attributes of shorter files can't take long, however they are distributed.
    constexpr long SHORT_FILE = 16 * 1024;
    if (std::fseek(file, 0, SEEK_END) != 0 || std::ftell(file) <= SHORT_FILE) {
        std::rewind(file);
        return 0;
    }
    std::rewind(file);
    AttributeCount count;
    std::array<char, 64 * 1024> block;
    for (std::size_t length = block.size(); length == block.size() && count.GetLine() == 0;) {
        length = std::fread(block.data(), 1, block.size(), file);
        count.Read({block.data(), length});
    }
    std::rewind(file);
    return count.GetLine();
}

} // namespace

Outcome Load(tinyxml2::XMLDocument& document, const std::string& path)
{
    document.Clear();
    std::error_code noStatus;
    const bool isFile = std::filesystem::is_regular_file(path, noStatus);
    const std::unique_ptr<std::FILE, FileCloser> file(isFile ? Platform::OpenForReading(path) : nullptr);
    if (file == nullptr) {
        return {tinyxml2::XML_ERROR_FILE_READ_ERROR, isFile ? "can't be opened" : "not a file", 0};
    }
    if (const int line = FindTooManyAttributes(file.get())) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: an element of %s has more than %zu attributes",
            "XmlFile::Load", path.c_str(), MOST_ATTRIBUTES);
        return {tinyxml2::XML_ERROR_PARSING_ATTRIBUTE,
            "an element has more than " + std::to_string(MOST_ATTRIBUTES) + " attributes", line};
    }
    const tinyxml2::XMLError error = document.LoadFile(file.get());
    return error == tinyxml2::XML_SUCCESS ? Outcome()
                                          : Outcome{error, document.ErrorStr(), document.ErrorLineNum()};
}

} // namespace XmlFile
