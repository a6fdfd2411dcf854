#include "kernel/persistence/stream_saver.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "kernel/elements/entity.h"
#include "kernel/persistence/stream_loader.h"
#include "kernel/platform/application.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/prop_info.h"
#include "kernel/platform/scoped_value.h"
#include "kernel/platform/streams.h"
#include "kernel/platform/typed_value_stream.h"
#include "kernel/text/string_numbers.h"

namespace veska {
namespace {

// The progress moves every this many records.
constexpr int32_t kProgressStep = 4096;
// Records are written ahead of the one that needs them only where members and references form a
// cycle; a chain of such records deeper than this is refused rather than let run off the stack.
constexpr int kMaxWriteDepth = 4096;

// The kinds an element record carries a value of.
bool IsCarriedKind(TTypeKind kind) {
  switch (kind) {
    case TTypeKind::tkInteger:
    case TTypeKind::tkChar:
    case TTypeKind::tkEnumeration:
    case TTypeKind::tkFloat:
    case TTypeKind::tkString:
    case TTypeKind::tkSet:
    case TTypeKind::tkWChar:
    case TTypeKind::tkLString:
    case TTypeKind::tkUString:
      return true;
    default:
      return false;
  }
}

// A class as the file declares it: its number, once declared, and the properties it writes.
struct ClassLayout {
  int32_t number = -1;
  std::vector<const PropInfo*> properties;
  std::vector<const PropInfo*> references;  // those of kind 7, for the walk
};

// One element of the model and its state while the model is written.  What the walk and the
// records ask of an element again and again (whether it is an entity, its class's layout, the
// nodes of its members) is taken once and kept here.
struct Node {
  TElement* element;
  TEntity* entity;                // the element as an entity, or none
  ClassLayout* layout = nullptr;  // once asked for
  uint32_t first_member = 0;      // its members' nodes in ModelWriter::member_nodes_, listed
  uint32_t member_count = 0;      // when the walk reaches it
  int32_t number = -1;   // its element number once its record has begun
  bool held = false;     // listed by an entity of the model
  bool pending = false;  // its record is being prepared: what it needs is being written first
  bool visited = false;  // by the walk that orders the records
};

// The node number of each element met: open addressing with linear probing in one array, as an
// entry of std::unordered_map costs an allocation of its own and the walk asks for every
// element of the model more than once.
class NodeIndex {
 public:
  // The node of the element, and false; or, for an element met for the first time, `fresh`,
  // now its node, and true.
  std::pair<uint32_t, bool> TryEmplace(const TElement* element, uint32_t fresh) {
    if ((count_ + 1) * 2 > slots_.size()) Grow();
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = Hash(element) & mask;; i = (i + 1) & mask) {
      if (slots_[i].element == element) return {slots_[i].node, false};
      if (slots_[i].element == nullptr) {
        slots_[i] = {element, fresh};
        ++count_;
        return {fresh, true};
      }
    }
  }

 private:
  struct Slot {
    const TElement* element = nullptr;
    uint32_t node = 0;
  };

  // Addresses share their low bits (alignment) and often their high ones; mixed, every bit
  // counts.
  static std::size_t Hash(const TElement* element) {
    auto bits = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(element));
    bits ^= bits >> 33;
    bits *= 0xff51afd7ed558ccdULL;
    bits ^= bits >> 33;
    return static_cast<std::size_t>(bits);
  }

  void Grow() {
    std::vector<Slot> old(std::max<std::size_t>(64, slots_.size() * 2));
    old.swap(slots_);
    const std::size_t mask = slots_.size() - 1;
    for (const Slot& slot : old) {
      if (slot.element == nullptr) continue;
      std::size_t i = Hash(slot.element) & mask;
      while (slots_[i].element != nullptr) i = (i + 1) & mask;
      slots_[i] = slot;
    }
  }

  std::vector<Slot> slots_;
  std::size_t count_ = 0;
};

