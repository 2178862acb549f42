#include "diagnosis/lint/fixes.h"

#include <algorithm>
#include <map>

#include "diagnosis/rule_source/source_file.h"
#include "diagnosis/scratch/new_file.h"

namespace diagnosis::lint {

namespace {

using rule_source::SourceFile;

constexpr std::size_t CONTEXT = 3;

std::string Applied(std::string text, const std::vector<Edit>& edits, std::size_t start)
{
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
        text.replace(edit->offset - start, edit->length, edit->text);
    }
    return text;
}

// The edits in order of place, without those that overlap an earlier one.
std::vector<Edit> Separate(std::vector<Edit> edits)
{
    std::stable_sort(edits.begin(), edits.end(),
        [](const Edit& one, const Edit& other) { return one.offset < other.offset; });
    std::vector<Edit> separate;
    for (Edit& edit : edits) {
        if (separate.empty() || separate.back().offset + separate.back().length < edit.offset) {
            separate.push_back(std::move(edit));
        }
    }
    return separate;
}

bool AreStillThere(const std::vector<Edit>& edits, const std::string& text)
{
    return std::all_of(edits.begin(), edits.end(), [&text](const Edit& edit) {
        return edit.offset <= text.size() && text.compare(edit.offset, edit.length, edit.old) == 0;
    });
}

/// Lines of a text, each with its end.
class Lines {
public:
    explicit Lines(const std::string& text)
    {
        for (std::size_t start = 0; start < text.size(); start = std::min(text.find('\n', start), text.size() - 1) + 1) {
            mStarts.push_back(start);
        }
        mStarts.push_back(text.size());
    }

    std::size_t Count() const { return mStarts.size() - 1; }
    std::size_t Start(std::size_t line) const { return mStarts[line]; }
    /// The line, from 0, of an offset.
    std::size_t LineOf(std::size_t offset) const
    {
        const auto behind = std::upper_bound(mStarts.begin(), mStarts.end() - 1, offset);
        return static_cast<std::size_t>(behind - mStarts.begin()) - 1;
    }

private:
    std::vector<std::size_t> mStarts;
};

// The lines of a text, each with `sign` in front.
std::string Marked(std::string_view text, char sign)
{
    std::string marked;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        marked += sign;
        marked += text.substr(0, end);
        marked += text[end - 1] == '\n' ? "" : "\n\\ No newline at end of file\n";
        text.remove_prefix(end);
    }
    return marked;
}

/// A run of lines that change, [first, last), with its edits.
struct Change {
    std::size_t first;
    std::size_t last;
    std::vector<Edit> edits;
};

std::vector<Change> ChangesOf(const FileFix& fix, const Lines& lines)
{
    std::vector<Change> changes;
    for (const Edit& edit : fix.edits) {
        const std::size_t first = lines.LineOf(edit.offset);
        const std::size_t last = lines.LineOf(edit.offset + edit.length) + 1;
        if (changes.empty() || changes.back().last <= first) {
            changes.push_back({first, last, {}});
        }
        changes.back().last = std::max(changes.back().last, last);
        changes.back().edits.push_back(edit);
    }
    return changes;
}

std::size_t LineCount(const std::string& text)
{
    return Lines(text).Count();
}

/// Writes changes with touching contexts as one hunk.
class HunkWriter {
public:
    HunkWriter(const FileFix& fix, const Lines& lines) : mFix(fix), mLines(lines) {}

    void Add(const Change& change)
    {
        if (!mIsOpen || change.first > mNext + 2 * CONTEXT) {
            Close();
            mIsOpen = true;
            mFirst = mNext = change.first - std::min(change.first, CONTEXT);
            mBefore = mAfter = 0;
        }
        AddContext(change.first);
        const std::string before = Piece(change.first, change.last);
        const std::string after = Applied(before, change.edits, mLines.Start(change.first));
        mBody += Marked(before, '-') + Marked(after, '+');
        mBefore += change.last - change.first;
        mAfter += LineCount(after);
        mNext = change.last;
    }

