#include "mac_actions/wholeNumber.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvo {
namespace {

struct NumberCase {
    std::string_view json;
    std::optional<std::int64_t> value;
};

class WholeNumberTest : public testing::TestWithParam<NumberCase> {};

TEST_P(WholeNumberTest, IsTheExactValueOrNothing) {
    EXPECT_EQ(wholeNumber(GetParam().json), GetParam().value) << GetParam().json;
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, WholeNumberTest,
    testing::Values(NumberCase{"7", 7}, NumberCase{"-7", -7}, NumberCase{"-0", 0}, NumberCase{"1.0", 1},
                    NumberCase{"1e2", 100}, NumberCase{"1E+2", 100}, NumberCase{"100e-2", 1},
                    NumberCase{"1.50e1", 15}, NumberCase{"0.5e1", 5}, NumberCase{"0e999999999999", 0},
                    NumberCase{"1.5", std::nullopt}, NumberCase{"15e-1", std::nullopt},
                    NumberCase{"1e19", std::nullopt}, NumberCase{"1e999999999999", std::nullopt},
                    NumberCase{"1e-999999999999", std::nullopt},
                    // A double has neither of these.
                    NumberCase{"9007199254740993", 9007199254740993},
                    NumberCase{"9007199254740993.0", 9007199254740993},
                    NumberCase{"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
                    NumberCase{"9223372036854775808", std::nullopt},
                    NumberCase{"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
                    NumberCase{"-9223372036854775809", std::nullopt}));

}  // namespace
}  // namespace orvo
