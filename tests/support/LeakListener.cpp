// Fails every test after which something of the platform is still held.
#include "support/Holdings.h"

#include <gtest/gtest.h>

namespace {

class LeakListener final : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { before_ = CurrentHoldings(); }
    void OnTestEnd(const testing::TestInfo&) override { EXPECT_EQ(CurrentHoldings(), before_); }

    std::map<std::string, long> before_;
};

}  // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new LeakListener);
    return RUN_ALL_TESTS();
}
