#ifndef ARBORIST_STORES_KEPT_CONNECTION_H
#define ARBORIST_STORES_KEPT_CONNECTION_H

#include <memory>
#include <string>

#include "arborist/utilities/platform.h"

/// One connection to one file, kept open for as long as the file is the same, unchanged: to open a database costs
/// several times what a question to it costs. Used by one thread.
template <typename Connection>
class KeptConnection {
public:
    /// The connection of the last Make, if that was for `path` and the file there is as it was then; null otherwise.
    Connection* Find(const std::string& path) const
    {
        const Platform::FileIdentity identity(path);
        return mConnection != nullptr && identity.IsSet() && path == mPath && identity == mIdentity ? mConnection.get()
                                                                                                    : nullptr;
    }

    /// Lets the last connection go and makes another one, which is about to be opened on `path`.
    Connection& Make(const std::string& path)
    {
        mConnection.reset(); // first, since closing may change the file
        mPath = path;
        mIdentity = Platform::FileIdentity(path);
        mConnection = std::make_unique<Connection>();
        return *mConnection;
    }

    /// The connection of the last Make, as it is; before the first, one that is made for no file.
    Connection& Get() { return mConnection != nullptr ? *mConnection : Make(""); }
    /// The path of the last Make.
    const std::string& GetPath() const { return mPath; }

private:
    std::unique_ptr<Connection> mConnection;
    std::string mPath;
    /// The file as it was just before it was opened.
    Platform::FileIdentity mIdentity;
};

#endif
