#ifndef ARBORIST_STORES_KEPT_CONNECTION_H
#define ARBORIST_STORES_KEPT_CONNECTION_H

#include <memory>
#include <string>

#include "arborist/utilities/platform.h"

/// Keeps one connection to one file open as long as the file doesn't change: opening a database takes several times as
/// long as querying it. Not thread-safe.
template <typename Connection>
class KeptConnection {
public:
    /// The connection of the last Make if that was for `path` and the file has not changed since; null otherwise.
    Connection* Find(const std::string& path) const
    {
        const Platform::FileIdentity identity(path);
        return mConnection != nullptr && identity.IsSet() && path == mPath && identity == mIdentity ? mConnection.get()
                                                                                                    : nullptr;
    }

    /// Destroys the last connection and creates a new one; the caller opens it on `path`.
    Connection& Make(const std::string& path)
    {
        mConnection.reset(); // first, since closing may change the file
        mPath = path;
        mIdentity = Platform::FileIdentity(path);
        mConnection = std::make_unique<Connection>();
        return *mConnection;
    }

    /// The connection of the last Make, changed file or not; before the first Make, a new one for no file.
    Connection& Get() { return mConnection != nullptr ? *mConnection : Make(""); }
    /// Destroys the connection.
    void Close() { mConnection.reset(); }
    /// The path of the last Make.
    const std::string& GetPath() const { return mPath; }

private:
    std::unique_ptr<Connection> mConnection;
    std::string mPath;
    /// Identity of the file just before it was opened.
    Platform::FileIdentity mIdentity;
};

#endif
