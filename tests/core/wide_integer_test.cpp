#include "core/wide_integer.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace talvex::core::wide {
namespace {

// The division by powers of ten is checked against what it must give by construction:
// n = q x 10^k + r with r below 10^k has quotient q and remainder r, whatever computes it.

constexpr U128 kAllOnes = ~U128{0};

class DivideWideByPow10 : public ::testing::TestWithParam<int> {};

TEST_P(DivideWideByPow10, GivesTheQuotientAndRemainderItWasBuiltFrom) {
    const int k = GetParam();
    const U128 d = pow10(k);
    std::mt19937_64 random(static_cast<unsigned>(100 + k));
    std::vector<U128> quotients = {0, 1, 2, pow10(37), pow10(38) - 1, kAllOnes >> 1, kAllOnes};
    std::vector<U128> remainders = {0, 1, d - 1, d - 2, 5 * pow10(k - 1), 5 * pow10(k - 1) - 1};
    for (int i = 0; i < 2000; ++i) {
        quotients.push_back(make128(random(), random()) >> (random() % 128));
        remainders.push_back(make128(random(), random()) % d);
    }
    for (std::size_t i = 0; i < quotients.size(); ++i) {
        for (std::size_t j = 0; j < remainders.size(); j += (i < 7 ? 1 : remainders.size() / 8)) {
            const U128 q = quotients[i];
            const U128 r = remainders[j];
            const U256 n = add(multiplyFull(q, d), U256::from128(r));
            U128 remainder = 0;
            ASSERT_EQ(divideWideByPow10(n, k, remainder), q) << "k = " << k;
            ASSERT_EQ(remainder, r) << "k = " << k;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(TwoDigitDivisors, DivideWideByPow10, ::testing::Range(20, 39));

TEST(MultiplyFull, AgreesWithTheLimbByLimbProduct) {
    std::mt19937_64 random(5);
    for (int i = 0; i < 20000; ++i) {
        const U128 a = make128(random(), random()) >> (random() % 128);
        const U128 b = make128(random(), random()) >> (random() % 128);
        const U256 full = multiplyFull(a, b);
        EXPECT_EQ(compare(full, multiply128(a, b)), 0);
    }
    const U256 largest = multiplyFull(kAllOnes, kAllOnes);  // 2^256 - 2^129 + 1
    EXPECT_EQ(largest.limb[0], 1U);
    EXPECT_EQ(largest.limb[1], 0U);
    EXPECT_EQ(largest.limb[2], ~std::uint64_t{0} - 1);
    EXPECT_EQ(largest.limb[3], ~std::uint64_t{0});
}

}  // namespace
}  // namespace talvex::core::wide
