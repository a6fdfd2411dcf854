// The umbrella header must compile on its own and give the whole interface.
#include <gtest/gtest.h>

#include "kernel/veska.h"

namespace veska {
namespace {

TEST(UmbrellaHeader, GivesTheRegistryAndTheTextUtilities) {
  EXPECT_NE(GetVeskaClass(u"TOwnerEntity"), nullptr);
  EXPECT_EQ(BezVnejsichMezer(u"  a b  "), u"a b");
}

}  // namespace
}  // namespace veska
