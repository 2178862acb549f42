#ifndef ARBORIST_LOADING_PARAMS_ELEMENT_PARSE_H
#define ARBORIST_LOADING_PARAMS_ELEMENT_PARSE_H

#include "arborist/model/condition.h"

namespace tinyxml2 {
class XMLElement;
}

/// Reads one "params" element. Use an object for one call; the element must outlive it.
class ParamsElementParse {
public:
    /// A null element is treated like one of another name.
    explicit ParamsElementParse(const tinyxml2::XMLElement* element) : mElement(element) {}

    /// Adds each "param" that has "id", "key" and "type"; an id that is already present keeps its first entry. True if
    /// the map is not empty afterwards; false for an element of another name or without any "param".
    bool Parse(ParamMap& params) const;

private:
    const tinyxml2::XMLElement* mElement;
};

#endif
