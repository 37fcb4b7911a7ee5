#include "app/defaults_store.h"

#include <gtest/gtest.h>

#include "app/fakes/fakes.h"

namespace talvex::app {
namespace {

class DefaultsStoreTest : public ::testing::Test {
  protected:
    fakes::MemoryDomain domain;
    DefaultsStore defaults{domain};
};

TEST_F(DefaultsStoreTest, MissingKeysReadAsFalseZeroAndAbsent) {
    EXPECT_FALSE(defaults.contains("didCrash"));
    EXPECT_FALSE(defaults.boolForKey("didCrash"));
    EXPECT_EQ(defaults.integerForKey("logLength"), 0);
    EXPECT_EQ(defaults.stringForKey("version"), std::nullopt);
}

TEST_F(DefaultsStoreTest, RegisteredDefaultsStandWhereNothingWasStored) {
    defaults.registerDefaults({{"runningCalculation", true}, {"logLength", 7LL}});
    EXPECT_TRUE(defaults.boolForKey("runningCalculation"));
    EXPECT_EQ(defaults.integerForKey("logLength"), 7);
    defaults.setBool("runningCalculation", false);
    EXPECT_FALSE(defaults.boolForKey("runningCalculation"));
    // Registration is not persistent.
    EXPECT_FALSE(domain.values.contains("logLength"));
}

TEST_F(DefaultsStoreTest, RemovingTheDomainKeepsOnlyTheRegistrationDefaults) {
    defaults.registerDefaults({{"logLength", 3LL}});
    defaults.setInteger("logLength", 40);
    defaults.setString("prefs", "x");
    defaults.removePersistentDomain();
    EXPECT_EQ(defaults.integerForKey("logLength"), 3);
    EXPECT_FALSE(defaults.contains("prefs"));
}

TEST_F(DefaultsStoreTest, ValuesConvertBetweenTypesAsADefaultsStoreReadsThem) {
    domain.values["a"] = std::string("YES");
    domain.values["b"] = std::string("0");
    domain.values["c"] = std::string(" 42abc");
    domain.values["d"] = 5LL;
    domain.values["e"] = true;
    EXPECT_TRUE(defaults.boolForKey("a"));
    EXPECT_FALSE(defaults.boolForKey("b"));
    EXPECT_EQ(defaults.integerForKey("c"), 42);
    EXPECT_TRUE(defaults.boolForKey("d"));
    EXPECT_EQ(defaults.stringForKey("d"), "5");
    EXPECT_EQ(defaults.integerForKey("e"), 1);
}

TEST_F(DefaultsStoreTest, SynchronizeWritesToDisk) {
    defaults.setBool("didCrash", true);
    EXPECT_FALSE(domain.flushed.contains("didCrash"));
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(domain.flushed.at("didCrash"), DefaultValue(true));
}

}  // namespace
}  // namespace talvex::app
