#include "arborist/loading/params_element_parse.h"

#include <memory>
#include <string>

#include "arborist/loading/xml_walk.h"

bool ParamsElementParse::Parse(ParamMap& params) const
{
    if (mElement == nullptr || !XmlWalk::IsNamed(*mElement, "params")
        || mElement->FirstChildElement("param") == nullptr) {
        return false;
    }
    for (const tinyxml2::XMLElement& element : XmlWalk::Children(mElement, "param")) {
        const char* type = element.Attribute("type");
        const char* key = element.Attribute("key");
        const char* id = element.Attribute("id");
        if (type == nullptr || key == nullptr || id == nullptr) {
            continue;
        }
        std::shared_ptr<Param>& param = params[id];
        if (param == nullptr) {
            param = std::make_shared<Param>(Param{key, type, id, ""});
        }
    }
    return !params.empty();
}
