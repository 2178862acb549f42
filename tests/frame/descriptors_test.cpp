// Every file that a detection opens is closed in programs that the host starts meanwhile, from any of its threads. This
// program stands in for the calls that open files, for the libraries below the library, too.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>

#include <gmock/gmock.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/rule_set_summary.h"
#include "tests/frame/all_families.h"

namespace {

bool isWatching = false;
int opened = 0;
std::vector<std::string>& Inherited()
{
    static std::vector<std::string> files;
    return files;
}

void Note(const char* path, bool isClosedInChildren)
{
    if (isWatching) {
        ++opened;
        if (!isClosedInChildren) {
            Inherited().emplace_back(path);
        }
    }
}

template <typename Function>
Function* Next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

mode_t ModeOf(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

#define STAND_IN_FOR_OPEN(name)                                                     \
    extern "C" int name(const char* path, int flags, ...)                           \
    {                                                                               \
        va_list arguments;                                                          \
        va_start(arguments, flags);                                                 \
        const mode_t mode = ModeOf(flags, arguments);                               \
        va_end(arguments);                                                          \
        Note(path, (flags & O_CLOEXEC) != 0);                                       \
        return Next<int(const char*, int, ...)>(#name)(path, flags, mode);          \
    }
#define STAND_IN_FOR_OPENAT(name)                                                   \
    extern "C" int name(int folder, const char* path, int flags, ...)               \
    {                                                                               \
        va_list arguments;                                                          \
        va_start(arguments, flags);                                                 \
        const mode_t mode = ModeOf(flags, arguments);                               \
        va_end(arguments);                                                          \
        Note(path, (flags & O_CLOEXEC) != 0);                                       \
        return Next<int(int, const char*, int, ...)>(#name)(folder, path, flags, mode); \
    }
#define STAND_IN_FOR_FOPEN(name)                                                    \
    extern "C" FILE* name(const char* path, const char* mode)                       \
    {                                                                               \
        Note(path, std::strchr(mode, 'e') != nullptr);                              \
        return Next<FILE*(const char*, const char*)>(#name)(path, mode);            \
    }

STAND_IN_FOR_OPEN(open)
STAND_IN_FOR_OPEN(open64)
STAND_IN_FOR_OPENAT(openat)
STAND_IN_FOR_OPENAT(openat64)
STAND_IN_FOR_FOPEN(fopen)
STAND_IN_FOR_FOPEN(fopen64)

namespace {

using DescriptorsTest = AllFamilies;

TEST_F(DescriptorsTest, NoFileOfTheLibraryIsInherited)
{
    Arborist engine(mInfo);
    isWatching = true;
    SummariseRuleSet(mDir.Path(), "", "All");
    engine.StartDetection();
    UpdateRepairDb("R1");
    engine.StartDetection();
    isWatching = false;
    EXPECT_GT(opened, 20); // or the libraries call something else
    EXPECT_THAT(Inherited(), testing::IsEmpty());
}

TEST_F(DescriptorsTest, AnInheritedFileIsSeen)
{
    const std::string path = mDir.Path("FaultTrees.xml");
    isWatching = true;
    std::fclose(std::fopen(path.c_str(), "r"));
    isWatching = false;
    EXPECT_THAT(Inherited(), testing::ElementsAre(path));
    Inherited().clear();
}

} // namespace
