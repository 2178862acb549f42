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

/// Makes the fault trees of one tag from the tree file. Forgiving and silent: what it can't use it leaves out, what
/// it doesn't find it takes as empty. The trees don't refer to the document.
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

    /// The trees of the section named `treeTag`, in file order; empty without such a section. Takes the file's version
    /// in passing, where the root has one.
    std::vector<std::shared_ptr<FaultTree>> GetTreeList(
        const tinyxml2::XMLDocument& document, const std::string& treeTag);

    /// "-1" until a root element with a "version" was met.
    std::string GetTreeFileVersion() const { return mTreeFileVersion; }

private:
    friend struct TreeParserPeer; // lets a test call Parse

    // One tree by its id; null when there is none that can be used. The loader takes whole lists.
    static std::shared_ptr<FaultTree> Parse(
        const tinyxml2::XMLDocument& document, const std::string& treeTag, const std::string& treeId);
    static std::shared_ptr<FaultTree> ParseTree(const tinyxml2::XMLElement& element);
    static std::shared_ptr<Event> ParseEvent(const tinyxml2::XMLElement& element);
    static std::shared_ptr<Gate> ParseGate(const tinyxml2::XMLElement* element);

    std::string mTreeFileVersion = "-1";
};

#endif
