#ifndef ARBORIST_TESTS_RELIABILITY_FAILING_FILES_H
#define ARBORIST_TESTS_RELIABILITY_FAILING_FILES_H

#include <cstdint>

#include "tests/reliability/call_counter.h"

/// Stands in for calls of the file system in the whole program, for the libraries below the library, too, so that
/// permissions fail for every user.
namespace FailingFiles {

enum class Call {
    OPEN,
    READ,
    /// Also where the system copies a file by itself.
    WRITE,
    RENAME,
    MAKE_FOLDER,
    REMOVE,
    CLOSE,
    /// The state of a file: whether there is one, its size and its permissions.
    STATUS,
    CHANGE_MODE,
    SEEK,
    /// Makes the list of a folder that is open.
    LIST,
    /// Reads the next entry of such a list.
    NEXT_ENTRY,
    /// Finds a path below a folder (openat2).
    RESOLVE,
    /// Asks whether a file is there (access).
    LOOK,
    /// Copies a file within the system; where it fails, a program can still read and write.
    COPY,
    /// These don't fail at once: a stream is opened that can be neither read nor written, and a write takes half of its
    /// bytes.
    DEAD_STREAM,
    HALF_A_WRITE,
};

/// Calls of this kind fail with `error`, as CallCounter says.
void Watch(Call call, int error);

/// While it exists, the call of a kind with the number `first`, or all from it on, fail.
class Failure {
public:
    Failure(Call call, int error, std::uint64_t first = 1, CallCounter::Failing failing = CallCounter::Failing::ONE)
    {
        Watch(call, error);
        CallCounter::Start(first, failing);
    }
    ~Failure() { CallCounter::Stop(); }
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;
};

/// While it exists, the list of a folder doesn't tell which entries are folders.
class HiddenTypes {
public:
    HiddenTypes();
    ~HiddenTypes();
    HiddenTypes(const HiddenTypes&) = delete;
    HiddenTypes& operator=(const HiddenTypes&) = delete;
};

} // namespace FailingFiles

#endif
