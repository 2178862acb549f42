#ifndef ARBORIST_STORES_EVENT_LOG_REQUESTS_H
#define ARBORIST_STORES_EVENT_LOG_REQUESTS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "arborist/stores/event_log/row_question.h"

/// Which questions are put to the rows of which ids, as far as that is known: rules foresee what they will ask, so that
/// one reading of the log can answer all of it. Questions that answer alike share a number.
class Requests {
public:
    using Number = std::uint32_t;

    /// A question to the rows of the ids from `firstId` to `lastId`.
    struct Request {
        std::int32_t firstId;
        std::int32_t lastId;
        Number question;

        auto operator<=>(const Request&) const = default;
    };

    Number NumberOf(const std::shared_ptr<const RowQuestion>& question);
    const RowQuestion& GetQuestion(Number number) const { return *mQuestions[number]; }

    /// A request that is there already is not added again.
    void Add(const Request& request);
    /// All of them, beginning with `first` and those that were added after it: what is asked first is asked again last.
    std::vector<Request> AllFrom(const Request& first) const;

private:
    std::map<std::string, Number> mNumbers; // by the names of the questions
    std::vector<std::shared_ptr<const RowQuestion>> mQuestions;
    std::map<Request, std::size_t> mPlaces; // of each among these
    std::vector<Request> mRequests;
};

#endif
