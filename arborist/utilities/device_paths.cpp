#include "arborist/utilities/device_paths.h"

#include <filesystem>
#include <system_error>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"
#include "arborist/utilities/rooted_path.h"

namespace {

#ifdef _WIN32
constexpr char DEFAULT_ROOT[] = "C:\\ProgramData";
#else
constexpr char DEFAULT_ROOT[] = "/var/lib/arborist";
#endif

std::string Setting(const char* key)
{
    return FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(key, "");
}

std::string BelowRoot(const char* path)
{
    const std::string root = Setting(Settings::PROGRAM_DATA_DIR);
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
    if (path.empty() || path.front() != '/') {
        return path;
    }
    const std::string root = Setting(Settings::DEVICE_ROOT_DIR);
    if (root.empty()) {
        return path;
    }
    return RootedPath::Resolve(root, path);
}

std::string DevicePaths::RealRootOfDevice()
{
    const std::string root = Setting(Settings::DEVICE_ROOT_DIR);
    std::error_code error;
    const std::string realRoot = root.empty() ? "" : std::filesystem::canonical(root, error).string();
    return realRoot == "/" ? "" : realRoot;
}

std::string DevicePaths::PathOnDevice(const std::string& realPath, const std::string& realRoot)
{
    const bool isBelow = realPath.compare(0, realRoot.size(), realRoot) == 0 && realPath.size() > realRoot.size()
        && realPath[realRoot.size()] == '/';
    return isBelow ? realPath.substr(realRoot.size()) : realPath;
}

std::string DevicePaths::RealPath(const std::string& path, const std::string& realRoot)
{
    std::error_code error;
    const bool isOfDevice = !realRoot.empty() && path.compare(0, realRoot.size() + 1, realRoot + "/") == 0;
    const std::string resolved = isOfDevice ? RootedPath::Resolve(realRoot, path.substr(realRoot.size())) : path;
    return std::filesystem::canonical(resolved, error).string();
}
