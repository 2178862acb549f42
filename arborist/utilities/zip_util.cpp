#include "arborist/utilities/zip_util.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <minizip/unzip.h>
#include <minizip/zip.h>

#include "arborist/frame/log.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/native_path.h"
#include "arborist/utilities/platform.h"
#include "arborist/utilities/zip_entry.h"

namespace {

constexpr std::size_t READ_BUFFER_LENGTH = 102400;
constexpr std::size_t LONGEST_ENTRY_NAME = 127;
constexpr std::uint64_t FOUR_GIB = 1ULL << 32;
// Limit on what the members of an archive unpack to: a few bytes can stand for a thousand times as many. Databases pack to
// a tenth or so.
constexpr std::uint64_t LEAST_UNPACKED = 256ULL << 20;
constexpr std::uint64_t WORK_OF_AN_ENTRY = 16 * 1024;
constexpr std::uint64_t UNPACKED_FOR_A_BYTE = 100;
constexpr std::size_t END_RECORD_LENGTH = 22;
constexpr std::size_t MAX_COMMENT_LENGTH = 0xFFFF; // of the comment behind the end record
constexpr std::size_t MAX_ADDED_NAME_LENGTH = 0xFFFF; // the format has no room for more
constexpr std::uint16_t DIRECTORY_MODE = 0700;
constexpr int WITH_PARENT = 1;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Reads like fread, but returns zeros after the end of the file: if the archive library mistakes a packed length for 4
// GiB (see ResolveLengths), it reads ahead that far and would fail at the end of a small archive.
uLong ReadAhead(void*, void* stream, void* buffer, uLong wanted)
{
    auto* const file = static_cast<std::FILE*>(stream);
    const std::size_t got = std::fread(buffer, 1, wanted, file);
    if (std::feof(file) == 0) {
        return static_cast<uLong>(got);
    }
    std::fill_n(static_cast<char*>(buffer) + got, wanted - got, '\0');
    return wanted;
}

// The modes of the archive library that are used here: to read, and to create.
void* OpenByLibrary(void*, const void* path, int mode)
{
    const bool isToRead = (mode & ZLIB_FILEFUNC_MODE_READWRITEFILTER) == ZLIB_FILEFUNC_MODE_READ;
    return Platform::OpenFile(static_cast<const char*>(path), isToRead ? "rb" : "wb");
}

zlib_filefunc64_def FileFunctions()
{
    zlib_filefunc64_def functions{};
    fill_fopen64_filefunc(&functions);
    functions.zopen64_file = OpenByLibrary;
    return functions;
}

// An archive that is open for reading.
class Archive {
public:
    explicit Archive(const std::string& path)
    {
        zlib_filefunc64_def functions = FileFunctions();
        functions.zopen64_file = Open;
        functions.zread_file = ReadAhead;
        functions.zclose_file = Close;
        functions.opaque = this;
        mHandle = unzOpen2_64(path.c_str(), &functions);
    }
    ~Archive()
    {
        if (mHandle != nullptr) {
            unzClose(mHandle);
        } else if (mFile != nullptr) { // the library leaves it open where it has no memory for itself
            std::fclose(mFile);
        }
    }
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    // The library's; null if the file is no archive.
    unzFile Get() const { return mHandle; }

private:
    static void* Open(void* self, const void* path, int mode)
    {
        auto& file = static_cast<Archive*>(self)->mFile;
        file = static_cast<std::FILE*>(OpenByLibrary(nullptr, path, mode));
        return file;
    }
    static int Close(void* self, void* stream)
    {
        static_cast<Archive*>(self)->mFile = nullptr;
        return std::fclose(static_cast<std::FILE*>(stream));
    }

