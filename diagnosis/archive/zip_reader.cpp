#include "diagnosis/archive/zip_reader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

#include <minizip/unzip.h>
#include <zlib.h>

#include "diagnosis/archive/entry_file.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t LONGEST_NAME = 4095;
constexpr int MOST_FOLDERS = 64;
constexpr uLong STORED = 0;
constexpr uLong ENCRYPTED = 1; // a flag

struct ArchiveCloser {
    void operator()(void* archive) const { unzClose(archive); }
};

// Checks both separators, as archives of other systems use the other one.
bool IsSafeName(const std::string& name)
{
    if (name.empty() || name.front() == '/' || name.front() == '\\' || name.find('\0') != std::string::npos) {
        return false;
    }
    int folders = 0;
    for (std::size_t start = 0; start <= name.size();) {
        const std::size_t end = std::min(name.find_first_of("/\\", start), name.size());
        if (name.compare(start, end - start, "..") == 0 || ++folders > MOST_FOLDERS) {
            return false;
        }
        start = end + 1;
    }
    return IsNameOfSystem(name);
}

// Reads like fread, but returns zeros behind the end of the file: the archive library takes a length in the zip64 field
// for 4 GiB, reads ahead that far and would fail at the end of a small archive.
uLong ReadAhead(void*, void* stream, void* buffer, uLong wanted)
{
    const std::size_t got = std::fread(buffer, 1, wanted, static_cast<std::FILE*>(stream));
    const bool isAtEnd = std::feof(static_cast<std::FILE*>(stream)) != 0;
    std::fill(static_cast<char*>(buffer) + got, static_cast<char*>(buffer) + wanted, '\0');
    return isAtEnd ? wanted : static_cast<uLong>(got);
}

// By the mode that archivers of Unix note.
bool IsLink(const unz_file_info64& info)
{
    constexpr unsigned MODE_SHIFT = 16;
    constexpr unsigned KIND = 0170000;
    constexpr unsigned LINK = 0120000;
    return (info.external_fa >> MODE_SHIFT & KIND) == LINK;
}

std::uint64_t NumberAt(const std::string& bytes, std::size_t at, std::size_t length)
{
    std::uint64_t number = 0;
    for (std::size_t byte = length; byte-- > 0;) {
        number = number << 8 | static_cast<unsigned char>(bytes[at + byte]);
    }
    return number;
}

// The lengths in the zip64 field of an entry, the real one first where it is missing elsewhere; empty without a field.
std::vector<std::uint64_t> LengthsInField(const std::string& extra)
{
    constexpr std::size_t HEAD = 4;
    std::vector<std::uint64_t> lengths;
    for (std::size_t at = 0; at + HEAD <= extra.size();) {
        const bool isZip64 = NumberAt(extra, at, 2) == 1;
        const std::size_t end = at + HEAD + NumberAt(extra, at + 2, 2);
        for (at += HEAD; isZip64 && at + 8 <= std::min(end, extra.size()); at += 8) {
            lengths.push_back(NumberAt(extra, at, 8));
        }
        at = end;
    }
    return lengths;
}

class Unpacking {
public:
    Unpacking(std::string shown, std::string target, std::vector<Warning>& warnings, const ZipLimits& limits,
        const std::function<bool()>& isToEnd)
        : mShown(std::move(shown)), mTarget(std::move(target)), mWarnings(warnings), mLimits(limits),
          mIsToEnd(isToEnd)
    {
    }

    std::optional<Failure> Run(const std::string& path)
    {
        zlib_filefunc64_def functions{};
        fill_fopen64_filefunc(&functions);
        functions.zread_file = ReadAhead;
        mArchive.reset(unzOpen2_64(path.c_str(), &functions));
        std::error_code error;
        mSize = fs::file_size(path, error);
        if (mArchive == nullptr) {
            return Bad("is no zip that can be read");
        }
        std::uint64_t entries = 0;
        int result = unzGoToFirstFile(mArchive.get());
        for (; result == UNZ_OK; result = unzGoToNextFile(mArchive.get())) {
            if (++entries > mLimits.entries) {
                return TooLarge("more than " + std::to_string(mLimits.entries) + " entries");
            }
            if (auto failure = UnpackEntry()) {
                return failure;
            }
        }
        unz_global_info64 info{};
        const bool isComplete = unzGetGlobalInfo64(mArchive.get(), &info) == UNZ_OK && info.number_entry == entries;
        return isComplete ? std::nullopt : std::optional(Bad("is damaged"));
    }

private:
    Failure Bad(const std::string& reason) const { return Failure{FailureCode::BAD_ZIP, mShown + ": " + reason}; }

    Failure TooLarge(const std::string& reason) const
    {
        return Failure{FailureCode::TOO_LARGE, mShown + ": " + reason};
    }

