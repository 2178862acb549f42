#include "diagnosis/scratch/new_file.h"

#include <filesystem>
#include <fstream>

namespace diagnosis {

namespace fs = std::filesystem;

NewFolders::~NewFolders()
{
    for (; !mMade.empty(); mMade.pop_back()) {
        std::error_code error;
        fs::remove(mMade.back(), error);
    }
}

void NewFolders::Make(const fs::path& folder)
{
    std::error_code error;
    std::vector<fs::path> missing;
    for (fs::path above = fs::absolute(folder, error); !above.empty() && !fs::exists(above, error);
         above = above.parent_path()) {
        missing.push_back(above);
    }
    for (; !missing.empty(); missing.pop_back()) {
        if (fs::create_directory(missing.back(), error)) {
            mMade.push_back(missing.back());
        }
    }
}

std::optional<std::string> NewFile::Make(const std::string& path)
{
    std::error_code error;
    if (fs::is_directory(path, error)) {
        return "is a folder";
    }
    // Refuse a device or a pipe, which the file would replace.
    if (fs::exists(path, error) && !fs::is_regular_file(path, error)) {
        return "is no plain file";
    }
    const fs::path folder = fs::path(path).parent_path();
    if (const auto reason = mFolder.MakeIn(folder.empty() ? "." : folder.generic_string())) {
        return "can't be written: " + *reason;
    }
    mPath = path;
    return std::nullopt;
}

std::optional<std::string> NewFile::MakeWithFolders(const std::string& path)
{
    // No check here: if a folder can't be created, making the file fails and reports it.
    mFoldersAbove.Make(fs::path(path).parent_path());
    return Make(path);
}

std::optional<std::string> NewFile::PutInPlace()
{
    std::error_code error;
    fs::rename(TemporaryPath(), mPath, error);
    if (error) {
        return "can't be put in place: " + error.message();
    }
    mFoldersAbove.Keep();
    return std::nullopt;
}

std::optional<std::string> NewFile::PutInFreePlace()
{
    std::error_code error;
    fs::create_hard_link(TemporaryPath(), mPath, error);
    if (!error) {
        mFoldersAbove.Keep();
        return std::nullopt;
    }
    // A file system without such links: a file that appears in this very moment is replaced.
    std::error_code ignored;
    return error == std::errc::file_exists || fs::exists(mPath, ignored) ? "was made by another program meanwhile" : PutInPlace();
}

std::optional<std::string> WriteNewFile(const std::string& path, const std::string& text)
{
    NewFile file;
    if (const auto problem = file.Make(path)) {
        return path + ": " + *problem;
    }
    std::ofstream stream(file.TemporaryPath(), std::ios::binary);
    stream << text;
    stream.close();
    const auto problem = stream ? file.PutInPlace() : std::optional<std::string>("can't be written");
    return problem ? std::optional(path + ": " + *problem) : std::nullopt;
}

bool IsOneFile(const std::string& one, const std::string& other)
{
    std::error_code error;
    return fs::equivalent(one, other, error);
}

} // namespace diagnosis
