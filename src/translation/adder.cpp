#include "translation/adder.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace tervoxal {

BoolForm reached(const PositiveSum<BoolForm>& sum) {
    const auto widthOf = [](std::int64_t most) {
        return static_cast<std::size_t>(std::bit_width(static_cast<std::uint64_t>(most)));
    };
    std::vector<std::pair<std::int64_t, std::vector<BoolForm>>>
        numbers; // the most it can be, and its digits
    for (const auto& [weight, formula] : sum.parts) {
        std::vector<BoolForm> digits;
        for (std::size_t i = 0; i < widthOf(weight); ++i) {
            digits.push_back((weight >> i & 1) != 0 ? formula : BoolForm(false));
        }
        numbers.emplace_back(weight, std::move(digits));
    }
    while (numbers.size() > 1) {
        decltype(numbers) pairs;
        for (std::size_t i = 1; i < numbers.size(); i += 2) {
            auto& [most, digits] = numbers[i - 1];
            const std::vector<BoolForm>& other = numbers[i].second;
            most += numbers[i].first;
            digits.resize(widthOf(most), BoolForm(false));
            BoolForm carry(false);
            for (std::size_t d = 0; d < digits.size(); ++d) {
                const BoolForm b = d < other.size() ? other[d] : BoolForm(false);
                const BoolForm differ = neg(equ(digits[d], b));
                const BoolForm both = con(digits[d], b);
                const BoolForm passed = con(differ, carry);
                digits[d] = neg(equ(differ, carry));
                carry = dis(both, passed);
            }
            pairs.push_back(std::move(numbers[i - 1]));
        }
        if (numbers.size() % 2 == 1) pairs.push_back(std::move(numbers.back()));
        numbers.swap(pairs);
    }
    BoolForm reached(true); // by the digits so far
    const std::vector<BoolForm>& digits = numbers.front().second;
    for (std::size_t d = 0; d < digits.size(); ++d) {
        reached = (sum.least >> d & 1) != 0 ? con(digits[d], reached) : dis(digits[d], reached);
    }
    return reached;
}

} // namespace tervoxal