// Writes one model: the element list of a VSK0 file.
class ModelWriter {
 public:
  ModelWriter(TStreamSaver& saver, TWriter& out, TElement& root) : saver_(saver), out_(out) { root_ = NodeOf(&root); }

  void Write() {
    const std::vector<uint32_t> order = RecordOrder();
    saver_.StartProgress(u"Ukládání modelu do souboru " + saver_.FileName, 0, static_cast<int32_t>(order.size()));
    out_.WriteListBegin();
    for (uint32_t node : order) {
      if (nodes_[node].held) WriteElement(node);
    }
    out_.WriteListEnd();
    saver_.EndProgress();
  }

 private:
  uint32_t NodeOf(TElement* element) {
    const auto [node, added] = index_.TryEmplace(element, static_cast<uint32_t>(nodes_.size()));
    if (added) nodes_.push_back(Node{element, ObjectAs<TEntity>(element)});
    return node;
  }

  // The layout of the node's class.  The map keeps its entries where they are, so the node
  // keeps a pointer to its own.
  ClassLayout& LayoutOf(uint32_t node) {
    if (nodes_[node].layout != nullptr) return *nodes_[node].layout;
    const ClassInfo& cls = nodes_[node].element->ClassType();
    const auto [found, added] = layouts_.try_emplace(&cls);
    if (added) {
      for (const PropInfo* property : cls.Properties()) {
        if (!IsModelFileProperty(*property)) continue;
        found->second.properties.push_back(property);
        if (property->Kind() == TTypeKind::tkClass) found->second.references.push_back(property);
      }
    }
    nodes_[node].layout = &found->second;
    return found->second;
  }

  // Takes the nodes of the members the node's entity lists, empty entries left out, and marks
  // each as held.  The model is not changed while it is written, so they are taken once.
  void ListMembers(uint32_t node) {
    TEntity* members = nodes_[node].entity;
    if (members == nullptr) return;
    const auto first = static_cast<uint32_t>(member_nodes_.size());
    for (int i = 0; i < members->ElementsCount(); ++i) {
      TElement* member = members->Get(i);
      if (member == nullptr) continue;
      const uint32_t listed = NodeOf(member);
      nodes_[listed].held = true;
      member_nodes_.push_back(listed);
    }
    nodes_[node].first_member = first;
    nodes_[node].member_count = static_cast<uint32_t>(member_nodes_.size()) - first;
  }

  uint32_t MemberNode(uint32_t node, uint32_t position) const {
    return member_nodes_[nodes_[node].first_member + position];
  }

  static TElement* Referenced(const PropInfo& property, const TElement& element) {
    return property.IsStored(element) ? ObjectAs<TElement>(property.GetObj(element)) : nullptr;
  }

  // Every element of the model, members and referenced elements before the element that needs
  // them, the root last: a walk that marks every member it meets as held.  Iterative, as a
  // model may be deeper than the stack.
  std::vector<uint32_t> RecordOrder() {
    constexpr uint32_t kNone = UINT32_MAX;
    struct Step {
      uint32_t node;
      uint32_t next;  // members first, then references
    };
    std::vector<uint32_t> order;
    std::vector<Step> path{{root_, 0}};
    nodes_[root_].visited = true;
    nodes_[root_].held = true;
    ListMembers(root_);
    while (!path.empty()) {
      Step& step = path.back();
      uint32_t next = kNone;
      const uint32_t member_count = nodes_[step.node].member_count;
      while (next == kNone) {
        const uint32_t position = step.next++;
        if (position < member_count) {
          next = MemberNode(step.node, position);
          break;
        }
        const ClassLayout& layout = LayoutOf(step.node);
        const std::size_t reference = position - member_count;
        if (reference >= layout.references.size()) break;
        if (TElement* referenced = Referenced(*layout.references[reference], *nodes_[step.node].element)) {
          next = NodeOf(referenced);
        }
      }
      if (next == kNone) {
        order.push_back(step.node);
        path.pop_back();
        continue;
      }
      if (nodes_[next].visited) continue;
      nodes_[next].visited = true;
      ListMembers(next);
      path.push_back({next, 0});
    }
    return order;
  }

