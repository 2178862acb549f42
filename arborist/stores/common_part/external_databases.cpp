#include "arborist/stores/common_part/external_databases.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <map>
#include <new>
#include <system_error>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/frame/stopping.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/common_part/database_steps.h"
#include "arborist/stores/common_part/file_name_pattern.h"
#include "arborist/stores/common_part/lower_case.h"
#include "arborist/stores/common_part/text_limits.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_operator.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/native_path.h"
#include "arborist/utilities/string_util.h"
#include "arborist/utilities/zip_util.h"

namespace fs = std::filesystem;

namespace ExternalDatabases {
namespace {

using PathList = std::vector<std::string>;

std::string TargetOf(const std::string& source, const std::string& directory)
{
    return directory + "/" + FileUtil::ExtractFileName(source);
}

// True if a copy of `source` in `directory` would be the file itself; false for a link to it.
bool IsInDirectory(const std::string& source, const std::string& directory)
{
    std::error_code error;
    const fs::path sourceFolder = fs::canonical(fs::absolute(NativePath(source), error).parent_path(), error);
    if (error) {
        return false;
    }
    return fs::equivalent(sourceFolder, NativePath(directory), error) && !error;
}

// Decides by the path on the device, so that the folder of a recorded device makes no difference.
bool IsZip(const std::string& realPath, const std::string& rootOfDevice)
{
    return LowerCase(DevicePaths::PathOnDevice(realPath, rootOfDevice)).find("zip") != std::string::npos;
}

// Removes the journals that an interrupted run left beside the previous copy: SQLite would apply them to the new one.
// False, with a line, if one can't be removed.
bool RemoveLeftovers(const std::string& target)
{
    bool areRemoved = true;
    for (const char* const suffix : {"-journal", "-wal", "-shm"}) {
        if (FileUtil::FileExists(target + suffix)) {
            areRemoved = FileUtil::RemoveFile(target + suffix) && areRemoved;
        }
    }
    return areRemoved;
}

bool HoldsTwoDots(const std::string& path)
{
    return path.find("..") != std::string::npos;
}

// Removes a folder with its content if an exception ends the work in it, a stop or a lack of memory: what is left there
// would pass for files of the next archive.
class WorkDirectory {
public:
    explicit WorkDirectory(std::string path) : mPath(std::move(path)) { FileUtil::ForceCreateDirectory(mPath); }
    ~WorkDirectory()
    {
        if (std::uncaught_exceptions() == mExceptions) {
            return;
        }
        try {
            FileUtil::ForceRemoveDirectory(mPath, true);
        } catch (const std::bad_alloc&) {
            // The next archive finds whole files only: each is moved to its place once it is complete.
        }
    }
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;

    const std::string& GetPath() const { return mPath; }

private:
    std::string mPath;
    int mExceptions = std::uncaught_exceptions();
};

// The files that a search lists and, where there are none, why. Not whole if a limit kept some listings out.
struct Found {
    PathList files;
    Evidence::NoCopy missing = Evidence::NoCopy::NO_MATCH;
    bool isWhole = true;
};

Found GetFileList(DatabaseSearch& search, const std::string& directory, std::size_t mostEntries)
{
    static constexpr char NAME[] = "CommonPartDbHelper::GetFileList";
    PathList files = search.Find(directory, true);
    if (search.IsCutShort()) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: files are listed %zu times, repetitions end here.",
            NAME, files.size());
    }
    if (search.HasLeftOutLinks()) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN,
            "FUNc:%s: links lead from one to another, those behind the first %zu are not searched.", NAME,
            DatabaseSearch::MOST_LINKS);
    }
    if (search.HasLeftOutEntries()) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN,
            "FUNc:%s: more than %zu files and directories, the others are not searched.", NAME, mostEntries);
    }
    if (search.HasLeftOutFolders()) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_WARN, "FUNc:%s: directories can't be read, what is in them is not searched.", NAME);
    }
    const Evidence::NoCopy missing = !files.empty() ? Evidence::NoCopy::NONE
        : search.HasSeenFiles() ? Evidence::NoCopy::NO_MATCH : Evidence::NoCopy::FOLDER_EMPTY;
    return {std::move(files), missing,
        !search.IsCutShort() && !search.HasLeftOutLinks() && !search.HasLeftOutEntries() && !search.HasLeftOutFolders()};
}

