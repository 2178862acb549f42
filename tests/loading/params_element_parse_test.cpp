#include "arborist/loading/params_element_parse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/loading/xml_text.h"

namespace {

using testing::IsEmpty;

// "id=key:type ..." in order of id.
std::string Told(const ParamMap& params)
{
    std::string told;
    for (const auto& [id, param] : params) {
        EXPECT_EQ(id, param->id);
        EXPECT_EQ(param->value, "");
        told += id + "=" + param->key + ":" + param->type + " ";
    }
    return told;
}

TEST(ParamsElementParseTest, ReadsParametersById)
{
    const XmlText xml(ParamsXml({ParamXml("q", "k2", "int"), ParamXml("p", "k1", "anything")}));
    ParamMap params;
    EXPECT_TRUE(ParamsElementParse(&xml.Root()).Parse(params));
    EXPECT_EQ(Told(params), "p=k1:anything q=k2:int ");
}

TEST(ParamsElementParseTest, ParameterThatLacksAnAttributeIsSkipped)
{
    const XmlText xml(R"(<params><param id="a" type="int"/><param id="b" key="k"/><param key="k" type="int"/>
        <param id="c" key="" type=""/></params>)");
    ParamMap params;
    EXPECT_TRUE(ParamsElementParse(&xml.Root()).Parse(params));
    EXPECT_EQ(Told(params), "c=: ");
}

TEST(ParamsElementParseTest, FirstParameterOfAnIdStays)
{
    const XmlText xml(ParamsXml({ParamXml("p", "first", "int"), ParamXml("p", "second", "int")}));
    const XmlText more(ParamsXml({ParamXml("p", "third", "int"), ParamXml("q", "k", "int")}));
    ParamMap params;
    EXPECT_TRUE(ParamsElementParse(&xml.Root()).Parse(params));
    EXPECT_TRUE(ParamsElementParse(&more.Root()).Parse(params));
    EXPECT_EQ(Told(params), "p=first:int q=k:int ");
}

TEST(ParamsElementParseTest, NothingValidGivesFalseAndAnEmptyMap)
{
    ParamMap params;
    EXPECT_FALSE(ParamsElementParse(&XmlText(R"(<params><param id="a"/></params>)").Root()).Parse(params));
    EXPECT_FALSE(ParamsElementParse(&XmlText("<params/>").Root()).Parse(params));
    EXPECT_FALSE(ParamsElementParse(nullptr).Parse(params));
    EXPECT_THAT(params, IsEmpty());
}

TEST(ParamsElementParseTest, ElementOfAnotherNameGivesFalse)
{
    const XmlText xml(Xml("parameters").Child(ParamXml("p", "k", "int")));
    ParamMap params;
    EXPECT_FALSE(ParamsElementParse(&xml.Root()).Parse(params));
    EXPECT_THAT(params, IsEmpty());
}

TEST(ParamsElementParseTest, BlockWithoutParametersGivesFalseEvenIntoAFilledMap)
{
    ParamMap params = {{"p", std::make_shared<Param>()}};
    EXPECT_FALSE(ParamsElementParse(&XmlText("<params/>").Root()).Parse(params));
}

} // namespace
