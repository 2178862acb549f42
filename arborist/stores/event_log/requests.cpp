#include "arborist/stores/event_log/requests.h"

#include <algorithm>

Requests::Number Requests::NumberOf(const std::shared_ptr<const RowQuestion>& question)
{
    const auto [found, isNew] = mNumbers.try_emplace(question->GetName(), static_cast<Number>(mQuestions.size()));
    if (isNew) {
        mQuestions.push_back(question);
    }
    return found->second;
}

void Requests::Add(const Request& request)
{
    if (mPlaces.emplace(request, mRequests.size()).second) {
        mRequests.push_back(request);
    }
}

std::vector<Requests::Request> Requests::AllFrom(const Request& first) const
{
    std::vector<Request> all(mRequests);
    std::rotate(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(mPlaces.at(first)), all.end());
    return all;
}
