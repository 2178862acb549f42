#include "arborist/frame/trouble_watch.h"

#include <string>
#include <utility>

namespace {

using Kind = Evidence::Trouble::Kind;

thread_local TroubleWatch* innermost = nullptr;
thread_local std::optional<Kind> statementKind = Kind::STATEMENT_FAILED;

} // namespace

TroubleWatch::TroubleWatch(Listener listener)
    : mListener(std::move(listener)), mOuter(std::exchange(innermost, this))
{
}

TroubleWatch::~TroubleWatch()
{
    innermost = mOuter;
}

void TroubleWatch::Tell(Kind kind, std::string_view words, const Place& place)
{
    if (innermost != nullptr) {
        Evidence::Trouble trouble;
        trouble.kind = kind;
        trouble.words = words;
        trouble.subject = place.subject;
        trouble.file = place.file;
        trouble.line = place.line;
        innermost->mListener(std::move(trouble));
    }
}

StatementTrouble::StatementTrouble(std::optional<Kind> kind) : mOuter(std::exchange(statementKind, kind)) {}

StatementTrouble::~StatementTrouble()
{
    statementKind = mOuter;
}

void StatementTrouble::Tell(std::string_view words, std::string_view file)
{
    if (statementKind) {
        TroubleWatch::Tell(*statementKind, words, {{}, file});
    }
}
