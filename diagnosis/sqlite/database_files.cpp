#include "diagnosis/sqlite/database_files.h"

#include <filesystem>
#include <fstream>

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

// The shared-memory file is not needed: SQLite creates it anew.
constexpr const char* COMPANIONS[] = {"-wal", "-journal"};

// SQLite keeps the companions beside the file itself, not beside a link to it.
std::string RealPath(const std::string& path)
{
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    return error ? path : real.generic_string();
}

bool IsInWalMode(const std::string& path)
{
    constexpr std::size_t WRITE_VERSION = 18;
    constexpr char WAL = 2;
    char header[20] = {};
    std::ifstream file(path, std::ios::binary);
    return file.read(header, sizeof(header)) && (header[WRITE_VERSION] == WAL || header[WRITE_VERSION + 1] == WAL);
}

std::optional<Failure> CopyOne(const std::string& source, const std::string& target)
{
    std::error_code error;
    fs::copy_file(source, target, fs::copy_options::overwrite_existing, error);
    if (!error) {
        fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add, error);
    }
    return error ? std::optional(Failure{FailureCode::NOT_COPIED, source + ": can't be copied: " + error.message()})
                 : std::nullopt;
}

} // namespace

bool IsTouchedByReading(const std::string& path)
{
    const std::string real = RealPath(path);
    std::error_code error;
    if (!fs::is_regular_file(real, error)) {
        return false;
    }
    for (const char* companion : COMPANIONS) {
        if (fs::exists(real + companion, error)) {
            return true;
        }
    }
    return IsInWalMode(real);
}

std::optional<Failure> CopyDatabase(const std::string& source, const std::string& target)
{
    const std::string real = RealPath(source);
    if (auto failure = CopyOne(real, target)) {
        return failure;
    }
    for (const char* companion : COMPANIONS) {
        std::error_code error;
        fs::remove(target + companion, error);
        if (fs::is_regular_file(real + companion, error)) {
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
