#ifndef ARBORIST_FRAME_TROUBLE_WATCH_H
#define ARBORIST_FRAME_TROUBLE_WATCH_H

#include <functional>
#include <optional>
#include <string_view>

#include "arborist/frame/trouble.h"

/// While it exists, passes the trouble that lower layers of the engine report on this thread to its listener. Of nested
/// watches only the innermost receives it. The layers report trouble where they log it, whether or not there is a
/// listener.
class TroubleWatch {
public:
    using Listener = std::function<void(Evidence::Trouble trouble)>;

    /// Where the trouble is; see Evidence::Trouble.
    struct Place {
        std::string_view subject = {};
        std::string_view file = {};
        int line = 0;
    };

    explicit TroubleWatch(Listener listener);
    ~TroubleWatch();
    TroubleWatch(const TroubleWatch&) = delete;
    TroubleWatch& operator=(const TroubleWatch&) = delete;

    /// Reports to the innermost watch of this thread, if there is one.
    static void Tell(Evidence::Trouble::Kind kind, std::string_view words, const Place& place);

private:
    Listener mListener;
    TroubleWatch* mOuter;
};

/// While it exists, sets the kind of trouble for statements that fail on this thread, as the layer that runs
/// statements doesn't know their purpose. Nothing for statements whose failure is reported elsewhere.
class StatementTrouble {
public:
    explicit StatementTrouble(std::optional<Evidence::Trouble::Kind> kind);
    ~StatementTrouble();
    StatementTrouble(const StatementTrouble&) = delete;
    StatementTrouble& operator=(const StatementTrouble&) = delete;

    /// `file` is the database.
    static void Tell(std::string_view words, std::string_view file);

private:
    std::optional<Evidence::Trouble::Kind> mOuter;
};

#endif