  bool Written(uint32_t node) const { return nodes_[node].number >= 0; }
  bool CanWriteNow(uint32_t node) const { return !Written(node) && !nodes_[node].pending && node != root_; }

  // The record of an element, after the members it lists that are not written yet (only where
  // members and references form a cycle) and, for the root, after what it refers to.
  void WriteElement(uint32_t node) {
    if (Written(node)) return;
    if (depth_ >= kMaxWriteDepth) throw EWriteError(u"Elements refer back to their holders too deep to be written");
    const ScopedValue deeper(depth_, depth_ + 1);
    nodes_[node].pending = true;
    for (uint32_t i = 0; i < nodes_[node].member_count; ++i) {
      const uint32_t member = MemberNode(node, i);
      if (CanWriteNow(member)) WriteElement(member);
    }
    TElement& element = *nodes_[node].element;
    ClassLayout& layout = LayoutOf(node);
    if (node == root_) {
      for (const PropInfo* property : layout.references) {
        TElement* referenced = Referenced(*property, element);
        if (referenced == nullptr) continue;
        const uint32_t target = NodeOf(referenced);
        if (CanWriteNow(target)) WriteElement(target);
      }
    }
    nodes_[node].pending = false;
    WriteRecord(node, layout);
  }

  void Declare(const TElement& element, ClassLayout& layout) {
    layout.number = next_class_++;
    out_.WriteInteger(-1);
    out_.WriteString(element.ClassName());
    out_.WriteInteger(0);
    out_.WriteListBegin();
    for (const PropInfo* property : layout.properties) {
      out_.WriteString(property->Name());
      out_.WriteInteger(static_cast<int32_t>(property->Kind()));
    }
    out_.WriteListEnd();
  }

  void WriteRecord(uint32_t node, ClassLayout& layout) {
    TElement& element = *nodes_[node].element;
    if (layout.number < 0) Declare(element, layout);
    const int32_t number = next_number_++;
    nodes_[node].number = number;
    if (number % kProgressStep == 0) {
      saver_.SetProgress(number);
      Application().ProcessMessages();
    }
    out_.WriteInteger(layout.number);
    out_.WriteInteger(number);
    out_.WriteListBegin();
    for (std::size_t p = 0; p < layout.properties.size(); ++p) WriteValue(static_cast<int32_t>(p), *layout.properties[p], element);
    out_.WriteListEnd();
    WriteMembers(node);
  }

  void WriteValue(int32_t number, const PropInfo& property, TElement& element) {
    if (!property.IsStored(element)) return;
    const TTypeKind kind = property.Kind();
    if (kind == TTypeKind::tkClass) {
      out_.WriteInteger(number);
      WriteReference(property, element);
      return;
    }
    if (IsOrdinalKind(kind) || kind == TTypeKind::tkChar) {
      const int64_t value = property.GetOrd(element);
      if (property.Default() == value) return;
      out_.WriteInteger(number);
      if (kind == TTypeKind::tkChar || kind == TTypeKind::tkWChar) {
        out_.WriteChar(static_cast<char16_t>(value));
      } else {
        out_.WriteInteger(static_cast<int32_t>(value));  // the loader reads 32 bits
      }
      return;
    }
    out_.WriteInteger(number);
    if (kind == TTypeKind::tkFloat) {
      out_.WriteFloat(property.GetFloat(element));
    } else {
      out_.WriteString(property.GetStr(element));
    }
  }

