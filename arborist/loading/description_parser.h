#ifndef ARBORIST_LOADING_DESCRIPTION_PARSER_H
#define ARBORIST_LOADING_DESCRIPTION_PARSER_H

#include <memory>
#include <string>
#include <vector>

#include "arborist/loading/fault_item.h"

namespace tinyxml2 {
class XMLDocument;
class XMLElement;
}

/// Reads one section of ids for the user: "Event" elements, each with a list. The three sections below differ in the
/// names of their elements only; repairs have one more attribute. Logs nothing. Leaves out an "Event" without an id and
/// keeps one without a list.
class DescriptionParser {
public:
    using FaultItemList = std::vector<std::shared_ptr<FaultItem>>;

    /// Appends one item for each event of the tag, in file order; an id that occurs twice gives two items.
    void Parse(const tinyxml2::XMLDocument& document);
    /// Moves the list out of the parser, which is empty afterwards.
    FaultItemList TakeItemList();

protected:
    /// The element names of a section, of the list in an event and of one entry of the list.
    struct Words {
        const char* section;
        const char* list;
        const char* entry;
    };

    DescriptionParser(const Words& words, std::string treeTag);
    ~DescriptionParser() = default;

    const FaultItemList& GetItemList() const { return mItemList; }

    /// Fills the item from the list element.
    virtual void ParseEntries(const tinyxml2::XMLElement& list, FaultItem& item) const;

    const Words mWords;

private:
    void ParseEvent(const tinyxml2::XMLElement& element);

    std::string mTreeTag;
    FaultItemList mItemList;
};

/// "EventFaultDescriptions": which description explains the fault.
class FaultDescriptionParser final : public DescriptionParser {
public:
    explicit FaultDescriptionParser(std::string treeTag = "");
    /// GetItemList, as rule code names it; kept for the tests.
    const FaultItemList& GetFaultDescriptionList() const { return GetItemList(); }
};

/// "EventSolutions": which solutions to suggest.
class SuggestionParser final : public DescriptionParser {
public:
    explicit SuggestionParser(std::string treeTag);
    /// GetItemList, as rule code names it; kept for the tests.
    const FaultItemList& GetSuggestionList() const { return GetItemList(); }
};

/// "RepairDescriptions": which repairs can be carried out, each with its "extra".
class RepairDescriptionParser final : public DescriptionParser {
public:
    explicit RepairDescriptionParser(std::string treeTag = "");
    /// GetItemList, as rule code names it; kept for the tests.
    const FaultItemList& GetFaultItemList() const { return GetItemList(); }

private:
    void ParseEntries(const tinyxml2::XMLElement& list, FaultItem& item) const override;
};

#endif
