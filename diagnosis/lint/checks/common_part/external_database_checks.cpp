#include <algorithm>

#include "arborist/frame/rule_set_summary.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/sql/derived_tables.h"
#include "diagnosis/lint/sql/sql_outline.h"
#include "diagnosis/text/pattern_start.h"

namespace diagnosis::lint {

namespace {

using rule_source::CreateTable;
using rule_source::DbPath;
using rule_source::TableBean;

constexpr auto NOWHERE = std::string_view::npos;
// The library takes no longer one.
constexpr std::size_t LONGEST_PATTERN = 4096;

const std::vector<TableBean>& Beans(const Subject& subject)
{
    return subject.rules.commonPart.tables;
}

std::string Named(const TableBean& bean)
{
    return "the databases " + Quoted(bean.name);
}

void AddAboutPattern(const TableBean& bean, const std::string& what, const char* help, Report& report)
{
    report.Add(bean.dbNameElement ? bean.dbNameElement : bean.element, "the pattern of " + Named(bean) + " " + what,
        {.attribute = bean.dbNameElement.Find("name"), .help = help});
}

void CheckPaths(const Subject& subject, Report& report)
{
    for (const TableBean& bean : Beans(subject)) {
        for (const DbPath& path : bean.paths) {
            for (const char* name : {"decompression", "type", "value"}) {
                if (!path.element.Has(name)) {
                    report.Add(path.element, "a path of " + Named(bean) + " has no " + Quoted(name));
                }
            }
        }
    }
}

bool HasZip(std::string_view text)
{
    return LowerName(text).find("zip") != std::string::npos;
}

void CheckDecompression(const TableBean& bean, const DbPath& path, Report& report)
{
    const bool isWanted = path.decompression == "true";
    const bool isInFolder = HasZip(path.value);
    if (isInFolder && !isWanted) {
        report.Add(path.element, "files below " + Quoted(path.value) + " count as archives",
            {.attribute = path.element.Find("value"),
                .help = "keep the letters \"zip\" out of the path of plain files"});
    } else if (isWanted && !isInFolder && !HasZip(bean.dbName)) {
        report.Add(path.element, "files below " + Quoted(path.value) + " are not unpacked",
            {.attribute = path.element.Find("decompression"),
                .help = "only a path with the letters \"zip\" is unpacked"});
    }
}

void CheckArchives(const Subject& subject, Report& report)
{
    for (const TableBean& bean : Beans(subject)) {
        for (const DbPath& path : bean.paths) {
            if (path.isKept) {
                CheckDecompression(bean, path, report);
            }
        }
    }
}

// The folder of a path with a "/" at its end, in lower case; empty unless it is absolute and says plainly where it is.
std::string FolderOf(std::string_view path)
{
    const bool isPlain = path.starts_with('/') && path.find("//") == NOWHERE && path.find("/.") == NOWHERE;
    const std::string folder = isPlain ? LowerName(path) : "";
    return folder.empty() || folder.ends_with('/') ? folder : folder + '/';
}

// Whether the pattern may match an absolute path, which begins with a "/" or with the letter of a drive.
bool MayMatchAPath(const std::string& pattern)
{
    static constexpr std::string_view LETTERS = "abcdefghijklmnopqrstuvwxyz";
    return MayMatchBeyond(pattern, "/") || std::any_of(LETTERS.begin(), LETTERS.end(), [&pattern](char letter) {
        return MayMatchBeyond(pattern, std::string{letter, ':'});
    });
}

// Whether the pattern may match the path of a file below the folder; a long path counts by its beginning.
bool MayMatchBelow(const std::string& pattern, std::string_view path)
{
    static constexpr std::size_t MOST_LETTERS = 128;
    const std::string folder = FolderOf(path);
    return folder.empty() || MayMatchBeyond(pattern, std::string_view(folder).substr(0, MOST_LETTERS));
}

// The first folder that is searched, if the pattern matches nothing below any of them; otherwise empty.
std::string FolderLeftOut(const TableBean& bean, const std::string& pattern)
{
    static constexpr std::ptrdiff_t MOST_PATHS = 4; // one is the rule, and a foreign file may have any number
    std::vector<std::string_view> searched;
    for (const DbPath& path : bean.paths) {
        if (path.isKept && !path.value.empty()) {
            searched.push_back(path.value);
        }
    }
    const bool isLeftOut = !searched.empty() && std::ssize(searched) <= MOST_PATHS
        && std::none_of(searched.begin(), searched.end(),
            [&pattern](std::string_view path) { return MayMatchBelow(pattern, path); });
    return isLeftOut ? std::string(searched.front()) : "";
}

void CheckPattern(const TableBean& bean, Report& report)
{
    const std::string pattern = LowerName(bean.dbName);
    if (pattern.size() > LONGEST_PATTERN) {
        return;
    }
    const bool mayMatch = MayMatchAPath(pattern);
    const std::string folder = mayMatch ? FolderLeftOut(bean, pattern) : "";
    // Last, as compiling a pattern takes longer than the rest. Another check reports what is no pattern.
    if ((mayMatch && folder.empty()) || !IsFileNamePattern(pattern)) {
        return;
    }
    if (!mayMatch) {
        AddAboutPattern(bean, "does not cover the folders of a path", "let it begin with .*/", report);
    } else {
        AddAboutPattern(bean, "matches no path below " + Quoted(folder) + ", which is searched", "let it begin with .*/",
            report);
    }
}

void CheckCover(const Subject& subject, Report& report)
{
    for (const TableBean& bean : Beans(subject)) {
        if (bean.dbName.empty()) {
            report.Add(bean.dbNameElement ? bean.dbNameElement : bean.element, Named(bean) + " have no pattern",
                {.help = "give them a \"dbName\" with a \"name\": .*/usage\\.db"});
        } else {
            CheckPattern(bean, report);
        }
    }
}

void CheckGrammar(const Subject& subject, Report& report)
{
    for (const TableBean& bean : Beans(subject)) {
        if (!bean.dbName.empty() && !IsFileNamePattern(LowerName(bean.dbName))) {
            AddAboutPattern(bean, "is no regular expression", "put a backslash before a sign that means itself",
                report);
        }
    }
}

// An escape or a class of capital letters; empty where there is none.
std::string_view CapitalIn(std::string_view pattern)
{
    for (std::size_t place = 0; place + 1 < pattern.size(); ++place) {
        if (pattern[place] == '\\') {
            if (std::string_view("BDSW").find(pattern[place + 1]) != NOWHERE) {
                return pattern.substr(place, 2);
            }
            ++place; // skips the escaped character, which may be a backslash
        }
    }
    static constexpr std::string_view UPPER = "[:upper:]";
    const std::size_t upper = pattern.find(UPPER);
    return upper == NOWHERE ? std::string_view() : pattern.substr(upper, UPPER.size());
}

void CheckCapitals(const Subject& subject, Report& report)
{
    for (const TableBean& bean : Beans(subject)) {
        const std::string_view capital = CapitalIn(bean.dbName);
        if (!capital.empty()) {
            AddAboutPattern(bean, "has " + Quoted(capital) + ", and is put in lower case before it is used",
                "list the characters: [^0-9] for \\D", report);
        }
    }
}

void CheckPathCount(const Subject& subject, Report& report)
{
    for (const TableBean& bean : Beans(subject)) {
        const DbPath* last = nullptr;
        for (const DbPath& path : bean.paths) {
            if (path.isKept && last != nullptr) {
                report.Add(last->element, Named(bean) + " have another path in line "
                        + std::to_string(path.element.Line()), {.attribute = last->element.Find("value"),
                        .help = "write a \"defDBTable\" for each path"});
            }
            last = path.isKept ? &path : last;
        }
    }
}

/// Calls `visit(table, pieces)` for each "createNewTable" with an SQL text.
template <typename Visit>
void ForEachCreation(const Subject& subject, Visit visit)
{
    for (const TableBean& bean : Beans(subject)) {
        for (const CreateTable& table : bean.createTables) {
            visit(table, ReadSql(table.sql));
        }
    }
}

bool IsOneOf(const SqlToken& token, std::initializer_list<std::string_view> words)
{
    return std::any_of(words.begin(), words.end(), [&token](auto word) { return IsKeyword(token, word); });
}

// The word behind the "create" at `place`, "table" or the like, if the statement fails when run again; otherwise null.
const SqlToken* MadeAgain(const std::vector<SqlToken>& tokens, std::size_t place)
{
    const bool isStart = place == 0 || IsSign(tokens[place - 1], ';');
    if (!isStart || !IsKeyword(tokens[place], "create")) {
        return nullptr;
    }
    do {
        ++place;
    } while (place < tokens.size() && IsOneOf(tokens[place], {"temp", "temporary", "unique", "virtual"}));
    const bool isKnown = place + 1 < tokens.size() && IsOneOf(tokens[place], {"table", "index", "view", "trigger"});
    return isKnown && !IsKeyword(tokens[place + 1], "if") ? &tokens[place] : nullptr;
}

void CheckRepeatable(const Subject& subject, Report& report)
{
    ForEachCreation(subject, [&report](const CreateTable& table, const SqlPieces& pieces) {
        for (std::size_t place = 0; place < pieces.tokens.size(); ++place) {
            if (const SqlToken* const word = MadeAgain(pieces.tokens, place)) {
                report.Add(table.sqlElement, "the SQL for " + Quoted(table.tableName) + " makes a "
                        + LowerName(word->text) + " without \"if not exists\"",
                    {.help = "write: create " + LowerName(word->text) + " if not exists", .isAboutText = true});
                return;
            }
        }
    });
}

bool HasTrigger(const std::vector<SqlToken>& tokens)
{
    return std::any_of(tokens.begin(), tokens.end(), [](const SqlToken& token) { return IsKeyword(token, "trigger"); })
        && std::any_of(tokens.begin(), tokens.end(), [](const SqlToken& token) { return IsKeyword(token, "begin"); });
}

void CheckCuts(const Subject& subject, Report& report)
{
    ForEachCreation(subject, [&report](const CreateTable& table, const SqlPieces& pieces) {
        const auto& tokens = pieces.tokens;
        const auto ends =
            std::count_if(tokens.begin(), tokens.end(), [](const auto& token) { return IsSign(token, ';'); });
        if (std::count(table.sql.begin(), table.sql.end(), ';') > ends || HasTrigger(tokens)) {
            report.Add(table.sqlElement, "the SQL for " + Quoted(table.tableName) + " has a \";\" within a statement",
                {.help = "write char(59) for the character in a text", .isAboutText = true});
        }
    });
}

constexpr Check CHECKS[] = {
    {"A814", Severity::ERROR, CheckClass::STATIC, "path of databases without an attribute",
        "A \"dbPath\" without \"decompression\", \"type\" or \"value\".", "it is skipped", CheckPaths},
    {"A815", Severity::WARNING, CheckClass::STATIC, "decompression that is not as it reads",
        "A \"dbPath\" with the letters \"zip\" in its value without decompression=\"true\", or with it where neither "
        "path nor pattern has the letters.",
        "\"decompression\" is not looked at: a file is unpacked if its path has the letters \"zip\"", CheckArchives},
    {"A816", Severity::ERROR, CheckClass::STATIC, "pattern that does not cover the path",
        "A \"dbName\" that is missing or empty, that matches no path at all, as one for the name of a file alone, or none "
        "below any \"dbPath\". Files behind a link have the path of their real place: where one leads out of the folders, "
        "the pattern may be right.",
        "the pattern must match the whole path, and no file is found", CheckCover},
    {"A817", Severity::ERROR, CheckClass::STATIC, "pattern that is no regular expression",
        "A \"dbName\" that is no regular expression in the grammar of ECMAScript, or larger than the library takes: 4096 "
        "characters and some 1000 states.",
        "the detection ends with an exception", CheckGrammar},
    {"A818", Severity::ERROR, CheckClass::STATIC, "pattern that changes in lower case",
        "A \"dbName\" with \\D, \\S, \\W, \\B or the class [:upper:].",
        "the pattern is put in lower case before it is used, so that \\D is \\d; the class matches nothing of a path "
        "in lower case",
        CheckCapitals},
    {"A819", Severity::WARNING, CheckClass::STATIC, "more than one path of databases",
        "A \"defDBTable\" with more than one \"dbPath\" that is read.",
        "all files are copied, and rules ask those of the last path alone", CheckPathCount},
    {"A820", Severity::WARNING, CheckClass::STATIC, "table that is made again",
        "A \"create\" without \"if not exists\" in a \"createNewTable\".",
        "a file in a folder below is found several times, the statement runs for each of them, and fails from the "
        "second time on; statements behind it do not run",
        CheckRepeatable},
    {"A821", Severity::WARNING, CheckClass::STATIC, "semicolon within a statement",
        "A \";\" in a text, a name, a comment or a trigger of a \"createNewTable\".",
        "the SQL is cut at every \";\"; the piece fails, and those behind it do not run", CheckCuts},
};

} // namespace

std::span<const Check> ExternalDatabaseChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