    std::string Take()
    {
        Close();
        return std::move(mText);
    }

private:
    std::string Piece(std::size_t first, std::size_t last) const
    {
        return mFix.before.substr(mLines.Start(first), mLines.Start(last) - mLines.Start(first));
    }

    void AddContext(std::size_t end)
    {
        mBody += Marked(Piece(mNext, end), ' ');
        mBefore += end - mNext;
        mAfter += end - mNext;
        mNext = end;
    }

    void Close()
    {
        if (!mIsOpen) {
            return;
        }
        AddContext(std::min(mNext + CONTEXT, mLines.Count()));
        const auto place = [](std::size_t line, std::size_t count) {
            return std::to_string(line) + "," + std::to_string(count);
        };
        const std::size_t first = mFirst + 1;
        const std::size_t firstAfter = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(first) + mShift);
        mText += "@@ -" + place(first, mBefore) + " +" + place(firstAfter, mAfter) + " @@\n" + mBody;
        mShift += static_cast<std::ptrdiff_t>(mAfter) - static_cast<std::ptrdiff_t>(mBefore);
        mBody.clear();
        mIsOpen = false;
    }

    const FileFix& mFix;
    const Lines& mLines;
    bool mIsOpen = false;
    std::size_t mFirst = 0;
    std::size_t mNext = 0;
    std::size_t mBefore = 0;
    std::size_t mAfter = 0;
    /// Number of lines that earlier hunks have added.
    std::ptrdiff_t mShift = 0;
    std::string mBody;
    std::string mText;
};

using Findings = std::vector<const Finding*>;

// How many findings have an edit that is made.
std::size_t Mended(const Findings& findings, const std::vector<Edit>& edits)
{
    return static_cast<std::size_t>(std::count_if(findings.begin(), findings.end(), [&edits](const Finding* finding) {
        const auto isBefore = [](const Edit& edit, std::size_t offset) { return edit.offset < offset; };
        const std::size_t offset = finding->edits.front().offset;
        const auto edit = std::lower_bound(edits.begin(), edits.end(), offset, isBefore);
        return edit != edits.end() && edit->offset == offset;
    }));
}

// The fix of a file; nothing if the file has changed or would not be well-formed.
std::optional<FileFix> FixOfFile(const std::string& path, const Findings& findings)
{
    std::vector<Edit> edits;
    for (const Finding* finding : findings) {
        edits.insert(edits.end(), finding->edits.begin(), finding->edits.end());
    }
    const auto file = SourceFile::Read(path);
    FileFix fix{path, file->Text(), "", 0, Separate(std::move(edits))};
    if (!file->IsLoaded() || !AreStillThere(fix.edits, fix.before)) {
        return std::nullopt;
    }
    fix.after = Applied(fix.before, fix.edits, 0);
    fix.findings = Mended(findings, fix.edits);
    return SourceFile::Of(path, fix.after)->IsLoaded() ? std::optional(std::move(fix)) : std::nullopt;
}

} // namespace

std::vector<FileFix> FixesOf(const std::vector<Finding>& findings, bool withUnsafe)
{
    std::map<std::string, Findings> byFile;
    for (const Finding& finding : findings) {
        if (!finding.edits.empty() && (withUnsafe || finding.edits.front().isSafe)) {
            byFile[finding.edits.front().file].push_back(&finding);
        }
    }
    std::vector<FileFix> fixes;
    for (const auto& [path, ofFile] : byFile) {
        if (auto fix = FixOfFile(path, ofFile)) {
            fixes.push_back(std::move(*fix));
        }
    }
    return fixes;
}

std::string DiffOf(const FileFix& fix)
{
    const Lines lines(fix.before);
    HunkWriter hunks(fix, lines);
    for (const Change& change : ChangesOf(fix, lines)) {
        hunks.Add(change);
    }
    return "--- " + fix.path + "\n+++ " + fix.path + "\n" + hunks.Take();
}

std::optional<std::string> WriteFix(const FileFix& fix)
{
    return WriteNewFile(fix.path, fix.after);
}

} // namespace diagnosis::lint
