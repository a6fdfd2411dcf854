// Trees as deep as a file or a builder may make them, and cycles: every walk over owners and
// members, every size and count, and every way of freeing must finish without exhausting the
// stack or looping.
#include <gtest/gtest.h>

#include <vector>

#include "kernel/elements/entity.h"
#include "kernel/elements/named.h"

namespace veska {
namespace {

constexpr int kDepth = 100'000;

// A chain of owner entities, each added to the one before it; the leaf is the last.
struct Chain {
  explicit Chain(int depth) {
    levels.push_back(new TOwnerEntity);
    for (int i = 1; i < depth; ++i) {
      auto* next = new TOwnerEntity;
      levels.back()->AddElement(next);
      levels.push_back(next);
    }
  }
  TOwnerEntity* Root() const { return levels.front(); }
  TOwnerEntity* Leaf() const { return levels.back(); }
  std::vector<TOwnerEntity*> levels;
};

TEST(DeepTrees, AChainOfAHundredThousandLevelsIsWalkedSizedCountedAndReset) {
  Chain chain(kDepth);
  TOwnerEntity* leaf = chain.Leaf();
  EXPECT_EQ(leaf->FindClassInOwners(TStringEntity::StaticClassInfo()), nullptr);
  EXPECT_EQ(leaf->FindClassWithOwnerInOwners(TOwnerEntity::StaticClassInfo(), chain.Root()), chain.levels[1]);
  EXPECT_EQ(leaf->FindFirstClassWithOwnerInOwners(TOwnerEntity::StaticClassInfo(), chain.Root()), nullptr);
  EXPECT_EQ(chain.Root()->GetWholeSize(), kDepth * leaf->GetInstanceSize());
  EXPECT_EQ(chain.Root()->GetWholeCount(), kDepth - 1);
  chain.Root()->ResetID();
  EXPECT_EQ(leaf->ID, BaseID);
  chain.Root()->FreeAll();
  EXPECT_TRUE(chain.Root()->NoElements());
  delete chain.Root();
}

TEST(DeepTrees, AChainOfAHundredThousandLevelsIsFreedByEveryWayOfFreeing) {
  delete Chain(kDepth).Root();  // the destructor frees the members

  Chain hard(kDepth);
  hard.Root()->HardFreeAll();
  delete hard.Root();

  Chain fast(kDepth);
  fast.Root()->FastFreeAll();
  EXPECT_TRUE(fast.Root()->NoElements());
  delete fast.Root();
}

// Sizes and counts on a cycle are in element_test; here the owner walks.
TEST(DeepTrees, OwnerWalksEndOnACycleOfEntities) {
  auto* a = new TOwnerEntity;
  auto* b = new TOwnerEntity;
  a->AddElement(b);
  b->AddElement(a);
  EXPECT_EQ(a->FindClassInOwners(TStringEntity::StaticClassInfo()), nullptr);
  EXPECT_EQ(a->FindClassWithOwnerInOwners(TOwnerEntity::StaticClassInfo(), a), b);
  EXPECT_EQ(b->FindClassWithOwnerInOwners(TStringEntity::StaticClassInfo(), a), nullptr);
  b->RemoveElement(a);
  delete a;
}

// An envelope climbs to the entity it wraps; past it, the first-class question is put as the
// plain one, so an element of the class that the entity does not own is passed, not final.
TEST(DeepTrees, OwnerWalksClimbThroughEnvelopes) {
  TOwnerEntity top;
  auto* middle = new TStringEntity;
  auto* inner = new TStringEntity;
  top.AddElement(middle);
  middle->AddElement(inner);
  TEnvelopeEntity envelope;
  envelope.SetOwner(inner);
  const ClassInfo& strings = TStringEntity::StaticClassInfo();
  EXPECT_EQ(envelope.FindClassInOwners(strings), inner);
  EXPECT_EQ(envelope.FindFirstClassWithOwnerInOwners(strings, &top), middle);
  EXPECT_EQ(envelope.FindClassWithOwnerInOwners(TEnvelopeEntity::StaticClassInfo(), &top), nullptr);
}

}  // namespace
}  // namespace veska
