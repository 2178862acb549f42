#include "arborist/utilities/device_paths.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"
#include "arborist/utilities/native_path.h"

namespace {

#ifdef _WIN32
constexpr char DEFAULT_ROOT[] = "C:\\ProgramData";
constexpr char SEPARATOR = '\\';
#else
constexpr char DEFAULT_ROOT[] = "/var/lib/arborist";
constexpr char SEPARATOR = '/';
#endif

std::string Setting(const char* key)
{
    return FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(key, "");
}

bool IsBelow(const std::string& path, const std::string& folder)
{
    return path.compare(0, folder.size(), folder) == 0 && path.size() > folder.size() && path[folder.size()] == '/';
}

// `path` begins with "/". The fixed root has the system's own separators behind it, a root that the host has set has "/".
std::string BelowRoot(std::string path)
{
    const std::string root = Setting(Settings::PROGRAM_DATA_DIR);
    if (root.empty()) {
        std::replace(path.begin(), path.end(), '/', SEPARATOR);
    }
    return (root.empty() ? DEFAULT_ROOT : root) + path;
}

} // namespace

std::string DevicePaths::EventLog()
{
    return BelowRoot("/Comms/Lumbra/workDir/0/log.db");
}

std::string DevicePaths::DerivedDatabase()
{
    return BelowRoot("/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db");
}

std::string DevicePaths::RepairDatabase()
{
    return BelowRoot("/Comms/Lumbra/zxdetectrepair/databases/repair_record.db");
}

std::string DevicePaths::OnDevice(const std::string& path)
{
    return RootedPath::OnDevice(Setting(Settings::DEVICE_ROOT_DIR), path);
}

RootedPath::Target DevicePaths::Find(const std::string& path)
{
    return RootedPath::Target(Setting(Settings::DEVICE_ROOT_DIR), path);
}

std::string DevicePaths::RealRootOfDevice()
{
    const std::string root = Setting(Settings::DEVICE_ROOT_DIR);
    std::error_code error;
    const std::string realRoot = root.empty() ? "" : std::filesystem::canonical(NativePath(root), error).generic_string();
    return realRoot == "/" ? "" : realRoot;
}

std::string DevicePaths::PathOnDevice(const std::string& realPath, const std::string& realRoot)
{
    return IsBelow(realPath, realRoot) ? realPath.substr(realRoot.size()) : realPath;
}

std::string DevicePaths::RealPath(const std::string& path, const std::string& realRoot)
{
    std::error_code error;
    std::string resolved = path;
    if (!Setting(Settings::DEVICE_ROOT_DIR).empty()) {
        const bool isBelowRoot = !realRoot.empty() && IsBelow(path, realRoot);
        const std::string root = isBelowRoot ? realRoot : std::filesystem::current_path(error).generic_string();
        resolved = IsBelow(path, root) ? RootedPath::Resolve(root, path.substr(root.size())) : "";
    }
    return std::filesystem::canonical(NativePath(resolved), error).generic_string();
}

RootedPath::Target DevicePaths::FindReal(const std::string& realPath, const std::string& realRoot)
{
    std::error_code error;
    const std::string root = Setting(Settings::DEVICE_ROOT_DIR);
    for (const std::string& folder : {realRoot, std::filesystem::current_path(error).generic_string()}) {
        if (!root.empty() && !folder.empty() && (realPath == folder || IsBelow(realPath, folder))) {
            return RootedPath::Target(folder, "/" + realPath.substr(folder.size()));
        }
    }
    return RootedPath::Target(root, realPath);
}
