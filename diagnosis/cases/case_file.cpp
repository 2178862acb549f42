#include "diagnosis/cases/case_file.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <set>

#include "diagnosis/cases/case_expectations.h"
#include "diagnosis/cases/case_input.h"
#include "diagnosis/cases/case_json.h"
#include "diagnosis/text/file_text.h"
#include "diagnosis/text/json_text.h"

namespace diagnosis::cases {

namespace fs = std::filesystem;

namespace {

// As for bundle.json.
constexpr std::uintmax_t LARGEST_FILE = 16U << 20U;

// Each case is kept with all that it shares, so that a small file could describe more than fits into memory.
constexpr std::size_t MOST_SHARED = 1'000'000;
constexpr std::size_t MOST_EVENTS_OF_A_FILE = 1'000'000;

constexpr char CASES[] = "cases";
constexpr char NAME[] = "name";

// The number of members that `object` gives to each case.
std::size_t SharedMembers(const Json::Value& object)
{
    std::size_t members = 0;
    for (const std::string& key : object.getMemberNames()) {
        members += key == CASES ? 0 : std::max<std::size_t>(1, object[key].size());
    }
    return members;
}

std::string NameOfFile(const std::string& path)
{
    const std::string name = fs::path(path).filename().generic_string();
    return name.ends_with(CASE_FILE_END) ? name.substr(0, name.size() - std::string_view(CASE_FILE_END).size()) : name;
}

/// Reads the cases of one parsed file.
class CaseFileReader {
public:
    CaseFileReader(const Json::Value& root, CaseProblems& problems) : mRoot(root), mProblems(problems) {}

    std::vector<TestCase> Read()
    {
        if (!mRoot.isMember(CASES)) {
            AddCase(mRoot, NameOfFile(mProblems.File()));
            return mCases;
        }
        const Json::Value& list = mRoot[CASES];
        if (!list.isArray() || list.empty()) {
            mProblems.Add(list, "\"cases\" must be a list of at least one case");
            return {};
        }
        if (SharedMembers(mRoot) * list.size() > MOST_SHARED) {
            mProblems.Add(list, "too many cases share too much; put them into several files");
            return {};
        }
        for (const char* key : {NAME, "expect"}) {
            if (mRoot.isMember(key)) {
                mProblems.Add(mRoot[key], std::string("\"") + key + "\" belongs into each of the \"cases\"");
            }
        }
        for (const Json::Value& own : list) {
            if (!own.isObject()) {
                mProblems.Add(own, std::string("a case must be an object, not ") + JsonKind(own));
            } else {
                AddCase(WithDefaults(own, mRoot), "");
            }
            if (mEvents > MOST_EVENTS_OF_A_FILE) {
                mProblems.Add(own, "up to here the cases have more than 1,000,000 events; put them into several files");
                return {};
            }
        }
        return mCases;
    }

private:
    void AddCase(const Json::Value& object, const std::string& nameOfFile)
    {
        TestCase testCase;
        testCase.file = mProblems.File();
        testCase.line = mProblems.LineOf(object);
        testCase.name = nameOfFile;
        CaseObject reader(object, "", mProblems);
        if (!reader.Text(NAME, testCase.name) && nameOfFile.empty() && !reader.Has(NAME)) {
            reader.Missing(NAME);
        } else if (reader.Has(NAME) && !mNames.insert(testCase.name).second) {
            mProblems.Add(object[NAME], "another case of the file has this name");
        }
        std::string note;
        reader.Text("note", note);
        reader.Bool("reviewed", testCase.isReviewed);
        ReadInput(reader, object, testCase, mProblems);
        ReadExpectations(reader, testCase.expected, mProblems);
        reader.RefuseUnknownKeys();
        mEvents += testCase.events ? testCase.events->size() : 0;
        mCases.push_back(std::move(testCase));
    }

    const Json::Value& mRoot;
    CaseProblems& mProblems;
    std::set<std::string> mNames;
    std::vector<TestCase> mCases;
    std::size_t mEvents = 0;
};

} // namespace

CaseFile ReadCaseText(const std::string& path, const std::string& text)
{
    CaseProblems problems(path, text);
    std::string problem;
    const auto root = ParseJson(text, problem);
    CaseFile file;
    if (!root) {
        problems.AddUnparsed(problem);
    } else if (!root->isObject()) {
        problems.Add(*root, std::string("must hold an object, not ") + JsonKind(*root));
    } else {
        file.cases = CaseFileReader(*root, problems).Read();
    }
    if (!problems.IsEmpty()) {
        return {{}, problems.Failures()};
    }
    return file;
}

CaseFile ReadCaseFile(const std::string& path)
{
    std::error_code error;
    // Ask first: reading a pipe or device of that name would block.
    if (!fs::is_regular_file(path, error)) {
        return {{}, {{FailureCode::NO_CASE_FILE, path + ": no such file"}}};
    }
    if (fs::file_size(path, error) > LARGEST_FILE) {
        return {{}, {{FailureCode::TOO_LARGE, path + ": larger than 16 MiB"}}};
    }
    const auto text = FileText(path);
    return text ? ReadCaseText(path, *text) : CaseFile{{}, {{FailureCode::NO_CASE_FILE, path + ": can't be read"}}};
}

} // namespace diagnosis::cases
