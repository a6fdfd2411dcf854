// Runs arbitrary path commands on a small tree.
#include <memory>

#include "fuzz/fuzz_input.h"
#include "kernel/elements/entity.h"
#include "kernel/elements/named.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/string_list.h"
#include "kernel/types/type_elements.h"

namespace veska {
namespace {

// root { a: TStringEntity { b: TStringEntity }, n: TIntegerElement, c: TOwnerEntity }
TOwnerEntity& Tree() {
  static TOwnerEntity* const root = [] {
    auto* tree = new TOwnerEntity;
    tree->SetName(u"root");
    auto* a = new TStringEntity;
    a->SetName(u"a");
    a->Value = u"x";
    auto* b = new TStringEntity;
    b->SetName(u"b");
    a->AddElement(b);
    tree->AddElement(a);
    tree->AddElement(new TIntegerElement(u"n", 7));
    auto* c = new TOwnerEntity;
    c->SetName(u"c");
    tree->AddElement(c);
    return tree;
  }();
  return *root;
}

}  // namespace
}  // namespace veska

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace veska;
  static const MessageSink quiet = SetMessageSink([](const String&, MessageKind) {});
  fuzz::FuzzInput input(data, size);
  const std::size_t form = input.Choose(3);
  const String command = input.RestAsString();
  TOwnerEntity& tree = Tree();
  try {
    if (form == 0) {
      (void)tree.ExecuteCommandLine(command);
    } else if (form == 1) {
      const std::unique_ptr<TStringList> lines(tree.ExecuteCommandLineToList(command));
    } else {
      (void)tree.ExecuteCommandLineToElement(command);
    }
  } catch (const Exception&) {
  }
  return 0;
}
