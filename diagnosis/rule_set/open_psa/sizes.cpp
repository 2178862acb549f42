#include "diagnosis/rule_set/open_psa/sizes.h"

#include <algorithm>

namespace diagnosis::rule_set::open_psa {

namespace {

constexpr std::uint64_t TOO_MANY = MOST_EVENTS + 1;

std::uint64_t Sum(std::uint64_t one, std::uint64_t other)
{
    return std::min(one + other, TOO_MANY);
}

std::uint64_t Product(std::uint64_t one, std::uint64_t other)
{
    return std::min(one * other, TOO_MANY); // neither is larger than TOO_MANY
}

// The number of ways to choose `least` of `count`. Grows with each step, so that it is left early.
std::uint64_t Choices(std::uint64_t count, std::uint64_t least)
{
    least = std::min(least, count - least);
    std::uint64_t choices = 1;
    for (std::uint64_t step = 1; step <= least && choices < TOO_MANY; ++step) {
        choices = std::min(choices * (count - least + step) / step, TOO_MANY);
    }
    return choices;
}

/// Finds the sizes of formulas whose gates are known.
class SizeFinder {
public:
    explicit SizeFinder(const Model& model) : mModel(model), mSizes(model.gates.size()) {}

    std::vector<Size> Sizes()
    {
        for (const std::size_t gate : mModel.argumentsFirst) {
            const Formula& formula = mModel.gates[gate].formula;
            const bool isReference = formula.kind == Formula::Kind::GATE || formula.kind == Formula::Kind::BASIC_EVENT;
            // A gate adds an event above a single reference; any other formula becomes the event itself.
            const Size size = SizeOf(formula);
            mSizes[gate] = isReference ? Size{Sum(size.events, 1), size.levels + 1} : size;
        }
        return std::move(mSizes);
    }

private:
    Size SizeOf(const Formula& formula) const
    {
        if (formula.kind == Formula::Kind::BASIC_EVENT) {
            return {};
        }
        if (formula.kind == Formula::Kind::GATE) {
            return mSizes[mModel.gatesByName.at(formula.name)];
        }
        Size all{0, 0};
        for (const Formula& argument : formula.arguments) {
            const Size size = SizeOf(argument);
            all = {Sum(all.events, size.events), std::max(all.levels, size.levels)};
        }
        const std::size_t count = formula.arguments.size();
        const bool isWrittenOut =
            formula.kind == Formula::Kind::AT_LEAST && formula.least > 1 && formula.least < count;
        return isWrittenOut ? WrittenOut(all, count, formula.least) : Size{Sum(all.events, 1), all.levels + 1};
    }

    // An OR of ANDs: each argument is in those combinations that choose the others beside it.
    static Size WrittenOut(const Size& arguments, std::size_t count, std::size_t least)
    {
        const std::uint64_t copies = Product(arguments.events, Choices(count - 1, least - 1));
        return {Sum(Sum(copies, Choices(count, least)), 1), arguments.levels + 2};
    }

    const Model& mModel;
    std::vector<Size> mSizes;
};

} // namespace

std::vector<Size> SizesOf(const Model& model)
{
    return SizeFinder(model).Sizes();
}

} // namespace diagnosis::rule_set::open_psa
