// What no run can come to; the rules themselves are shown by whole runs.
#include "run/ModuleValidation.h"

#include "support/Failures.h"

#include <gtest/gtest.h>

TEST(ModuleValidationTest, KnowsNoModuleOfTheGfxMode)
{
    EXPECT_EQ(MessageOf([] { qov::GetApoModulesOfMode({}, qov::ModuleType::GFX); }), "Not supported APO module type");
}
