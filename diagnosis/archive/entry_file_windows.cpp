#include "diagnosis/archive/entry_file.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

namespace diagnosis {

namespace {

// What precedes the first dot counts: "nul.txt" is the device, too.
bool IsDevice(std::string_view element)
{
    std::string stem(element.substr(0, element.find_first_of(". ")));
    std::transform(stem.begin(), stem.end(), stem.begin(),
        [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    constexpr std::string_view DEVICES[] = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    const bool isPort = stem.size() == 4 && (stem.rfind("COM", 0) == 0 || stem.rfind("LPT", 0) == 0)
        && std::isdigit(static_cast<unsigned char>(stem[3])) != 0;
    return isPort || std::find(std::begin(DEVICES), std::end(DEVICES), stem) != std::end(DEVICES);
}

} // namespace

bool IsNameOfSystem(const std::string& name)
{
    for (std::size_t start = 0; start <= name.size();) {
        const std::size_t end = std::min(name.find_first_of("/\\", start), name.size());
        if (IsDevice(std::string_view(name).substr(start, end - start))) {
            return false;
        }
        start = end + 1;
    }
    return name.find(':') == std::string::npos;
}

EntryFile::EntryFile(const std::filesystem::path& path)
    : mDescriptor(_wopen(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE))
{
}

EntryFile::~EntryFile()
{
    if (IsOpen()) {
        _close(mDescriptor);
    }
}

bool EntryFile::Write(const char* bytes, std::size_t length)
{
    while (length > 0) {
        constexpr std::size_t MOST_AT_ONCE = std::size_t{1} << 20;
        const int written = _write(mDescriptor, bytes, static_cast<unsigned>(std::min(length, MOST_AT_ONCE)));
        if (written <= 0) {
            return false;
        }
        bytes += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

} // namespace diagnosis
