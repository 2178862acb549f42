#include "diagnosis/scratch/scratch.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <random>
#include <string_view>
#include <utility>

#include "diagnosis/process/environment.h"
#include "diagnosis/process/signals.h"
#include "diagnosis/process/tree_removal.h"
#include "diagnosis/scratch/private_folder.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

std::string TemporaryRoot()
{
    std::error_code error;
    const fs::path root = fs::canonical(TemporaryFolder(), error);
    return error ? "" : root.generic_string();
}

ReusedScratch* reused = nullptr;

// A path beside `path` that nothing has. It has no letter behind f, and so no "zip".
std::string NewName(const std::string& path)
{
    static constexpr char DIGITS[] = "0123456789abcdef";
    std::random_device random;
    std::string name = fs::path(path).parent_path().generic_string() + "/arborist-";
    for (int digits = 0; digits < 12; ++digits) {
        name += DIGITS[random() % 16];
    }
    return name;
}

// Removes everything below `root`/`folder` but the folders `kept`. True if nothing else is left.
bool RemoveAllBut(const std::vector<std::string>& kept, const std::string& root, const std::string& folder)
{
    std::error_code error;
    std::vector<std::string> names;
    for (fs::directory_iterator entry(root + "/" + folder, error), end; !error && entry != end; entry.increment(error)) {
        names.push_back(folder + (folder.empty() ? "" : "/") + entry->path().filename().generic_string());
    }
    bool isEmptied = !error;
    for (const std::string& name : names) {
        const std::string path = root + "/" + name;
        std::error_code ignored;
        if (std::find(kept.begin(), kept.end(), name) != kept.end()
            && fs::symlink_status(path, ignored).type() == fs::file_type::directory) {
            isEmptied = RemoveAllBut(kept, root, name) && isEmptied;
        } else {
            RemoveTree(path.c_str());
            isEmptied = isEmptied && fs::symlink_status(path, ignored).type() == fs::file_type::not_found;
        }
    }
    return isEmptied;
}

bool HoldsZip(const std::string& name)
{
    constexpr std::string_view ZIP = "zip";
    const auto isSame = [](unsigned char letter, char lower) { return std::tolower(letter) == lower; };
    return std::search(name.begin(), name.end(), ZIP.begin(), ZIP.end(), isSame) != name.end();
}

} // namespace

std::optional<Failure> Scratch::Make()
{
    if (IsMade()) {
        return std::nullopt;
    }
    const std::string root = TemporaryRoot();
    const auto reason = MakeIn(root);
    return reason ? std::optional(Failure{FailureCode::NO_SCRATCH, "no folder for temporary files can be made in "
        + (root.empty() ? "TMPDIR" : root) + ": " + *reason}) : std::nullopt;
}

std::optional<std::string> Scratch::MakeIn(const std::string& folder)
{
    for (;;) {
        std::string path;
        const SignalsHeldBack heldBack;
        if (const std::error_code error = MakePrivateFolder(folder, path)) {
            return error.message();
        }
        // The library treats every file as an archive whose path contains these letters anywhere.
        if (!HoldsZip(path.substr(folder.size()))) {
            mInterruption.Remove(path);
            mPath = path;
            return std::nullopt;
        }
        RemoveTree(path.c_str());
    }
}

std::optional<Failure> Scratch::MakeOrReuse()
{
    if (IsMade() || reused == nullptr) {
        return Make();
    }
    mIsReusable = true;
    return reused->mKept.empty() || !TakeKept() ? Make() : std::nullopt;
}

bool Scratch::TakeKept()
{
    const SignalsHeldBack heldBack;
    const std::string path = NewName(reused->mKept);
    std::error_code error;
    fs::rename(reused->mKept, path, error);
    if (!error) {
        mInterruption.Remove(path);
        mPath = path;
        reused->mInterruption.Forget();
        reused->mKept.clear();
    }
    return !error;
}

Scratch::~Scratch()
{
    if (IsMade() && !(mIsReusable && reused != nullptr && reused->Keep(mPath))) {
        RemoveTree(mPath.c_str());
    }
}

ReusedScratch::ReusedScratch(std::vector<std::string> folders) : mFolders(std::move(folders))
{
    reused = this;
}

ReusedScratch::~ReusedScratch()
{
    reused = nullptr;
    if (!mKept.empty()) {
        RemoveTree(mKept.c_str());
    }
}

bool ReusedScratch::Keep(const std::string& path)
{
    if (!mKept.empty() || !RemoveAllBut(mFolders, path, "")) {
        return false;
    }
    mInterruption.Remove(path);
    mKept = path;
    return true;
}

} // namespace diagnosis