// Reads the file at `opened`, another path of `source`.
bool CopyFile(const std::string& source, const std::string& opened, const std::string& directory)
{
    static constexpr char NAME[] = "CommonPartDbHelper::CopyFile";
    if (source.empty() || directory.empty()) {
        return false;
    }
    if (!FileUtil::FileExists(source)) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: file %s not exist.", NAME,
            FileUtil::ExtractFileName(source).c_str());
        return false;
    }
    if (!FileUtil::FileExists(directory) && !FileUtil::ForceCreateDirectory(directory)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: create directory fail.", NAME);
        return false;
    }
    if (!FileUtil::IsDirectory(directory)) {
        return false;
    }
    if (IsInDirectory(source, directory)) {
        return true;
    }
    const std::string target = TargetOf(source, directory);
    FileUtil::RemoveFile(target);
    if (opened == source ? !FileUtil::CopyFileToFolder(source, directory, fs::copy_options::overwrite_existing)
                         : !FileUtil::CopyContentToFolder(opened, source, directory)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: copy file to folder fail.", NAME);
        return false;
    }
    // Make the copy writable even if the file is not, as statements change the copy.
    std::error_code ignored;
    fs::permissions(NativePath(target), fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add, ignored);
    return FileUtil::FileExists(target);
}

// Decides which archives that a search lists again are unpacked again: none that was unpacked last and logged nothing, as
// its files still stand, and the others while there is room for it.
class RepeatedArchives {
public:
    explicit RepeatedArchives(std::uint64_t mostUnpackedAgain) : mWorkLeft(mostUnpackedAgain) {}

    bool Stands(const std::string& archive) const { return mStanding != nullptr && *mStanding == archive; }
    // Something is written that may replace files of an archive.
    void Forget() { mStanding = nullptr; }

    // Always true for an archive that is listed for the first time.
    bool MayBeListed(const std::string& archive, std::size_t listed)
    {
        std::string& seen = mSeen[archive];
        mIsFirst = seen.empty();
        seen = archive;
        const bool mayBeListed = mIsFirst ||
            (listed < DatabaseSearch::MOST_LISTINGS_IN_ALL && (Stands(archive) || mWorkLeft != 0));
        mIsCutShort = mIsCutShort || !mayBeListed;
        return mayBeListed;
    }

    // Its files are copies from `first` up to `last`. `archive` has to live as long as this object.
    void Unpacked(const std::string& archive, const std::string& opened, const Unpacking& unpacking, std::size_t first,
        std::size_t last)
    {
        if (mIsFirst) {
            mWorkLeft += UNPACKED_AGAIN_FOR_A_BYTE * FileUtil::GetFileSize(opened);
        } else {
            mWorkLeft -= std::min(mWorkLeft, unpacking.work + WORK_OF_AN_ARCHIVE);
        }
        mStanding = unpacking.isRepeatable ? &archive : nullptr;
        mFirst = first;
        mLast = last;
    }

    void ListAgain(PathList& copies) const
    {
        for (std::size_t copy = mFirst; copy < mLast; ++copy) {
            copies.push_back(copies[copy]);
        }
    }

    bool IsCutShort() const { return mIsCutShort; }

private:
    static constexpr std::uint64_t WORK_OF_AN_ARCHIVE = 64 * 1024;

    std::uint64_t mWorkLeft;
    std::map<std::string, std::string> mSeen; // as a set; a map of texts is compiled for this file anyway
    const std::string* mStanding = nullptr; // the archive that was unpacked last, or null
    bool mIsFirst = false;
    std::size_t mFirst = 0;
    std::size_t mLast = 0;
    bool mIsCutShort = false;
};

// Copies what a search has found into the directory of copies, one after the other.
class Copying {
public:
    Copying(DatabaseSearch& search, const std::string& dbName, std::string directory, std::uint64_t mostUnpackedAgain)
        : mDirectory(std::move(directory)), mRootOfDevice(DevicePaths::RealRootOfDevice()), mWithCase(dbName),
          mPattern(LowerCase(dbName) == dbName ? search.GetPattern() : mWithCase), mArchives(mostUnpackedAgain)
    {
    }