    std::FILE* mFile = nullptr;
    unzFile mHandle = nullptr;
};

bool Seek(std::FILE* file, std::uint64_t offset)
{
#ifdef _WIN32
    return _fseeki64(file, static_cast<long long>(offset), SEEK_SET) == 0; // an off_t has 32 bits there
#else
    return fseeko(file, static_cast<off_t>(offset), SEEK_SET) == 0;
#endif
}

// The end record of an archive, which has its number of entries; empty if the file has none or only a part of it.
std::string EndRecord(const std::string& path)
{
    const File file(Platform::OpenForReading(path));
    const auto size = static_cast<std::size_t>(FileUtil::GetFileSize(path));
    std::string end(std::min(size, END_RECORD_LENGTH + MAX_COMMENT_LENGTH), '\0');
    if (file == nullptr || !Seek(file.get(), size - end.size()) ||
        std::fread(end.data(), 1, end.size(), file.get()) != end.size()) {
        return "";
    }
    const std::size_t begin = end.rfind("PK\5\6");
    if (begin == std::string::npos || end.size() - begin < END_RECORD_LENGTH) {
        return "";
    }
    return end.substr(begin, END_RECORD_LENGTH);
}

// Whether an archive of `size` bytes is its end record, which tells of no entries, and the comment behind it.
bool IsWithoutEntries(std::string_view endRecord, std::uint64_t size)
{
    constexpr std::size_t SIGNATURE_LENGTH = 4;
    constexpr std::size_t COMMENT_LENGTH_AT = 20;
    const auto low = static_cast<unsigned char>(endRecord[COMMENT_LENGTH_AT]);
    const auto high = static_cast<unsigned char>(endRecord[COMMENT_LENGTH_AT + 1]);
    return endRecord.substr(0, COMMENT_LENGTH_AT).find_first_not_of('\0', SIGNATURE_LENGTH) == std::string_view::npos &&
        size == END_RECORD_LENGTH + low + 256U * high;
}

bool HasParentElement(std::string_view path)
{
    constexpr char SEPARATORS[] = "/\\";
    for (std::size_t begin = 0;;) {
        const std::size_t end = path.find_first_of(SEPARATORS, begin);
        if (path.substr(begin, end - begin) == "..") {
            return true;
        }
        if (end == std::string_view::npos) {
            return false;
        }
        begin = end + 1;
    }
}

// True if `target` with `name` appended is a path outside of the target.
bool LeadsOut(const std::string& target, std::string_view name)
{
    if (HasParentElement(name)) {
        return true;
    }
#ifdef _WIN32
    if (name.find(':') != std::string_view::npos || name.find_first_of("/\\") == 0) {
        return true;
    }
#endif
    // After an empty target an absolute name remains absolute, and after one that ends in "." the name "./x" becomes
    // "../x".
    const std::string lastElement = target.substr(target.rfind('/') + 1);
    return (target.empty() && name.substr(0, 1) == "/") ||
        (lastElement == "." && name.substr(0, name.find('/')) == ".");
}

// Names with a backslash come from systems where it separates folders; on others it is an ordinary character.
bool NormaliseSeparators(std::string& name)
{
#ifdef _WIN32
    FileUtil::FormatPath2UnixStyle(name);
    return true;
#else
    return name.find('\\') == std::string::npos;
#endif
}

// Closes the file and checks the result: writing the last buffered bytes can still find the disk full.
bool UnpackTo(unzFile archive, const ZipEntry& entry, const std::string& path)
{
    File file(Platform::OpenFile(path, "wb"));
    return file != nullptr && UnpackZipEntry(archive, entry, file.get()) && std::fclose(file.release()) == 0;
}

// Path at which a file is written until it is complete. It is longer than the name of any entry, so that none can have
// it.
std::string UnfinishedPath(const std::string& target)
{
    std::string name = "unfinished";
    name.resize(LONGEST_ENTRY_NAME + 1, '-');
    return target + name;
}

// A file that is removed at the end unless it was moved to its place.
class UnfinishedFile {
public:
    explicit UnfinishedFile(const std::string& path) : mText(path), mPath(NativePath(path)) {}
    ~UnfinishedFile()
    {
        std::error_code ignored;
        if (!mIsInPlace) {
            std::filesystem::remove(mPath, ignored);
        }
    }
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    const std::string& GetPath() const { return mText; }
    bool MoveTo(const std::string& place)
    {
        std::error_code error;
        std::filesystem::rename(mPath, NativePath(place), error);
        return mIsInPlace = !error;
    }

private:
    std::string mText;
    std::filesystem::path mPath; // not made of a text at the end: that allocates, and may throw
    bool mIsInPlace = false;
};

// Unpacks a file beside its target and moves it there once it is complete; an existing file stays until then.
bool ExtractFile(unzFile archive, const ZipEntry& entry, const std::string& target)
{
    UnfinishedFile unfinished(UnfinishedPath(target));
    return UnpackTo(archive, entry, unfinished.GetPath()) && unfinished.MoveTo(target + entry.name);
}

// What the entries of an archive may still use.
struct Room {
    // The archive's bytes. Entries that share bytes exceed it and fail: a small archive could have any number of them.
    std::uint64_t packed;
    std::uint64_t unpacked;
    std::uint64_t work = 0; // see ZipUtil::UnZipFile
};

bool ExtractEntry(unzFile archive, const std::string& target, Room& room)
{
    std::optional<ZipEntry> entry = ReadZipEntry(archive);
    if (!entry || entry->packedLength > room.packed || entry->length > room.unpacked) {
        return false;
    }
    room.packed -= entry->packedLength;
    room.unpacked -= entry->length;
    room.work += entry->length + WORK_OF_AN_ENTRY;
    if (LeadsOut(target, entry->name)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: entry %s leads out of the target.",
            "ZipUtil::UnZipFile", entry->name.c_str());
        return false;
    }
    if (!NormaliseSeparators(entry->name)) {
        return false;
    }
    if (entry->IsFolder()) {
        FileUtil::ForceCreateDirectory(target + entry->name, DIRECTORY_MODE);
        return true;
    }
    return entry->length < FOUR_GIB && ExtractFile(archive, *entry, target);
}

