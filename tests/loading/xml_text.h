#ifndef ARBORIST_TESTS_LOADING_XML_TEXT_H
#define ARBORIST_TESTS_LOADING_XML_TEXT_H

#include <string>

#include <gtest/gtest.h>
#include <tinyxml2.h>

#include "tests/support/xml_builder.h"

/// A document as the loader opens it, from a text that must be well-formed.
class XmlText {
public:
    explicit XmlText(const std::string& text)
    {
        EXPECT_EQ(mDocument.Parse(text.c_str(), text.size()), tinyxml2::XML_SUCCESS) << mDocument.ErrorStr();
    }
    explicit XmlText(const Xml& element) : XmlText(element.ToText()) {}

    const tinyxml2::XMLDocument& Document() const { return mDocument; }
    const tinyxml2::XMLElement& Root() const { return *mDocument.RootElement(); }

private:
    tinyxml2::XMLDocument mDocument{true, tinyxml2::PRESERVE_WHITESPACE};
};

#endif