    // Called before the first copy, as files with these names may be among the copies.
    void RemoveLeftoversOf(const PathList& candidates) const
    {
        for (const std::string& candidate : candidates) {
            if (!IsZip(candidate, mRootOfDevice) && !IsInDirectory(candidate, mDirectory)) {
                RemoveLeftovers(TargetOf(candidate, mDirectory));
            }
        }
    }

    // `candidate` has to live as long as this object.
    void Take(const std::string& candidate)
    {
        // Opened once: its folders may be replaced by links until its turn comes.
        const RootedPath::Target opened = DevicePaths::FindReal(candidate, mRootOfDevice);
        if (!FileUtil::FileExists(opened.Path())) {
            TellNotCopied(candidate);
        } else if (!IsZip(candidate, mRootOfDevice)) {
            TakeFile(candidate, opened.Path());
        } else if (const bool stands = mArchives.Stands(candidate); mArchives.MayBeListed(candidate, mCopies.size())) {
            stands ? mArchives.ListAgain(mCopies) : Unpack(candidate, opened.Path());
        }
    }

    Copies End(bool isSearchWhole)
    {
        using Evidence::NoCopy;
        if (mArchives.IsCutShort()) {
            FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: files are listed %zu times, repetitions end here.",
                "CommonPartDbHelper::CopyDbFile", mCopies.size());
        }
        const NoCopy missing = !mCopies.empty() ? NoCopy::NONE
            : mAreAllCopied                     ? NoCopy::NOT_IN_ARCHIVE
                                                : NoCopy::NOT_COPIED;
        return {std::move(mCopies), missing, isSearchWhole && mAreAllCopied && !mArchives.IsCutShort()};
    }

private:
    void Unpack(const std::string& archive, const std::string& opened)
    {
        mSourceByTarget.clear();
        Unpacking unpacking;
        const std::size_t first = mCopies.size();
        for (const std::string& file : UnZipFile(archive, mDirectory, &unpacking, opened)) {
            if (!file.empty() && mPattern.Matches(FileUtil::ExtractFileName(file))) {
                mCopies.push_back(file);
            }
        }
        mArchives.Unpacked(archive, opened, unpacking, first, mCopies.size());
        if (!unpacking.isWhole) {
            TellNotCopied(archive);
        }
    }

    // A repeated file counts as one more copy, but the same bytes need not be written again.
    void TakeFile(const std::string& file, const std::string& opened)
    {
        std::string& standing = mSourceByTarget[TargetOf(file, mDirectory)];
        if (standing != file) {
            mArchives.Forget();
        }
        if (standing == file || CopyFile(file, opened, mDirectory)) {
            standing = file;
            mCopies.push_back(TargetOf(StringUtil::TrimSP(file), mDirectory));
        } else {
            standing.clear();
            TellNotCopied(file);
        }
    }

    void TellNotCopied(const std::string& source)
    {
        mAreAllCopied = false;
        TroubleWatch::Tell(Evidence::Trouble::Kind::NOT_COPIED, "the file can't be copied or unpacked", {source, source});
    }

    std::string mDirectory;
    std::string mRootOfDevice;
    // Names within archives keep their case, but the pattern is mostly that of the search and compiled already.
    FileNamePattern mWithCase;
    FileNamePattern& mPattern;
    std::map<std::string, std::string> mSourceByTarget; // the source of the last copy to each target
    RepeatedArchives mArchives;
    PathList mCopies;
    bool mAreAllCopied = true;
};

} // namespace

