#include "tests/support/tree_notation.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

class NotationReader {
public:
    explicit NotationReader(const std::string& text) : mText(text) {}

    std::string Event()
    {
        const std::string id = "<ID>" + Word() + "</ID>";
        if (Take("?")) {
            return "<Undeveloped-Event>" + id + "</Undeveloped-Event>";
        }
        if (!Take(" = ")) {
            return "<Basic-Event>" + id + "</Basic-Event>";
        }
        return "<Intermediate-Event>" + id + Gate() + "</Intermediate-Event>";
    }

    bool IsAtEnd() const { return mPlace == mText.size(); }

private:
    std::string Gate()
    {
        const std::string name = Take("AND(") ? "And-Gate" : "Or-Gate";
        if (name == "Or-Gate") {
            EXPECT_TRUE(Take("OR(")) << mText;
        }
        std::string events;
        while (!IsAtEnd() && !Take(")")) {
            events += Event();
            Take(", ");
        }
        return "<" + name + ">" + events + "</" + name + ">";
    }

    std::string Word()
    {
        const std::size_t end = std::min(mText.find_first_of("?, ()", mPlace), mText.size());
        const std::string word = mText.substr(mPlace, end - mPlace);
        EXPECT_FALSE(word.empty()) << mText;
        // Skip to the end if nothing was read, so that the loop ends.
        mPlace = word.empty() ? mText.size() : end;
        return word;
    }

    bool Take(const std::string& text)
    {
        if (mText.compare(mPlace, text.size(), text) != 0) {
            return false;
        }
        mPlace += text.size();
        return true;
    }

    const std::string mText;
    std::size_t mPlace = 0;
};

} // namespace

std::string XmlOfTree(const std::string& notation)
{
    NotationReader reader(notation);
    const std::string xml = reader.Event();
    EXPECT_TRUE(reader.IsAtEnd()) << notation;
    return xml;
}
