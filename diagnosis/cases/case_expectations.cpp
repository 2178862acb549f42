#include "diagnosis/cases/case_expectations.h"

#include <algorithm>

#include "arborist/frame/check.h"
#include "arborist/frame/evidence_words.h"
#include "arborist/frame/tree_verdict.h"
#include "diagnosis/text/json_text.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis::cases {

namespace {

using Words = std::vector<std::string>;

const Words& VerdictWords()
{
    using Word = Evidence::TreeVerdict::Word;
    static const Words WORDS = {Evidence::TreeVerdictText(Word::FAULT), Evidence::TreeVerdictText(Word::UNDECIDED),
        Evidence::TreeVerdictText(Word::NO_FAULT), Evidence::TreeVerdictText(Word::NOT_APPLICABLE)};
    return WORDS;
}

const Words& StatusWords()
{
    using State = Evidence::EventState;
    static const Words WORDS = {Evidence::StateText(State::PRESENT), Evidence::StateText(State::ABSENT),
        Evidence::StateText(State::INTERMEDIATE_PRESENT), Evidence::StateText(State::UNKNOWN)};
    return WORDS;
}

// Every reason has a text, and no number behind the last one.
Words AllReasonWords()
{
    Words words;
    for (int number = 1;; ++number) {
        const std::string word = Evidence::ReasonText(static_cast<Evidence::Reason>(number));
        if (word.empty()) {
            return words;
        }
        words.push_back(word);
    }
}

const Words& ReasonWords()
{
    static const Words WORDS = AllReasonWords();
    return WORDS;
}

const Words& CountWords()
{
    using Evidence::Check;
    static const Words WORDS = {Evidence::CheckText(Check::DECIDED), Evidence::CheckText(Check::NOT_APPLICABLE),
        Evidence::CheckText(Check::NOT_SELECTED), Evidence::CheckText(Check::NOT_CHECKED),
        Evidence::CheckText(Check::DATA_MISSING), Evidence::CheckText(Check::RULE_UNUSABLE), "total", "open"};
    return WORDS;
}

/// Reads the members of "expect".
class ExpectationReader {
public:
    ExpectationReader(const Json::Value& object, Expectations& expected, CaseProblems& problems)
        : mReader(object, "expect.", problems), mExpected(expected), mProblems(problems)
    {
    }

    void Read()
    {
        ReadCauses();
        ReadWords("verdicts", VerdictWords(), mExpected.verdicts);
        ReadChecks();
        ReadWords("statuses", StatusWords(), mExpected.statuses);
        ReadWords("reasons", ReasonWords(), mExpected.reasons);
        mReader.Texts("log", mExpected.log);
        mReader.Texts("noLog", mExpected.noLog);
        mReader.RefuseUnknownKeys();
    }

private:
    void ReadCauses()
    {
        const Json::Value* const causes = mReader.FindObject("causes");
        for (const std::string& tree : causes == nullptr ? Words() : causes->getMemberNames()) {
            const Json::Value& value = (*causes)[tree];
            Expectations::Causes& expected = mExpected.causes[tree];
            expected.inOrder = value.isArray();
            if (!value.isArray() && !value.isObject()) {
                mProblems.Add(value, "the causes of a tree must be a list of ids or {\"anyOrder\": ids}, not "
                    + std::string(JsonKind(value)));
            } else if (value.isArray()) {
                ReadIds(value, expected.ids);
            } else {
                CaseObject set(value, "expect.causes." + tree + ".", mProblems);
                if (!set.Has("anyOrder")) {
                    set.Missing("anyOrder");
                }
                set.Texts("anyOrder", expected.ids);
                set.RefuseUnknownKeys();
            }
        }
    }

    void ReadIds(const Json::Value& list, Words& ids)
    {
        for (const Json::Value& value : list) {
            std::string id;
            if (ReadText(value, "expect.causes", id, mProblems)) {
                ids.push_back(id);
            }
        }
    }

    void ReadWords(const char* key, const Words& known, std::map<std::string, std::string>& target)
    {
        const Json::Value* const object = mReader.FindObject(key);
        for (const std::string& name : object == nullptr ? Words() : object->getMemberNames()) {
            std::string word;
            const Json::Value& value = (*object)[name];
            if (ReadText(value, std::string("expect.") + key, word, mProblems) && IsOneOf(known, value, word)) {
                target[name] = word;
            }
        }
    }

    bool IsOneOf(const Words& known, const Json::Value& place, const std::string& word)
    {
        const bool isKnown = std::find(known.begin(), known.end(), word) != known.end();
        if (!isKnown) {
            mProblems.Add(place, "unknown word \"" + word + "\"" + DidYouMean(word, known));
        }
        return isKnown;
    }

    void ReadChecks()
    {
        const Json::Value* const trees = mReader.FindObject("checks");
        for (const std::string& tree : trees == nullptr ? Words() : trees->getMemberNames()) {
            const Json::Value& value = (*trees)[tree];
            if (value == "decided") {
                mExpected.decidedTrees.push_back(tree);
            } else if (value.isObject()) {
                ReadCounts(tree, value);
            } else {
                mProblems.Add(value, "the checks of a tree must be \"decided\" or an object with numbers of checks");
            }
        }
    }

    void ReadCounts(const std::string& tree, const Json::Value& counts)
    {
        auto& expected = mExpected.checks[tree];
        for (const std::string& word : counts.getMemberNames()) {
            const Json::Value& count = counts[word];
            if (!count.isUInt()) {
                mProblems.Add(count, "a number of checks must be a whole number from 0");
            } else if (IsOneOf(CountWords(), count, word)) {
                expected[word] = count.asUInt();
            }
        }
    }

    CaseObject mReader;
    Expectations& mExpected;
    CaseProblems& mProblems;
};

} // namespace

void ReadExpectations(CaseObject& reader, Expectations& expected, CaseProblems& problems)
{
    if (!reader.Has("expect")) {
        reader.Missing("expect");
    }
    const Json::Value* const object = reader.FindObject("expect");
    if (object == nullptr) {
        return;
    }
    ExpectationReader(*object, expected, problems).Read();
    if (expected.IsEmpty()) {
        problems.Add(*object, "a case that expects nothing would always pass");
    }
}

} // namespace diagnosis::cases