Copies CopyDbFile(const std::string& path, const std::string& dbName, std::size_t mostEntries,
    std::uint64_t mostUnpackedAgain)
{
    if (path.empty() || dbName.empty()) {
        return {{}, Evidence::NoCopy::NO_MATCH, true};
    }
    DatabaseSearch search(dbName, mostEntries);
    const Found found = GetFileList(search, path, mostEntries);
    if (found.files.empty()) {
        return {{}, found.missing, found.isWhole};
    }
    std::string directory = FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::APP_DATABASE_DIR, "");
    if (directory.empty()) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: database dir is empty.", "CommonPartDbHelper::CopyDbFile");
        return {{}, Evidence::NoCopy::SETTING_EMPTY};
    }
    Copying copying(search, dbName, std::move(directory), mostUnpackedAgain);
    copying.RemoveLeftoversOf(found.files);
    for (const std::string& candidate : found.files) {
        StopPoint::Pass();
        copying.Take(candidate);
    }
    return copying.End(found.isWhole);
}

PathList UnZipFile(
    const std::string& zipPath, const std::string& directory, Unpacking* unpacking, const std::string& opened)
{
    Unpacking ignored;
    Unpacking& outcome = unpacking == nullptr ? ignored : *unpacking;
    outcome = {};
    static constexpr char NAME[] = "CommonPartDbHelper::UnZipFile";
    if (zipPath.empty() || directory.empty()) {
        return {};
    }
    if (!FileUtil::FileExists(zipPath)) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: file not exist.", NAME);
        return {};
    }
    if (HoldsTwoDots(directory) || HoldsTwoDots(FileUtil::ExtractFileName(zipPath))) {
        return {};
    }
    FileUtil::ForceCreateDirectory(directory);
    // A member may replace an archive that is in the directory itself, and what an earlier run left is there only once.
    bool isRepeatable = !IsInDirectory(zipPath, directory) && !FileUtil::FileExists(directory + "/temp");
    // Always the same directory: files that an earlier run left in it are copied, too.
    const WorkDirectory workDirectory(directory + "/temp");
    if (!ZipUtil::UnZipFile(opened.empty() ? zipPath : opened, workDirectory.GetPath() + "/", &outcome.work)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: unZip file fail.", NAME);
        return {};
    }
    PathList unpacked;
    outcome.isWhole = FileUtil::GetDirFiles(workDirectory.GetPath(), unpacked);
    for (const std::string& file : unpacked) {
        isRepeatable = RemoveLeftovers(TargetOf(file, directory)) && isRepeatable;
    }
    for (std::string& file : unpacked) {
        StopPoint::Pass();
        if (!CopyFile(file, file, directory)) {
            isRepeatable = false;
            outcome.isWhole = outcome.isWhole && FileUtil::IsDirectory(file); // folders are not copied
            FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Copy file fail.", NAME);
        }
        // Listed even if the copy failed: an older copy may exist there.
        file = TargetOf(file, directory);
    }
    if (!FileUtil::ForceRemoveDirectory(workDirectory.GetPath(), true)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: remove folder fail.", NAME);
        isRepeatable = false;
    }
    outcome.isRepeatable = isRepeatable && outcome.isWhole;
    return unpacked;
}

bool CreateTable(const std::string& dbPath, const std::string& sql, TextLimits& limits)
{
    static constexpr char NAME[] = "CommonPartDbHelper::CreateTable";
    if (dbPath.empty() || sql.empty()) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: createTable input is null.", NAME);
        return false;
    }
    if (!FileUtil::FileExists(dbPath)) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: file %s not exist.", NAME,
            FileUtil::ExtractFileName(dbPath).c_str());
        return false;
    }
    // A semicolon inside a literal splits the statement, too.
    const std::vector<std::string> statements = StringUtil::Split(sql, ";");
    if (statements.empty()) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: sql empty.", NAME);
        return false;
    }
    FT::sql::SqlDatabase database;
    database.Open(dbPath);
    if (!database.IsOpen()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: open db %s fail.", NAME,
            FileUtil::ExtractFileName(dbPath).c_str());
        return false;
    }
    PrepareForWriting(database, limits.Of(sql));
    FT::sql::SqlOperator connection(database.GetHandle());
    for (const std::string& statement : statements) {
        if (!connection.ExecuteNoCallback(statement)) {
            limits.LowerAfter(sql, *database.GetHandle().budget);
            FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: execute sql fail.", NAME);
            return false;
        }
    }
    return true;
}

} // namespace ExternalDatabases
