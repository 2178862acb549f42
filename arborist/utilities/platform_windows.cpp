#include "arborist/utilities/platform.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include "arborist/frame/stopping.h"
#include "arborist/utilities/native_path.h"
#include "arborist/utilities/posix_zone.h"

namespace {

// UTF-8 to UTF-16. What is no UTF-8 becomes the replacement character, so that no file has such a name.
std::wstring Wide(const std::string& text)
{
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
    return wide;
}

std::string Narrow(const wchar_t* text)
{
    const int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow.data(), length, nullptr, nullptr);
    narrow.resize(std::strlen(narrow.c_str()));
    return narrow;
}

/// Closes a handle at its end.
class Handle {
public:
    explicit Handle(HANDLE handle) : mHandle(handle) {}
    ~Handle()
    {
        if (IsOpen()) {
            CloseHandle(mHandle);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    HANDLE Get() const { return mHandle; }
    bool IsOpen() const { return mHandle != INVALID_HANDLE_VALUE; }

private:
    HANDLE mHandle;
};

bool IsPlain(const std::wstring& path)
{
    struct _stat64 status;
    return _wstat64(path.c_str(), &status) == 0 && (status.st_mode & _S_IFMT) == _S_IFREG;
}

// Ends the copy if the detection must end; the system then removes the target.
DWORD CALLBACK WhileCopying(LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, DWORD, DWORD, HANDLE, HANDLE, LPVOID)
{
    return StopPoint::IsDue() ? PROGRESS_CANCEL : PROGRESS_CONTINUE;
}

// The C library reads TZ too, but applies one country's daylight saving rule to every zone. Nothing for a zone that is not
// written out: the time is then that of the system.
std::optional<PosixZone> ZoneOfEnvironment()
{
    const char* const text = std::getenv("TZ");
    return text == nullptr ? std::nullopt : PosixZone::Of(text);
}

std::int64_t StandardOffsetOfSystem()
{
    TIME_ZONE_INFORMATION zone{};
    GetTimeZoneInformation(&zone);
    return -60 * static_cast<std::int64_t>(zone.Bias + zone.StandardBias);
}

// Seconds to add to UTC at a moment; those of standard time for one that the system has no date for.
std::int64_t OffsetOfSystem(std::int64_t seconds)
{
    std::tm fields{};
    if (!Calendar::FieldsOf(seconds, fields)) {
        return StandardOffsetOfSystem();
    }
    const auto word = [](int number) { return static_cast<WORD>(number); };
    const SYSTEMTIME utc = {word(fields.tm_year + 1900), word(fields.tm_mon + 1), 0, word(fields.tm_mday),
        word(fields.tm_hour), word(fields.tm_min), word(fields.tm_sec), 0};
    SYSTEMTIME local{};
    if (SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) == 0) {
        return StandardOffsetOfSystem();
    }
    fields = {};
    fields.tm_year = local.wYear - 1900;
    fields.tm_mon = local.wMonth - 1;
    fields.tm_mday = local.wDay;
    fields.tm_hour = local.wHour;
    fields.tm_min = local.wMinute;
    fields.tm_sec = local.wSecond;
    return Calendar::SecondsOf(fields) - seconds;
}

std::int64_t Joined(DWORD high, DWORD low)
{
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(high) << 32) | low);
}

bool IsSelfOrParent(const wchar_t* name)
{
    return std::wcscmp(name, L".") == 0 || std::wcscmp(name, L"..") == 0;
}

} // namespace

std::filesystem::path NativePath(const std::string& text)
{
    return Wide(text);
}

void Platform::NameThread(const std::string& name)
{
    // The compiler's libraries don't have it, and Windows has it since version 10.
    using Function = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription");
    if (found != nullptr) {
        reinterpret_cast<Function>(reinterpret_cast<void*>(found))(GetCurrentThread(), Wide(name).c_str());
    }
}

float Platform::StrToFloat(const char* text, char** end)
{
    return std::strtof(text, end);
}

double Platform::StrToDouble(const char* text, char** end)
{
    return std::strtod(text, end);
}

bool Platform::LocalTime(std::int64_t seconds, std::tm& local)
{
    constexpr std::int64_t FAR_AWAY = 1'000'000'000'000; // 30,000 years, of which the calendar has a third
    if (seconds < -FAR_AWAY || seconds > FAR_AWAY) {
        return false;
    }
    const std::optional<PosixZone> zone = ZoneOfEnvironment();
    return Calendar::FieldsOf(seconds + (zone ? zone->OffsetAt(seconds) : OffsetOfSystem(seconds)), local);
}

std::int64_t Platform::MomentOf(std::tm local)
{
    const std::optional<PosixZone> zone = ZoneOfEnvironment();
    return Calendar::SecondsOf(local) - (zone ? zone->StandardOffset() : StandardOffsetOfSystem());
}

