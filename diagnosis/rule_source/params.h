#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_PARAMS_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_PARAMS_H

#include <string_view>
#include <vector>

#include "diagnosis/rule_source/element.h"

namespace diagnosis::rule_source {

/// A "param" element.
struct Param {
    Element element;
    std::string_view id;
    std::string_view key;
    std::string_view type;
};

/// The parameters of a rule or of shared data as the engine keeps them: one for each id, in order of id as text.
class ParamTable {
public:
    /// Adds the "param" elements of a "params" block; a null element has none.
    void Add(Element params);
    /// Sorts the parameters. Call it once, after the last Add.
    void Finish();

    bool IsEmpty() const { return mParams.empty(); }
    const std::vector<Param>& Params() const { return mParams; }
    /// Null for an id that no parameter has.
    const Param* Find(std::string_view id) const;
    /// The first with this key in order of id; null if none has it.
    const Param* FindKey(std::string_view key) const;

    /// "param" elements that lack "id", "key" or "type": the engine skips them.
    const std::vector<Element>& Incomplete() const { return mIncomplete; }
    /// Later parameters of the same id, which the engine skips.
    const std::vector<Param>& Repeated() const { return mRepeated; }

private:
    std::vector<Param> mParams;
    std::vector<Element> mIncomplete;
    std::vector<Param> mRepeated;
};

} // namespace diagnosis::rule_source

#endif
