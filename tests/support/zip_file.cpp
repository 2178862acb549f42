#include "tests/support/zip_file.h"

#include <array>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include <minizip/unzip.h>
#include <minizip/zip.h>

namespace {

void Require(bool condition, const std::string& path)
{
    if (!condition) {
        throw std::runtime_error("archive " + path);
    }
}

} // namespace

std::string WriteZip(const std::string& path, const ZipEntries& entries)
{
    const zipFile archive = zipOpen(path.c_str(), APPEND_STATUS_CREATE);
    Require(archive != nullptr, path);
    for (const auto& [name, content] : entries) {
        const zip_fileinfo info{};
        Require(zipOpenNewFileInZip(archive, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                    Z_DEFAULT_COMPRESSION) == ZIP_OK, path);
        const auto length = static_cast<unsigned int>(content.size());
        Require(zipWriteInFileInZip(archive, content.data(), length) == ZIP_OK, path);
        Require(zipCloseFileInZip(archive) == ZIP_OK, path);
    }
    Require(zipClose(archive, nullptr) == ZIP_OK, path);
    return path;
}

std::string WriteDamagedZip(const std::string& path, const ZipEntries& entries)
{
    std::ifstream whole(WriteZip(path, entries), std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(whole)), std::istreambuf_iterator<char>());
    // The checksum is in the directory at the end and in front of the entry.
    for (const std::size_t place : {bytes.rfind("PK\1\2") + 16, bytes.rfind("PK\3\4") + 14}) {
        bytes.at(place) = static_cast<char>(~bytes.at(place));
    }
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

ZipEntries ReadZip(const std::string& path)
{
    const unzFile archive = unzOpen(path.c_str());
    Require(archive != nullptr, path);
    const std::unique_ptr<void, int (*)(unzFile)> closer(archive, unzClose);
    ZipEntries entries;
    for (int found = unzGoToFirstFile(archive); found == UNZ_OK; found = unzGoToNextFile(archive)) {
        std::array<char, 1024> name{};
        unz_file_info info{};
        Require(unzGetCurrentFileInfo(archive, &info, name.data(), name.size(), nullptr, 0, nullptr, 0) == UNZ_OK,
            path);
        std::string content(info.uncompressed_size, '\0');
        Require(unzOpenCurrentFile(archive) == UNZ_OK, path);
        Require(unzReadCurrentFile(archive, content.data(), static_cast<unsigned int>(content.size())) ==
            static_cast<int>(content.size()), path);
        Require(unzCloseCurrentFile(archive) == UNZ_OK, path);
        entries.emplace_back(name.data(), content);
    }
    return entries;
}
