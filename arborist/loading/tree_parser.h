#ifndef ARBORIST_LOADING_TREE_PARSER_H
#define ARBORIST_LOADING_TREE_PARSER_H

#include <memory>
#include <string>
#include <vector>

class Event;
class FaultTree;
class Gate;

namespace tinyxml2 {
class XMLDocument;
class XMLElement;
}

/// Builds the fault trees of one tag from the tree file. Skips in silence what it can't use, and takes a missing text
/// as empty. The trees don't refer to the document.
class TreeParser {
public:
    static constexpr char TREE_NAME[] = "Intermediate-Event";
    static constexpr char BASIC_EVENT[] = "Basic-Event";
    static constexpr char OR_GATE[] = "Or-Gate";
    static constexpr char AND_GATE[] = "And-Gate";
    static constexpr char ID_STRING[] = "id";
    static constexpr char VERSION_KEY[] = "version";
    static constexpr char TYPE_KEY[] = "type";
    static constexpr char ELEMENT_ID[] = "ID";
    static constexpr char ELEMENT_NAME[] = "Name";
    static constexpr char ELEMENT_VALUE[] = "Value";
    static constexpr char ELEMENT_DETECT_MODE[] = "DetectMode";
    static constexpr char USER_DEFINED[] = "UserDefined";
    static constexpr char EMPTY[] = "";

    /// Returns the trees of the section named `treeTag`, in file order; none without such a section. Also remembers the
    /// version of the file if its root element names one.
    std::vector<std::shared_ptr<FaultTree>> GetTreeList(
        const tinyxml2::XMLDocument& document, const std::string& treeTag);

    /// Version of the tree file; "-1" until a root element with a "version" was read.
    std::string GetTreeFileVersion() const { return mTreeFileVersion; }

private:
    friend struct TreeParserPeer; // lets a test call Parse

    // Returns one tree by its id, null if there is none that can be used. Kept for tests: the loader reads whole lists.
    static std::shared_ptr<FaultTree> Parse(
        const tinyxml2::XMLDocument& document, const std::string& treeTag, const std::string& treeId);
    static std::shared_ptr<FaultTree> ParseTree(const tinyxml2::XMLElement& element);
    static std::shared_ptr<Event> ParseEvent(const tinyxml2::XMLElement& element);
    static std::shared_ptr<Gate> ParseGate(const tinyxml2::XMLElement* element);

    std::string mTreeFileVersion = "-1";
};

#endif
