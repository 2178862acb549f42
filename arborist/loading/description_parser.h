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

/// Reads the texts for the user about an event: a section of "Event" elements that each list ids. The three kinds below
/// differ in their words alone, and repairs carry one attribute more. Silent; an "Event" without an id is left out, one
/// without a list is kept.
class DescriptionParser {
public:
    using FaultItemList = std::vector<std::shared_ptr<FaultItem>>;

    /// Appends one item for each event of the tag, in file order; an id that comes twice gives two items.
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
    const FaultItemList& GetFaultDescriptionList() const { return GetItemList(); }
};

/// "EventSolutions": which solutions to suggest.
class SuggestionParser final : public DescriptionParser {
public:
    explicit SuggestionParser(std::string treeTag);
    const FaultItemList& GetSuggestionList() const { return GetItemList(); }
};

/// "RepairDescriptions": which repairs can be carried out, each with its "extra".
class RepairDescriptionParser final : public DescriptionParser {
public:
    explicit RepairDescriptionParser(std::string treeTag = "");
    const FaultItemList& GetFaultItemList() const { return GetItemList(); }

private:
    void ParseEntries(const tinyxml2::XMLElement& list, FaultItem& item) const override;
};

#endif
