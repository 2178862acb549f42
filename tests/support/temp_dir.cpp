#include "tests/support/temp_dir.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "arborist/utilities/native_path.h"

namespace fs = std::filesystem;

TempDir::TempDir() : mBefore(fs::current_path())
{
    std::string pattern = (fs::temp_directory_path() / "arborist-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder at " + pattern);
    }
    mPath = fs::canonical(pattern).generic_string();
    fs::current_path(mPath);
}

TempDir::~TempDir()
{
    std::error_code ignored;
    fs::current_path(mBefore, ignored);
    // A test may have removed permissions; restore them so that everything can be removed.
    for (auto entry = fs::recursive_directory_iterator(mPath, fs::directory_options::skip_permission_denied, ignored);
         entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
            fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
        }
    }
    fs::remove_all(mPath, ignored);
}

std::string TempDir::Write(const std::string& name, const std::string& content) const
{
    const fs::path path = fs::path(NativePath(mPath)) / NativePath(name);
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << content;
    if (!file.flush()) {
        throw std::runtime_error("can't write " + path.string());
    }
    return path.generic_string();
}

std::string TempDir::Read(const std::string& name) const
{
    std::ifstream file(fs::path(NativePath(mPath)) / NativePath(name), std::ios::binary);
    if (!file) {
        throw std::runtime_error("can't read " + name);
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string TempDir::MakeDir(const std::string& name) const
{
    const fs::path path = fs::path(NativePath(mPath)) / NativePath(name);
    fs::create_directories(path);
    return path.generic_string();
}

bool TempDir::Has(const std::string& name) const
{
    return fs::exists(fs::path(NativePath(mPath)) / NativePath(name));
}
