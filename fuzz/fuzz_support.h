#ifndef ARBORIST_FUZZ_FUZZ_SUPPORT_H
#define ARBORIST_FUZZ_FUZZ_SUPPORT_H

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "arborist/frame/log.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Formats every line, to detect bad arguments, and drops it.
class QuietLogger : public FT::ILogger {
public:
    void Print(unsigned int, const std::string& format, va_list args) override
    {
        char line[256];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        std::vsnprintf(line, sizeof(line), format.c_str(), args);
#pragma GCC diagnostic pop
    }
};

/// A folder that exists as long as the object; keep one for the whole run. Also replaces the logger.
class FuzzDir {
public:
    FuzzDir()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "arborist-fuzz-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        mPath = pattern;
        FT::Log::GetInstance().SetUserLogger(std::make_unique<QuietLogger>());
    }
    ~FuzzDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    FuzzDir(const FuzzDir&) = delete;
    FuzzDir& operator=(const FuzzDir&) = delete;

    std::string Path(const std::string& name) const { return mPath + "/" + name; }

    /// Writes a file of the folder anew and returns its path.
    std::string Write(const std::string& name, const std::uint8_t* data, std::size_t size) const
    {
        return Write(name, std::string(reinterpret_cast<const char*>(data), size));
    }
    std::string Write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(Path(name), std::ios::binary) << bytes;
        return Path(name);
    }

private:
    std::string mPath;
};

#endif
