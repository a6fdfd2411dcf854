// Sorting the members of an entity by two keys with a sorting tool, and walking a tree with a
// recursor whose hooks are tools: one prints each element on the way down, indented by its
// depth, and one keeps the walk out of boxes marked closed.
//
// Build and run: examples/veska_example_sorting_and_walking
#include <veska/veska.h>

#include <cstdio>
#include <memory>

namespace store {

// A box of parts, or a part, with a weight.
class TBox : public veska::TOwnerEntity {
  VESKA_CLASS(TBox, veska::TOwnerEntity, u"Store")
 public:
  int32_t Weight = 0;
  bool Closed = false;
  static void Publish(veska::Publisher<TBox>& p) {
    p.Field(u"Weight", &TBox::Weight);
    p.Field(u"Closed", &TBox::Closed);
  }
};

TBox* Box(const veska::String& name, int32_t weight, veska::TEntity* holder) {
  auto* box = new TBox;
  box->SetName(name);
  box->Weight = weight;
  if (holder != nullptr) holder->AddElement(box);
  return box;
}

// Prints its input, indented by the depth the recursor has reached.
class TPrintTool : public veska::TTool {
  VESKA_CLASS(TPrintTool, veska::TTool, u"Store")
 public:
  const veska::TRecursor* walk = nullptr;
  void DoIt() override {
    const veska::String line = veska::String(static_cast<std::size_t>(2 * (walk->Level - 1)), u' ') +
                               GetInput()->GetName() + u" (" + GetInput()->GetPropertyStringByName(u"Weight") + u")";
    std::printf("%s\n", veska::ToUtf8(line).c_str());
  }
};

// Leaves an Output, which lets the walk in, only for boxes that are not closed.
class TOpenBoxTool : public veska::TTool {
  VESKA_CLASS(TOpenBoxTool, veska::TTool, u"Store")
 public:
  void DoIt() override { SetOutput(GetInput()->GetPropertyBooleanByName(u"Closed") ? nullptr : GetInput()); }
};

}  // namespace store

int main() {
  using store::Box;
  const std::unique_ptr<store::TBox> shelf(Box(u"shelf", 0, nullptr));
  for (const auto& [name, weight] : {std::pair{u"bolts", 3}, {u"axles", 1}, {u"nuts", 3}})
    Box(name, weight, shelf.get());
  Box(u"washer", 1, Box(u"gears", 2, shelf.get()));
  store::TBox* sealed = Box(u"sealed", 5, shelf.get());
  sealed->Closed = true;
  Box(u"spare nut", 1, sealed);

  // By weight, then by name for equal weights, as a key list says it.
  veska::TSortElementsEx sort;
  sort.SetPropertyStringByName(u"PropertyName", u"Weight:i,Name");
  sort.SetInput(shelf.get());
  sort.DoIt();

  veska::TRecursorWithTools walk;
  store::TPrintTool print;
  print.walk = &walk;
  store::TOpenBoxTool open;
  walk.SetBeforeTool(&print);
  walk.SetQGoInsideTool(&open);
  walk.SetInput(shelf.get());
  walk.DoIt();

  const bool sorted = shelf->Get(0)->GetName() == u"axles" && shelf->Get(4)->GetName() == u"sealed";
  return sorted ? 0 : 1;
}
