#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_SOURCE_FILE_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_SOURCE_FILE_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "diagnosis/rule_source/element.h"

namespace tinyxml2 {
class XMLDocument;
}

namespace diagnosis::rule_source {

/// One XML file of a rule set, parsed as in the engine, with its lines.
///
/// Can't be copied or moved, as elements point back to their file.
class SourceFile {
public:
    enum class State {
        LOADED,
        MISSING, ///< there is no such file
        UNREADABLE, ///< it is there and can't be read
        MALFORMED, ///< it is no well-formed XML
        TOO_DEEP, ///< nested deeper than the XML library reads
    };

    /// The text of a file, or why it has none.
    struct Content {
        std::string path;
        std::string text;
        /// MISSING or UNREADABLE with a problem; otherwise the text is all of the file.
        State state = State::LOADED;
        std::string problem = {};
    };

    static Content ReadContent(const std::string& path);
    /// Parses the content of a file.
    static std::unique_ptr<SourceFile> Of(Content content);
    /// Parses a text as the content of a file with the name `path`.
    static std::unique_ptr<SourceFile> Of(const std::string& path, std::string text);
    /// Reads and parses a file.
    static std::unique_ptr<SourceFile> Read(const std::string& path) { return Of(ReadContent(path)); }

    ~SourceFile();
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;

    const std::string& Path() const { return mContent.path; }
    State GetState() const { return mContent.state; }
    bool IsLoaded() const { return GetState() == State::LOADED; }
    /// The message of the system or of the XML library if the file is not loaded; empty if it is.
    const std::string& Problem() const { return mContent.problem; }
    /// The line of the XML library's error; 0 if there is none.
    int ProblemLine() const { return mProblemLine; }

    /// Null for a file that is not loaded or has no element.
    Element Root() const;

    const std::string& Text() const { return mContent.text; }
    /// A line of the file without its end, from 1; empty if there is none.
    std::string_view Line(int number) const;
    /// The offset at which a line begins; the length of the text if there is none.
    std::size_t LineStart(int number) const;

    const tinyxml2::XMLDocument& Document() const { return *mDocument; }

private:
    explicit SourceFile(Content content);

    void Parse();

    Content mContent;
    int mProblemLine = 0;
    std::unique_ptr<tinyxml2::XMLDocument> mDocument;
    /// The offsets of all lines.
    std::vector<std::size_t> mLineStarts = {0};
};

} // namespace diagnosis::rule_source

#endif
