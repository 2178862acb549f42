#ifndef ARBORIST_MUTANT_H
#define ARBORIST_MUTANT_H

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

/// The switch of the mutants that generate.py compiles in: the environment variable ARBORIST_MUTANT has the number of the
/// one that is on.
namespace mutant {

/// Numbers are below this.
constexpr int END = 1 << 20;

/// A byte for each mutant, set where the program comes past it: the file that ARBORIST_MUTANTS_REACHED names, mapped into
/// memory so that processes which are killed have written, too.
inline char* Reached()
{
    static char* const bytes = [] {
        static char unread[END];
        const char* path = std::getenv("ARBORIST_MUTANTS_REACHED");
        const int file = path != nullptr ? open(path, O_RDWR | O_CLOEXEC) : -1;
        if (file < 0) {
            return unread;
        }
        void* mapped = mmap(nullptr, END, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        close(file);
        return mapped == MAP_FAILED ? unread : static_cast<char*>(mapped);
    }();
    return bytes;
}

inline bool Is(int number)
{
    static const int active = [] {
        const char* text = std::getenv("ARBORIST_MUTANT");
        return text != nullptr ? std::atoi(text) : -1;
    }();
    Reached()[number] = 1;
    return number == active;
}

} // namespace mutant

#endif
