// Building a small element tree and walking it with path commands.
//
// A path command names something reachable from an element: searches among an entity's members
// (FINDELEMENTBYNAME(name), FINDELEMENTBYCLASS(class)) and object-valued properties, joined by
// ".", and at the end the property to read.  Build and run: examples/veska_example_tree_and_paths
#include <veska/veska.h>

#include <cstdio>
#include <memory>

namespace {

// A new named element of class T, added to the owner.  The owner holds it from now on and frees
// it when the owner itself is freed.
template <class T>
T* Add(veska::TEntity& owner, const veska::String& name) {
  auto* element = new T;
  element->SetName(name);
  owner.AddElement(element);
  return element;
}

void Print(const char* command, const veska::String& result) {
  std::printf("%s\n    %s\n", command, veska::ToUtf8(result).c_str());
}

}  // namespace

int main() {
  // plant
  // ├── hall A (an entity)
  // │   ├── pump 1 (a string entity, Value "running")
  // │   └── pump 2 (a string entity, Value "stopped")
  // └── note (a named element)
  const auto plant = std::make_unique<veska::TOwnerEntity>();
  plant->SetName(u"plant");
  auto* hall = Add<veska::TOwnerEntity>(*plant, u"hall A");
  Add<veska::TStringEntity>(*hall, u"pump 1")->Value = u"running";
  Add<veska::TStringEntity>(*hall, u"pump 2")->Value = u"stopped";
  Add<veska::TOwnerElement>(*plant, u"note");

  // One property at the end of a walk, as text.  Names are found ignoring case.
  Print("FINDELEMENTBYNAME(hall A).Count", plant->ExecuteCommandLine(u"FINDELEMENTBYNAME(hall A).Count"));
  Print("FINDELEMENTBYNAME(Hall A).FINDELEMENTBYNAME(pump 2).Value",
        plant->ExecuteCommandLine(u"FINDELEMENTBYNAME(Hall A).FINDELEMENTBYNAME(pump 2).Value"));
  Print("FINDELEMENTBYCLASS(TOwnerElement).Name", plant->ExecuteCommandLine(u"FINDELEMENTBYCLASS(TOwnerElement).Name"));

  // ELEMENT.<property> lists that property of every member; the caller owns the list.
  const std::unique_ptr<veska::TStringList> values(
      plant->ExecuteCommandLineToList(u"FINDELEMENTBYNAME(hall A).ELEMENT.Value"));
  std::printf("FINDELEMENTBYNAME(hall A).ELEMENT.Value\n");
  for (int i = 0; i < values->Count(); ++i) std::printf("    %s\n", veska::ToUtf8(values->Get(i)).c_str());

  // A walk that ends in a search gives the element itself (none when the search finds nothing).
  veska::TObject* pump = plant->ExecuteCommandLineToElement(u"FINDELEMENTBYNAME(hall A).FINDELEMENTBYNAME(pump 1)");
  Print("FINDELEMENTBYNAME(hall A).FINDELEMENTBYNAME(pump 1) gives a", pump != nullptr ? pump->ClassName() : u"(none)");

  // A malformed command raises veska::Exception with the library's own text (in Czech).
  try {
    plant->ExecuteCommandLine(u"FINDELEMENTBYNAME(hall A.Count");
  } catch (const veska::Exception& error) {
    Print("FINDELEMENTBYNAME(hall A.Count fails with", error.Message());
  }
  // Leaving main frees plant, which frees its members, which free theirs.
  return 0;
}