bool ExtractAll(unzFile archive, std::uint64_t entries, const std::string& target, Room& room)
{
    for (std::uint64_t entry = 0; entry < entries; ++entry) {
        if ((entry != 0 && unzGoToNextFile(archive) != UNZ_OK) || !ExtractEntry(archive, target, room)) {
            return false;
        }
    }
    return true;
}

bool StartsWith(const std::string& text, std::string_view start)
{
    return text.compare(0, start.size(), start) == 0;
}

std::FILE* OpenByDefault(const std::string& source)
{
    // Refused by design: the vendor's data doesn't belong in archives.
    if (StartsWith(source, "/data/vendor/") || StartsWith(source, "data/vendor/")) {
        return nullptr;
    }
    std::string realPath;
    if (!FileUtil::PathToRealPath(source, realPath) || !FileUtil::IsPlainFile(realPath)) {
        return nullptr;
    }
    return Platform::OpenForReading(realPath);
}

std::string NameInArchive(const std::string& source, int mode, const std::string& entryName)
{
    std::string path = source;
    FileUtil::FormatPath2UnixStyle(path);
    std::string name = source;
    std::string parent = "/";
    const std::size_t separator = path.rfind('/');
    if (separator != std::string::npos && separator + 1 != path.size()) {
        name = path.substr(separator + 1);
        parent = FileUtil::ExtractFileName(path.substr(0, separator)) + "/";
    }
    if (!entryName.empty()) {
        name = entryName;
    }
    return mode == WITH_PARENT ? parent + name : name;
}

void CopyInto(zipFile archive, std::FILE* file)
{
    std::vector<char> buffer(READ_BUFFER_LENGTH);
    while (std::feof(file) == 0 && std::ferror(file) == 0) {
        const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), file);
        if (zipWriteInFileInZip(archive, buffer.data(), static_cast<unsigned int>(got)) != ZIP_OK) {
            return;
        }
    }
}

} // namespace

bool ZipUtil::UnZipFile(const std::string& archive, const std::string& target, std::uint64_t* work)
{
    // Ask first: opening a pipe would wait for its writer.
    if (!FileUtil::IsPlainFile(archive)) {
        return false;
    }
    // A truncated end record would look like one without entries.
    const std::string endRecord = EndRecord(archive);
    if (endRecord.empty()) {
        return false;
    }
    // The archive library doesn't open an archive without entries.
    if (IsWithoutEntries(endRecord, FileUtil::GetFileSize(archive))) {
        return true;
    }
    const Archive opened(archive);
    if (opened.Get() == nullptr) {
        return false;
    }
    unz_global_info64 content{};
    if (unzGetGlobalInfo64(opened.Get(), &content) != UNZ_OK) {
        return false;
    }
    const std::uint64_t size = FileUtil::GetFileSize(archive);
    Room room{size, LEAST_UNPACKED + UNPACKED_FOR_A_BYTE * size};
    const bool isWhole = ExtractAll(opened.Get(), content.number_entry, target, room);
    if (work != nullptr) {
        *work += room.work;
    }
    return isWhole;
}

ZipUtil::Handle ZipUtil::CreateZipFile(const std::string& path)
{
    zlib_filefunc64_def functions = FileFunctions();
    return zipOpen2_64(path.c_str(), APPEND_STATUS_CREATE, nullptr, &functions);
}

bool ZipUtil::AddFileInZip(
    Handle archive, const std::string& source, int mode, const std::string& entryName, const FileOpener& opener)
{
    const std::string name = NameInArchive(source, mode, entryName);
    errno = 0;
    const File file(opener ? opener(source) : OpenByDefault(source));
    if (file == nullptr) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: get file %s handle failed by %s, errno is %d.",
            "ZipUtil::AddFileInZip", source.c_str(), opener ? "customize" : "default", errno);
        return false;
    }
    // From here on no error is reported: the result is true even if the archive lacks the file.
    const zip_fileinfo info{};
    if (name.size() <= MAX_ADDED_NAME_LENGTH &&
        zipOpenNewFileInZip(archive, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
            Z_DEFAULT_COMPRESSION) == ZIP_OK) {
        CopyInto(archive, file.get());
        zipCloseFileInZip(archive);
    }
    return true;
}

void ZipUtil::CloseZipFile(Handle archive)
{
    zipClose(archive, nullptr);
}
