#include "diagnosis/cases/case_text.h"

#include "diagnosis/text/json_writer.h"

namespace diagnosis::cases {

std::string QuotedJson(std::string_view text)
{
    JsonWriter json;
    return json.Text(text).Line();
}

void CaseText::StartLine()
{
    mText += (mIsFirst ? "\n" : ",\n") + std::string(2 * mDepth, ' ');
    mIsFirst = false;
}

void CaseText::Add(std::string_view key, const std::string& json)
{
    StartLine();
    mText += QuotedJson(key) + ": " + json;
}

void CaseText::AddText(std::string_view key, std::string_view text)
{
    Add(key, QuotedJson(text));
}

void CaseText::Begin(std::string_view key)
{
    Add(key, "{");
    ++mDepth;
    mIsFirst = true;
}

void CaseText::End()
{
    --mDepth;
    mText += "\n" + std::string(2 * mDepth, ' ') + "}";
    mIsFirst = false;
}

void CaseText::AddObject(std::string_view key, const std::map<std::string, std::string>& members)
{
    if (members.empty()) {
        return;
    }
    Begin(key);
    for (const auto& [name, json] : members) {
        Add(name, json);
    }
    End();
}

void CaseText::AddList(std::string_view key, const std::vector<std::string>& values)
{
    if (values.empty()) {
        return;
    }
    Add(key, "[");
    ++mDepth;
    mIsFirst = true;
    for (const std::string& json : values) {
        StartLine();
        mText += json;
    }
    --mDepth;
    mText += "\n" + std::string(2 * mDepth, ' ') + "]";
    mIsFirst = false;
}

std::string CaseText::Finish()
{
    return std::move(mText) + "\n}\n";
}

} // namespace diagnosis::cases
