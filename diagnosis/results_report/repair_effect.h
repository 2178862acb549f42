#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_REPAIR_EFFECT_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_REPAIR_EFFECT_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace diagnosis {

/// A repair and the root causes that name it. Together these causes are one fault, that of the repair.
struct RepairAim {
    std::string id;
    /// Numbers of causes, in any order, without repetition.
    std::vector<std::int64_t> causes;
    /// Numbers of their trees, in any order, without repetition.
    std::vector<std::int64_t> trees;
};

/// A repair of a device, as its repair records have it.
struct RepairDone {
    /// Index of the aim.
    std::size_t repair;
    /// In seconds.
    std::int64_t moment;
};

/// What one bundle of a device says.
struct DeviceVisit {
    /// In seconds.
    std::int64_t moment;
    /// The causes that were found.
    std::vector<std::int64_t> causes;
    /// The trees that open checks could add no cause to, in ascending order.
    std::vector<std::int64_t> complete;
};

/// Devices that had the fault of a repair and were seen again in time: those that had it again, and the others.
struct FollowedDevices {
    std::uint64_t again = 0;
    std::uint64_t gone = 0;

    std::uint64_t All() const { return again + gone; }
};

/// What became of devices with and without one repair. Each device is in one number of its part.
struct RepairEffect {
    std::string id;
    /// With the repair on record.
    FollowedDevices repaired;
    /// The others with the repair on record: the last answer before it was no fault, or there was none; or no bundle
    /// followed in time; or open checks left the bundles that followed without an answer.
    std::uint64_t faultNotSeenBefore = 0;
    std::uint64_t notSeenAfter = 0;
    std::uint64_t notToldAfter = 0;
    /// Without it.
    FollowedDevices others;
    /// Had the fault and no answer in time.
    std::uint64_t othersNotFollowed = 0;

    std::uint64_t NotFollowed() const { return faultNotSeenBefore + notSeenAfter + notToldAfter; }
    std::uint64_t Devices() const { return repaired.All() + NotFollowed(); }
};

/// Follows devices through their bundles, one device after the other and each in order of time; keeps the numbers and what
/// belongs to the device at hand.
///
/// A bundle answers "fault" if one of the causes is found, and "no fault" if none is and no tree of theirs has an open
/// check that could add one; other bundles have no answer. A device can be followed from a moment if a bundle answers up
/// to `within` seconds after it.
///
/// A device counts once for a repair. With the repair on record it counts from the first of its repairs before which the
/// last answer was "fault" and from which it can be followed; repairs with no answer between them are one, at the moment
/// of the last. Without the repair it counts from the first "fault" from which it can be followed. A bundle of the same
/// second as a repair is before it.
class RepairEffects {
public:
    RepairEffects(std::vector<RepairAim> aims, std::int64_t within);

    /// Begins a device with all its repairs, in any order. Ends the device before.
    void BeginDevice(std::vector<RepairDone> repairs);
    /// The next bundle of the device, in ascending order of time.
    void Add(const DeviceVisit& visit);
    /// Ends the last device. Returns one effect for each aim, in the order of the aims.
    const std::vector<RepairEffect>& Finish();

private:
    enum class Answer { UNTOLD, THERE, GONE };
    enum class Outcome { NONE, FAULT_NOT_SEEN_BEFORE, NOT_SEEN_AFTER, NOT_TOLD_AFTER, AGAIN, GONE };

    /// The current device and one repair.
    struct Course {
        bool isRepaired = false;
        /// The last answer so far.
        Answer last = Answer::UNTOLD;
        /// The moment from which the device is followed; nothing while it isn't.
        std::optional<std::int64_t> since;
        /// What the bundles since then say.
        Outcome seen = Outcome::NOT_SEEN_AFTER;
        /// The outcome of the first attempt to follow the device, or of the one that succeeded.
        Outcome outcome = Outcome::NONE;

        bool IsDone() const { return outcome == Outcome::AGAIN || outcome == Outcome::GONE; }
    };

    void EndDevice();
    /// Passes the repairs up to before `moment` to their courses.
    void RepairBefore(std::int64_t moment);
    void Repair(Course& course, std::int64_t moment) const;
    void See(Course& course, Answer answer, std::int64_t moment) const;
    /// Ends following at `moment` if that is too late for an answer.
    void CloseBefore(Course& course, std::int64_t moment) const;
    static void Close(Course& course);
    static void Count(const Course& course, RepairEffect& effect);
    static bool IsComplete(const RepairAim& aim, const DeviceVisit& visit);

    std::vector<RepairAim> mAims;
    std::int64_t mWithin;
    /// For each cause the aims that have it.
    std::unordered_map<std::int64_t, std::vector<std::size_t>> mAimsOf;
    std::vector<RepairEffect> mEffects;
    /// The repairs of the current device in order of time, and how many of them have passed.
    std::vector<RepairDone> mRepairs;
    std::size_t mBehind = 0;
    /// By index of the aim.
    std::map<std::size_t, Course> mCourses;
};

} // namespace diagnosis

#endif