  void WriteReference(const PropInfo& property, TElement& element) {
    TElement* referenced = Referenced(property, element);
    if (referenced == nullptr) {
      out_.WriteInteger(-1);
      return;
    }
    const uint32_t node = NodeOf(referenced);
    if (Written(node)) {
      out_.WriteInteger(nodes_[node].number);
    } else if (node == root_) {
      LeaveOut(element.ClassName() + u" property \"" + property.Name() + u"\" refers to the root");
    } else if (nodes_[node].pending) {
      LeaveOut(element.ClassName() + u" property \"" + property.Name() + u"\" left out");
    } else {
      if (nesting_ >= TStreamLoader::kMaxNesting) {
        throw EWriteError(u"Inline elements nested deeper than " + IntToStr(TStreamLoader::kMaxNesting) + u" levels");
      }
      ++nesting_;
      out_.WriteInteger(-2);
      out_.WriteListBegin();
      WriteElement(node);
      out_.WriteListEnd();
      --nesting_;
    }
  }

  void LeaveOut(const String& text) {
    out_.WriteInteger(-1);
    saver_.PostTextMsg(tm_Text, text, nullptr);
  }

  void WriteMembers(uint32_t node) {
    if (nodes_[node].member_count == 0) {
      out_.WriteInteger(0);
      return;
    }
    out_.WriteInteger(1);
    out_.WriteListBegin();
    for (uint32_t i = 0; i < nodes_[node].member_count; ++i) {
      const uint32_t listed = MemberNode(node, i);
      if (Written(listed)) {
        out_.WriteInteger(nodes_[listed].number);
      } else {
        saver_.PostTextMsg(tm_Text,
                           nodes_[node].element->ClassName() + u" member " + nodes_[listed].element->ClassName() +
                               u" left out",
                           nullptr);
      }
    }
    out_.WriteListEnd();
  }

  TStreamSaver& saver_;
  TWriter& out_;
  uint32_t root_ = 0;
  std::vector<Node> nodes_;
  std::vector<uint32_t> member_nodes_;
  NodeIndex index_;
  std::unordered_map<const ClassInfo*, ClassLayout> layouts_;
  int32_t next_number_ = 0;
  int32_t next_class_ = 0;
  int nesting_ = 0;  // inline lists
  int depth_ = 0;    // records being written
};

}  // namespace

bool IsModelFileProperty(const PropInfo& property) {
  if (property.Stored().IsConstantFalse() || !property.CanRead() || !property.CanWrite()) return false;
  if (property.Kind() != TTypeKind::tkClass) return IsCarriedKind(property.Kind());
  const ClassInfo* referenced = property.PropType().ClassType != nullptr ? property.PropType().ClassType() : nullptr;
  return referenced == nullptr || referenced->InheritsFrom(TElement::StaticClassInfo()) ||
         TElement::StaticClassInfo().InheritsFrom(*referenced);
}

void TStreamSaver::DoIt() {
  if (FileName.empty()) throw EBadStreamName(u"Chybné jméno souboru : " + FileName + u" !");
  TElement* root = GetInput();
  if (root == nullptr) throw Exception(u"Není co uložit: chybí Input");
  TMemoryStream stream;
  SaveToStream(*root, stream);
  stream.SaveToFile(FileName);
}

void TStreamSaver::SaveToStream(TElement& root, TStream& stream) {
  TWriter writer(stream);
  writer.WriteSignature(kVskSignature);
  for (const String* text : {&Modul, &Version, &Comment}) writer.WriteString(*text);
  ModelWriter(*this, writer, root).Write();
}

String TStreamSaver::NumberToPropertyName(int32_t number) { return number == 0 ? u"FileName" : u"Modul"; }

void TStreamSaver::Publish(Publisher<TStreamSaver>& p) {
  p.Property(u"FileName", &TStreamSaver::FileName, &TStreamSaver::SetFileName);
  p.Property(u"Modul", &TStreamSaver::Modul, &TStreamSaver::SetModul);
  p.Property(u"Version", &TStreamSaver::Version, &TStreamSaver::SetVersion);
  p.Property(u"Comment", &TStreamSaver::Comment, &TStreamSaver::SetComment);
}

}  // namespace veska
