#include <gtest/gtest.h>

#include "ValueFactory.h"

using namespace stagehost;

namespace {

ValueSpec Spec(std::uint32_t type, std::optional<double> minimum = {}, std::optional<double> maximum = {}) {
    ValueSpec spec;
    spec.type = type;
    spec.minimum = minimum;
    spec.maximum = maximum;
    return spec;
}

} // namespace

TEST(Complaint, ANumberHasToLieWithinItsLimits) {
    EXPECT_EQ(ComplaintAbout(Spec(KXP_INTEGER_DATA, 0, 100), "100"), "");
    EXPECT_EQ(ComplaintAbout(Spec(KXP_INTEGER_DATA, 0, 100), "101"), "takes 0 to 100, not 101");
    EXPECT_EQ(ComplaintAbout(Spec(KXP_REAL_DATA, 0.5), "0.4"), "takes at least 0.5, not 0.4");
    EXPECT_EQ(ComplaintAbout(Spec(KXP_REAL_DATA, {}, 100), "1e3"), "takes at most 100, not 1e3");
    EXPECT_EQ(ComplaintAbout(Spec(KXP_REAL_DATA), "1e3"), "");
    EXPECT_EQ(ComplaintAbout(Spec(KXP_INTEGER_DATA), "many"), "does not take \"many\"");
}

TEST(Complaint, ATextIsNotLongerThanItsLimit) {
    ValueSpec spec = Spec(KXP_STRING_DATA);
    EXPECT_EQ(ComplaintAbout(spec, "any"), "");
    spec.maxLength = 2;
    EXPECT_EQ(ComplaintAbout(spec, "ab"), "");
    EXPECT_EQ(ComplaintAbout(spec, "abc"), "takes at most 2 characters");
}

TEST(Complaint, AnEnumerationTakesItsItems) {
    ValueSpec spec = Spec(KXP_ENUM_DATA);
    spec.items = {"calm", "storm"};
    EXPECT_EQ(ComplaintAbout(spec, "storm"), "");
    EXPECT_EQ(ComplaintAbout(spec, "1"), "");
    EXPECT_EQ(ComplaintAbout(spec, "rain"), "does not take \"rain\"");
}
