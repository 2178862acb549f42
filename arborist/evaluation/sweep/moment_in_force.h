#ifndef ARBORIST_EVALUATION_SWEEP_MOMENT_IN_FORCE_H
#define ARBORIST_EVALUATION_SWEEP_MOMENT_IN_FORCE_H

#include <cstdint>
#include <string>

/// Sets what the whole library takes for now, and the last moment that counts, as long as it exists. Restores both
/// settings at the end.
class MomentInForce {
public:
    MomentInForce();
    ~MomentInForce();
    MomentInForce(const MomentInForce&) = delete;
    MomentInForce& operator=(const MomentInForce&) = delete;

    /// As of `moment`: it is now, and nothing later counts.
    void Set(std::int64_t moment) { Set(moment, moment); }
    void Set(std::int64_t now, std::int64_t last);

private:
    std::string mNow;
    std::string mLast;
};

#endif
