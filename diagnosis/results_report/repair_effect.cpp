#include "diagnosis/results_report/repair_effect.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace diagnosis {

RepairEffects::RepairEffects(std::vector<RepairAim> aims, std::int64_t within) : mAims(std::move(aims)), mWithin(within)
{
    for (std::size_t aim = 0; aim < mAims.size(); ++aim) {
        mEffects.emplace_back().id = mAims[aim].id;
        for (const std::int64_t cause : mAims[aim].causes) {
            mAimsOf[cause].push_back(aim);
        }
    }
}

void RepairEffects::BeginDevice(std::vector<RepairDone> repairs)
{
    EndDevice();
    mRepairs = std::move(repairs);
    std::sort(mRepairs.begin(), mRepairs.end(),
        [](const RepairDone& one, const RepairDone& other) { return one.moment < other.moment; });
    for (const RepairDone& done : mRepairs) {
        mCourses[done.repair].isRepaired = true;
    }
}

void RepairEffects::Add(const DeviceVisit& visit)
{
    RepairBefore(visit.moment);
    std::set<std::size_t> found;
    for (const std::int64_t cause : visit.causes) {
        const auto aims = mAimsOf.find(cause);
        if (aims != mAimsOf.end()) {
            found.insert(aims->second.begin(), aims->second.end());
        }
    }
    for (const std::size_t aim : found) {
        See(mCourses[aim], Answer::THERE, visit.moment);
    }
    for (auto& [aim, course] : mCourses) {
        if (!course.IsDone() && !found.contains(aim)) {
            See(course, IsComplete(mAims[aim], visit) ? Answer::GONE : Answer::UNTOLD, visit.moment);
        }
    }
}

const std::vector<RepairEffect>& RepairEffects::Finish()
{
    EndDevice();
    return mEffects;
}

void RepairEffects::EndDevice()
{
    RepairBefore(std::numeric_limits<std::int64_t>::max());
    for (auto& [aim, course] : mCourses) {
        Close(course);
        Count(course, mEffects[aim]);
    }
    mCourses.clear();
    mRepairs.clear();
    mBehind = 0;
}

void RepairEffects::RepairBefore(std::int64_t moment)
{
    for (; mBehind < mRepairs.size() && mRepairs[mBehind].moment < moment; ++mBehind) {
        Repair(mCourses[mRepairs[mBehind].repair], mRepairs[mBehind].moment);
    }
}

void RepairEffects::Repair(Course& course, std::int64_t moment) const
{
    CloseBefore(course, moment);
    if (course.IsDone()) {
        return;
    }
    if (course.last != Answer::THERE) {
        course.outcome = course.outcome == Outcome::NONE ? Outcome::FAULT_NOT_SEEN_BEFORE : course.outcome;
        return;
    }
    course.since = moment;
    course.seen = Outcome::NOT_SEEN_AFTER;
}

void RepairEffects::See(Course& course, Answer answer, std::int64_t moment) const
{
    CloseBefore(course, moment);
    if (course.since && moment > *course.since) {
        if (answer == Answer::THERE) {
            course.seen = Outcome::AGAIN;
            Close(course);
        } else if (answer == Answer::GONE) {
            course.seen = Outcome::GONE;
        } else if (course.seen == Outcome::NOT_SEEN_AFTER) {
            course.seen = Outcome::NOT_TOLD_AFTER;
        }
    }
    course.last = answer == Answer::UNTOLD ? course.last : answer;
    if (!course.isRepaired && !course.since && !course.IsDone() && answer == Answer::THERE) {
        course.since = moment;
        course.seen = Outcome::NOT_SEEN_AFTER;
    }
}

void RepairEffects::CloseBefore(Course& course, std::int64_t moment) const
{
    if (course.since && moment - *course.since > mWithin) {
        Close(course);
    }
}

// An answer replaces the outcomes of earlier attempts that had none.
void RepairEffects::Close(Course& course)
{
    if (!course.since) {
        return;
    }
    const bool isAnswer = course.seen == Outcome::AGAIN || course.seen == Outcome::GONE;
    course.outcome = isAnswer || course.outcome == Outcome::NONE ? course.seen : course.outcome;
    course.since.reset();
    course.seen = Outcome::NOT_SEEN_AFTER;
}

void RepairEffects::Count(const Course& course, RepairEffect& effect)
{
    FollowedDevices& followed = course.isRepaired ? effect.repaired : effect.others;
    switch (course.outcome) {
    case Outcome::NONE:
        break;
    case Outcome::AGAIN:
        ++followed.again;
        break;
    case Outcome::GONE:
        ++followed.gone;
        break;
    case Outcome::FAULT_NOT_SEEN_BEFORE:
        ++effect.faultNotSeenBefore;
        break;
    case Outcome::NOT_SEEN_AFTER:
        ++(course.isRepaired ? effect.notSeenAfter : effect.othersNotFollowed);
        break;
    case Outcome::NOT_TOLD_AFTER:
        ++(course.isRepaired ? effect.notToldAfter : effect.othersNotFollowed);
        break;
    }
}

bool RepairEffects::IsComplete(const RepairAim& aim, const DeviceVisit& visit)
{
    return std::all_of(aim.trees.begin(), aim.trees.end(), [&visit](std::int64_t tree) {
        return std::binary_search(visit.complete.begin(), visit.complete.end(), tree);
    });
}

} // namespace diagnosis