    std::optional<Failure> UnpackEntry()
    {
        unz_file_info64 info{};
        if (unzGetCurrentFileInfo64(mArchive.get(), &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) {
            return Bad("is damaged");
        }
        std::string name(std::min<std::size_t>(info.size_filename, LONGEST_NAME), '\0');
        const int read = unzGetCurrentFileInfo64(
            mArchive.get(), nullptr, name.data(), static_cast<uLong>(name.size()), nullptr, 0, nullptr, 0);
        if (read != UNZ_OK || info.size_filename > LONGEST_NAME || !IsSafeName(name)) {
            return Bad("the name of an entry can't be used: \"" + name + "\"");
        }
        if (IsLink(info)) {
            mWarnings.emplace_back(WarningCode::ZIP_LINK, mShown + ": the symbolic link \"" + name + "\" is not made");
            return std::nullopt;
        }
        return name.back() == '/' ? MakeFolder(name) : UnpackFile(name, info);
    }

    std::optional<Failure> MakeFolder(const std::string& name)
    {
        std::error_code error;
        fs::create_directories(fs::path(mTarget) / name, error);
        return error ? std::optional(Bad("\"" + name + "\" can't be made: " + error.message())) : std::nullopt;
    }

    std::optional<Failure> UnpackFile(const std::string& name, const unz_file_info64& info)
    {
        // The archive library would return the packed bytes.
        const bool isKnown = info.compression_method == STORED || info.compression_method == Z_DEFLATED;
        if (!isKnown || (info.flag & ENCRYPTED) != 0) {
            return Bad("\"" + name + "\" is packed in an unknown way or encrypted");
        }
        const fs::path path = fs::path(mTarget) / name;
        std::error_code error;
        fs::create_directories(path.parent_path(), error);
        EntryFile file(path);
        if (!file.IsOpen()) {
            return Bad("\"" + name + "\" can't be made: " + std::strerror(errno));
        }
        if (unzOpenCurrentFile(mArchive.get()) != UNZ_OK) {
            return Bad("\"" + name + "\" is damaged or encrypted");
        }
        const auto length = StoredLength(info);
        auto failure = length ? CopyOut(name, file, *length) : Bad("\"" + name + "\" is damaged");
        // Closing compares the checksum only where the library knows that all was read.
        const bool isWhole = unzCloseCurrentFile(mArchive.get()) == UNZ_OK && mChecksum == info.crc;
        return !failure && !isWhole ? Bad("\"" + name + "\" is damaged") : failure;
    }

    // Where a stored entry ends. The archive library leaves lengths in the zip64 field where they are, and would read
    // on; it finds the end of any other entry by itself. Nothing for lengths that can't be true.
    std::optional<std::uint64_t> StoredLength(const unz_file_info64& info)
    {
        constexpr std::uint64_t IN_THE_FIELD = 0xFFFFFFFF;
        if (info.compression_method != STORED || info.uncompressed_size != IN_THE_FIELD) {
            return std::numeric_limits<std::uint64_t>::max();
        }
        std::string extra(info.size_file_extra, '\0');
        unz_file_info64 again{};
        if (unzGetCurrentFileInfo64(mArchive.get(), &again, nullptr, 0, extra.data(), info.size_file_extra, nullptr, 0)
            != UNZ_OK) {
            return std::nullopt;
        }
        const std::vector<std::uint64_t> lengths = LengthsInField(extra);
        const bool isPackedInField = info.compressed_size == IN_THE_FIELD;
        if (lengths.size() < (isPackedInField ? 2 : 1)) {
            return std::nullopt;
        }
        const std::uint64_t packed = isPackedInField ? lengths[1] : info.compressed_size;
        return packed == lengths[0] && packed <= mSize ? std::optional(packed) : std::nullopt;
    }

    // Counts the bytes that are really unpacked: the lengths that an archive declares need not be true.
    std::optional<Failure> CopyOut(const std::string& name, EntryFile& file, std::uint64_t left)
    {
        mChecksum = 0;
        for (;;) {
            const int length = unzReadCurrentFile(mArchive.get(), mBuffer.data(),
                static_cast<unsigned>(std::min<std::uint64_t>(mBuffer.size(), left)));
            if (length <= 0) {
                return length == 0 ? std::nullopt : std::optional(Bad("\"" + name + "\" is damaged"));
            }
            if (mIsToEnd && mIsToEnd()) {
                return Failure{FailureCode::TIMEOUT, mShown + ": stopped before it was unpacked"};
            }
            left -= static_cast<std::uint64_t>(length);
            mBytes += static_cast<std::uint64_t>(length);
            mChecksum = crc32(mChecksum, reinterpret_cast<const Bytef*>(mBuffer.data()), static_cast<uInt>(length));
            if (mBytes > mLimits.bytes) {
                return TooLarge("more than " + std::to_string(mLimits.bytes) + " bytes when unpacked");
            }
            if (!file.Write(mBuffer.data(), static_cast<std::size_t>(length))) {
                return Failure{FailureCode::NO_SCRATCH,
                    mShown + ": \"" + name + "\" can't be unpacked: " + std::strerror(errno)};
            }
        }
    }

    std::string mShown;
    std::string mTarget;
    std::vector<Warning>& mWarnings;
    ZipLimits mLimits;
    const std::function<bool()>& mIsToEnd;
    std::unique_ptr<std::remove_pointer_t<unzFile>, ArchiveCloser> mArchive;
    std::uint64_t mSize = 0;
    std::uint64_t mBytes = 0;
    uLong mChecksum = 0; // of the current entry
    std::array<char, 65536> mBuffer{};
};

} // namespace

bool IsZip(const std::string& path)
{
    std::error_code error;
    // Ask first: opening a pipe would wait for its other end.
    if (!fs::is_regular_file(path, error)) {
        return false;
    }
    char start[4] = {};
    std::ifstream file(path, std::ios::binary);
    file.read(start, sizeof(start));
    // "PK\3\4" precedes an entry, "PK\5\6" the end record, with which an empty archive starts.
    return file && start[0] == 'P' && start[1] == 'K' && (start[2] == 3 || start[2] == 5);
}

std::optional<Failure> UnpackZip(const std::string& path, const std::string& shown, const std::string& target,
    std::vector<Warning>& warnings, const ZipLimits& limits, const std::function<bool()>& isToEnd)
{
    return std::make_unique<Unpacking>(shown, target, warnings, limits, isToEnd)->Run(path);
}

} // namespace diagnosis
