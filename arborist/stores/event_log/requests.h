#ifndef ARBORIST_STORES_EVENT_LOG_REQUESTS_H
#define ARBORIST_STORES_EVENT_LOG_REQUESTS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "arborist/stores/event_log/row_question.h"

/// The known requests: which questions will be asked about the rows of which ids. Rules announce their questions, so
/// that a single reading of the log can answer all of them. Questions with equal answers share a number.
class Requests {
public:
    using Number = std::uint32_t;

    /// A question about the rows of the ids from `firstId` to `lastId`.
    struct Request {
        std::int32_t firstId;
        std::int32_t lastId;
        Number question;

        auto operator<=>(const Request&) const = default;
    };

    Number NumberOf(const std::shared_ptr<const RowQuestion>& question);
    const RowQuestion& GetQuestion(Number number) const { return *mQuestions[number]; }

    /// Adds a request unless it was added before.
    void Add(const Request& request);
    /// All requests, in the order of adding.
    const std::vector<Request>& All() const { return mRequests; }
    /// All requests, starting with `first` and wrapping around at the end: rules ask in the order of adding, so the
    /// next ones come first.
    std::vector<Request> AllFrom(const Request& first) const;

private:
    std::map<std::string, Number> mNumbers; // by name of the question
    std::vector<std::shared_ptr<const RowQuestion>> mQuestions;
    std::map<Request, std::size_t> mPlaces; // index of each request
    std::vector<Request> mRequests;
};

#endif
