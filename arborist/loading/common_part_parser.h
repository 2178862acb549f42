#ifndef ARBORIST_LOADING_COMMON_PART_PARSER_H
#define ARBORIST_LOADING_COMMON_PART_PARSER_H

#include <memory>
#include <string>

#include "arborist/model/common_part.h"

namespace tinyxml2 {
class XMLDocument;
class XMLElement;
} // namespace tinyxml2

/// Reads the "RuleCommonPart" section of the rule file: the data that the rules of one tree tag share.
class CommonPartParser {
public:
    /// Reads the section of the tag. False, with an error line, for an empty tag or a document without a root. If the
    /// section, the tag in it or the "commonPart" is missing: true, with a warning line and no block.
    bool Parse(const tinyxml2::XMLDocument& document, const std::string& treeTag);

    /// The block that was read; null if there is no "commonPart".
    std::shared_ptr<CommonPart::CombineCommonPart> GetCommonPart() const { return mCommonPart; }

private:
    bool ParseCommonPartList(const tinyxml2::XMLElement& root, const std::string& treeTag);

    std::shared_ptr<CommonPart::CombineCommonPart> mCommonPart;
};

/// Reads one "thresholdsOrLumbraData". The element is not owned; what can't be used is skipped in silence.
class ThresholdOrLumbraElementParse {
public:
    explicit ThresholdOrLumbraElementParse(const tinyxml2::XMLElement* element) : mElement(element) {}
    virtual ~ThresholdOrLumbraElementParse() = default;

    /// Null when the element is null or has another name.
    std::shared_ptr<ThresholdOrLumbraBean> Parse() const;

private:
    const tinyxml2::XMLElement* mElement;
};

/// Reads one "defDBTable". The element is not owned; what can't be used is skipped in silence.
class DefDbTableElementParse {
public:
    explicit DefDbTableElementParse(const tinyxml2::XMLElement* element) : mElement(element) {}
    virtual ~DefDbTableElementParse() = default;

    /// Null when the element is null or has another name.
    std::shared_ptr<DefDbTableBean> Parse() const;

private:
    const tinyxml2::XMLElement* mElement;
};

#endif
