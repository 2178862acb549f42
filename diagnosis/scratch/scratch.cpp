#include "diagnosis/scratch/scratch.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <unistd.h>

#include "diagnosis/process/signals.h"
#include "diagnosis/process/tree_removal.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

std::string TemporaryRoot()
{
    const char* given = std::getenv("TMPDIR");
    std::error_code error;
    const fs::path root = fs::canonical(given == nullptr || *given == '\0' ? "/tmp" : given, error);
    return error ? "" : root.string();
}

bool HoldsZip(const std::string& name)
{
    return strcasestr(name.c_str(), "zip") != nullptr;
}

} // namespace

std::optional<Failure> Scratch::Make()
{
    if (IsMade()) {
        return std::nullopt;
    }
    const std::string root = TemporaryRoot();
    const auto reason = MakeIn(root);
    return reason ? std::optional(Failure{"no_scratch", "no folder for temporary files can be made in "
        + (root.empty() ? "TMPDIR" : root) + ": " + *reason, ExitStatus::INTERNAL}) : std::nullopt;
}

std::optional<std::string> Scratch::MakeIn(const std::string& root)
{
    for (;;) {
        std::string path = root + "/arborist-XXXXXX";
        const SignalsHeldBack heldBack;
        if (root.empty() || mkdtemp(path.data()) == nullptr) {
            return std::strerror(root.empty() ? ENOENT : errno);
        }
        // The library treats every file as an archive whose path contains these letters anywhere.
        if (!HoldsZip(path.substr(root.size()))) {
            mInterruption.Remove(path);
            mPath = path;
            return std::nullopt;
        }
        rmdir(path.c_str());
    }
}

Scratch::~Scratch()
{
    if (IsMade()) {
        RemoveTree(mPath.c_str());
    }
}

} // namespace diagnosis
