#ifndef ARBORIST_BINDINGS_C_REQUEST_H
#define ARBORIST_BINDINGS_C_REQUEST_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <json/value.h>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/problem.h"

namespace diagnosis::bindings {

/// One request of a host: a JSON object, whose keys are read one by one. The first thing that is wrong, also a key that
/// nobody has read, becomes the failure; values are as empty as if the key were missing then.
class Request {
public:
    explicit Request(std::string_view text);

    /// A text, or the empty one. Texts hold no NUL.
    std::string Text(const std::string& key);
    /// A text that must be there and not empty.
    std::string Needed(const std::string& key);
    bool Flag(const std::string& key);
    /// A whole number from `least` to `most`; `otherwise` if it isn't there.
    std::size_t Count(const std::string& key, std::size_t least, std::size_t most, std::size_t otherwise);

    BundlePath NeededBundle();
    /// "now", "asOf", "tz" and "live".
    BundleOverrides Overrides();
    /// "rules": a folder, from the working directory of the host.
    std::string Rules();
    /// "timeLimit": seconds, 0 for no limit.
    double TimeLimit();

    /// The failure, if any. Call it when all keys are read.
    std::optional<Failure> End();

private:
    /// The value of a key, null if it isn't there.
    const Json::Value& Take(const std::string& key);
    std::string Moment(const std::string& key);
    void Fail(const std::string& message);

    Json::Value mObject;
    std::vector<std::string> mKnown;
    std::optional<Failure> mFailure;
};

} // namespace diagnosis::bindings

#endif
