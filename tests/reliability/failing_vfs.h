#ifndef ARBORIST_TESTS_RELIABILITY_FAILING_VFS_H
#define ARBORIST_TESTS_RELIABILITY_FAILING_VFS_H

/// SQLite's calls of the operating system, of which those of one kind can fail. While one exists, it is the default of
/// the process; one at a time.
class FailingVfs {
public:
    enum class Call { OPEN, READ, WRITE, SYNC, LOCK, REMOVE, TRUNCATE };

    FailingVfs();
    ~FailingVfs();
    FailingVfs(const FailingVfs&) = delete;
    FailingVfs& operator=(const FailingVfs&) = delete;

    /// From now on CallCounter counts the calls of this kind, and those that it picks fail with SQLite's `code`.
    static void Watch(Call call, int code);
};

#endif
