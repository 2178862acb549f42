#include "diagnosis/sqlite/database_files.h"

#include <filesystem>
#include <fstream>

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

// The shared-memory file is not needed: SQLite creates it anew.
constexpr char WAL[] = "-wal";
constexpr char JOURNAL[] = "-journal";

// SQLite keeps the companions beside the file itself, not beside a link to it.
std::string RealPath(const std::string& path)
{
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    return error ? path : real.generic_string();
}

// Whether SQLite reads the database by its WAL.
bool HasWal(const std::string& path)
{
    std::error_code error;
    if (fs::exists(path + WAL, error)) {
        return true;
    }
    constexpr std::size_t WRITE_VERSION = 18;
    constexpr char WAL_VERSION = 2;
    char header[20] = {};
    std::ifstream file(path, std::ios::binary);
    return file.read(header, sizeof(header)) && (header[WRITE_VERSION] == WAL_VERSION || header[WRITE_VERSION + 1] == WAL_VERSION);
}

std::optional<Failure> CopyOne(const std::string& source, const std::string& target)
{
    std::error_code error;
    fs::remove(target, error); // on Windows, the compiler's library copies no file over another one
    fs::copy_file(source, target, fs::copy_options::overwrite_existing, error);
    if (!error) {
        fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add, error);
    }
    return error ? std::optional(Failure{FailureCode::NOT_COPIED, source + ": can't be copied: " + error.message()})
                 : std::nullopt;
}

// In a transaction this locks the database for reading until the connection is closed.
constexpr char READ[] = "PRAGMA schema_version";

// Not for a database with a WAL: reading it would create a file beside it.
bool NeedsRollback(const std::string& path)
{
    Connection database;
    if (!database.Open(path, Connection::Mode::READ_ONLY)) {
        return false;
    }
    database.WhileLocked(nullptr); // who has it locked is within a change that it will end
    return !database.Execute(READ) && database.NeedsRollback();
}

} // namespace

bool IsTouchedByReading(const std::string& path)
{
    const std::string real = RealPath(path);
    std::error_code error;
    if (!fs::is_regular_file(real, error)) {
        return false;
    }
    return HasWal(real) || (fs::exists(real + JOURNAL, error) && NeedsRollback(real));
}

std::optional<Failure> CopyDatabase(
    const std::string& source, const std::string& target, const std::function<bool(int tries)>& tryAgain)
{
    const std::string real = RealPath(source);
    Connection lock;
    const bool canBeLocked = lock.Open(real, Connection::Mode::READ_ONLY) && !HasWal(real);
    if (canBeLocked) {
        lock.WhileLocked(tryAgain);
    }
    // A database whose change must be undone, or that is damaged, can't be read, and nobody changes it.
    const bool isLocked = canBeLocked && lock.Execute(std::string("BEGIN;") + READ);
    if (canBeLocked && lock.IsLocked()) {
        return Failure{FailureCode::NOT_COPIED, source + ": can't be copied: " + lock.GetError()};
    }
    if (auto failure = CopyOne(real, target)) {
        return failure;
    }
    for (const char* companion : {WAL, JOURNAL}) {
        std::error_code error;
        fs::remove(target + companion, error);
        // In a locked database the journal is of a change that has not reached the file. And a process loses the lock of a
        // file when it closes the file, as copying it does.
        if (!isLocked && fs::is_regular_file(real + companion, error)) {
            if (auto failure = CopyOne(real + companion, target + companion)) {
                return failure;
            }
        }
    }
    return std::nullopt;
}

std::optional<Failure> ReadOnlyDatabase::Open(const std::string& path, FailureCode code)
{
    std::string file = path;
    auto mode = Connection::Mode::READ_ONLY;
    if (IsTouchedByReading(path)) {
        if (auto failure = mScratch.Make()) {
            return failure;
        }
        file = mScratch.Path("copy.db");
        // SQLite must apply a pending change to the copy before it can read it.
        mode = Connection::Mode::CREATE;
        if (auto failure = CopyDatabase(path, file)) {
            return failure;
        }
    }
    if (!mConnection.Open(file, mode)) {
        return Failure{code, path + ": " + mConnection.GetError()};
    }
    mConnection.LimitToFile();
    return std::nullopt;
}

} // namespace diagnosis