bool Platform::Remove(const std::string& path)
{
    const std::wstring wide = Wide(path);
    const DWORD attributes = GetFileAttributesW(wide.c_str());
    const bool isThere = attributes != INVALID_FILE_ATTRIBUTES;
    const bool isFolder = isThere && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (isThere && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        // The attribute would keep it from being removed, as the permissions of a file don't elsewhere.
        SetFileAttributesW(wide.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    }
    return (isFolder ? _wrmdir(wide.c_str()) : _wremove(wide.c_str())) == 0;
}

std::FILE* Platform::OpenFile(const std::string& path, const char* mode)
{
    return _wfopen(Wide(path).c_str(), Wide(std::string(mode) + "N").c_str()); // "N": not inherited
}

std::FILE* Platform::OpenForReading(const std::string& path)
{
    return OpenFile(path, "rb");
}

bool Platform::CopyContent(const std::string& source, const std::string& target)
{
    const std::wstring from = Wide(source);
    const bool isCopied = IsPlain(from)
        && CopyFileExW(from.c_str(), Wide(target).c_str(), WhileCopying, nullptr, nullptr, 0) != 0;
    StopPoint::Pass();
    return isCopied;
}

struct Platform::Folder::Listing {
    Listing(std::wstring folder, HANDLE opened, const WIN32_FIND_DATAW& found)
        : path(std::move(folder)), handle(opened), entry(found)
    {
    }
    ~Listing() { FindClose(handle); }
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;

    // Null, with errno, if the folder can't be listed.
    static std::unique_ptr<Listing> Of(const std::wstring& path)
    {
        WIN32_FIND_DATAW first;
        const HANDLE handle = FindFirstFileW((path + L"\\*").c_str(), &first);
        if (handle == INVALID_HANDLE_VALUE) {
            errno = GetLastError() == ERROR_ACCESS_DENIED ? EACCES : ENOENT;
            return nullptr;
        }
        return std::make_unique<Listing>(path, handle, first);
    }

    std::wstring path;
    HANDLE handle;
    WIN32_FIND_DATAW entry;
    bool isFirst = true; // the system gives the first entry while it opens the folder
    std::string name;
};

Platform::Folder::Folder(const std::string& path) : Folder(path.empty() ? nullptr : Listing::Of(Wide(path))) {}

Platform::Folder::Folder(std::unique_ptr<Listing> listing) : mListing(std::move(listing)) {}

Platform::Folder::Folder(Folder&& other) noexcept = default;

Platform::Folder::~Folder() = default;

Platform::Folder Platform::Folder::OpenEntry() const
{
    return Folder(Listing::Of(mListing->path + L"\\" + mListing->entry.cFileName));
}

bool Platform::Folder::Next()
{
    Listing& listing = *mListing;
    do {
        if (!std::exchange(listing.isFirst, false) && FindNextFileW(listing.handle, &listing.entry) == 0) {
            errno = GetLastError() == ERROR_NO_MORE_FILES ? 0 : EIO;
            return false;
        }
    } while (IsSelfOrParent(listing.entry.cFileName));
    listing.name = Narrow(listing.entry.cFileName);
    return true;
}

const char* Platform::Folder::Name() const
{
    return mListing->name.c_str();
}

bool Platform::Folder::IsFolder() const
{
    constexpr DWORD LINK = FILE_ATTRIBUTE_REPARSE_POINT; // also a junction
    return (mListing->entry.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | LINK)) == FILE_ATTRIBUTE_DIRECTORY;
}

Platform::FileIdentity::FileIdentity(const std::string& path)
{
    const Handle file(CreateFileW(Wide(path).c_str(), FILE_READ_ATTRIBUTES,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION state;
    FILE_BASIC_INFO times;
    if (!file.IsOpen() || GetFileInformationByHandle(file.Get(), &state) == 0 ||
        GetFileInformationByHandleEx(file.Get(), FileBasicInfo, &times, sizeof(times)) == 0) {
        return;
    }
    mIsSet = true;
    mMarks = {state.dwVolumeSerialNumber, Joined(state.nFileIndexHigh, state.nFileIndexLow),
        Joined(state.nFileSizeHigh, state.nFileSizeLow), times.LastWriteTime.QuadPart, times.ChangeTime.QuadPart,
        times.CreationTime.QuadPart, 0};
}

Platform::InputFile::InputFile(const std::string& path, Content content)
{
    const std::wstring wide = Wide(path);
    struct _stat64 status;
    if (!IsPlain(wide) || _wstat64(wide.c_str(), &status) != 0) {
        return;
    }
    const int lineEnds = content == Content::TEXT ? _O_TEXT : _O_BINARY;
    mDescriptor = _wopen(wide.c_str(), _O_RDONLY | lineEnds | _O_NOINHERIT);
    mSize = static_cast<std::uint64_t>(status.st_size);
}

Platform::InputFile::~InputFile()
{
    if (IsOpen()) {
        _close(mDescriptor);
    }
}

std::ptrdiff_t Platform::InputFile::Read(char* buffer, std::size_t length)
{
    return _read(mDescriptor, buffer, static_cast<unsigned int>(length));
}
