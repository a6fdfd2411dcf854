// The umbrella header must compile on its own and give the whole interface.
#include "kernel/veska.h"

#include <gtest/gtest.h>

namespace veska {
namespace {

TEST(UmbrellaHeader, GivesTheRegistryAndTheTextUtilities) {
  EXPECT_NE(GetVeskaClass(u"TOwnerEntity"), nullptr);
  EXPECT_EQ(BezVnejsichMezer(u"  a b  "), u"a b");
}

}  // namespace
}  // namespace veska
