#include "kernel/persistence/stream_saver.h"

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

// One element of the model and its state while the model is written.
struct Node {
  TElement* element;
  int32_t number = -1;   // its element number once its record has begun
  bool held = false;     // listed by an entity of the model
  bool pending = false;  // its record is being prepared: what it needs is being written first
  bool visited = false;  // by the walk that orders the records
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
    const auto [found, added] = index_.try_emplace(element, static_cast<uint32_t>(nodes_.size()));
    if (added) nodes_.push_back(Node{element});
    return found->second;
  }

  ClassLayout& LayoutOf(const TElement& element) {
    const ClassInfo& cls = element.ClassType();
    const auto [found, added] = layouts_.try_emplace(&cls);
    if (added) {
      for (const PropInfo* property : cls.Properties()) {
        if (!IsModelFileProperty(*property)) continue;
        found->second.properties.push_back(property);
        if (property->Kind() == TTypeKind::tkClass) found->second.references.push_back(property);
      }
    }
    return found->second;
  }

  static TElement* Referenced(const PropInfo& property, const TElement& element) {
    return property.IsStored(element) ? ObjectAs<TElement>(property.GetObj(element)) : nullptr;
  }

  static TEntity* Members(const Node& node) { return ObjectAs<TEntity>(node.element); }

  // Every element of the model, members and referenced elements before the element that needs
  // them, the root last: a walk that marks every member it meets as held.  Iterative, as a
  // model may be deeper than the stack.
  std::vector<uint32_t> RecordOrder() {
    struct Step {
      uint32_t node;
      int next;  // members first, then references
    };
    std::vector<uint32_t> order;
    std::vector<Step> path{{root_, 0}};
    nodes_[root_].visited = true;
    nodes_[root_].held = true;
    while (!path.empty()) {
      Step& step = path.back();
      TElement* next = nullptr;
      TEntity* members = Members(nodes_[step.node]);
      const int member_count = members != nullptr ? members->ElementsCount() : 0;
      while (next == nullptr) {
        const int position = step.next++;
        if (position < member_count) {
          next = members->Get(position);
          if (next != nullptr) nodes_[NodeOf(next)].held = true;
          continue;
        }
        const ClassLayout& layout = LayoutOf(*nodes_[step.node].element);
        const auto reference = static_cast<std::size_t>(position - member_count);
        if (reference >= layout.references.size()) break;
        next = Referenced(*layout.references[reference], *nodes_[step.node].element);
      }
      if (next == nullptr) {
        order.push_back(step.node);
        path.pop_back();
        continue;
      }
      const uint32_t node = NodeOf(next);
      if (nodes_[node].visited) continue;
      nodes_[node].visited = true;
      path.push_back({node, 0});
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
    if (TEntity* members = Members(nodes_[node])) {
      for (int i = 0; i < members->ElementsCount(); ++i) {
        TElement* member = members->Get(i);
        if (member != nullptr && CanWriteNow(NodeOf(member))) WriteElement(NodeOf(member));
      }
    }
    TElement& element = *nodes_[node].element;
    ClassLayout& layout = LayoutOf(element);
    if (node == root_) {
      for (const PropInfo* property : layout.references) {
        TElement* referenced = Referenced(*property, element);
        if (referenced != nullptr && CanWriteNow(NodeOf(referenced))) WriteElement(NodeOf(referenced));
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
    TEntity* members = Members(nodes_[node]);
    if (members == nullptr || members->ElementsCount() == 0) {
      out_.WriteInteger(0);
      return;
    }
    out_.WriteInteger(1);
    out_.WriteListBegin();
    for (int i = 0; i < members->ElementsCount(); ++i) {
      TElement* member = members->Get(i);
      if (member == nullptr) continue;
      const uint32_t listed = NodeOf(member);
      if (Written(listed)) {
        out_.WriteInteger(nodes_[listed].number);
      } else {
        saver_.PostTextMsg(tm_Text, nodes_[node].element->ClassName() + u" member " + member->ClassName() + u" left out",
                           nullptr);
      }
    }
    out_.WriteListEnd();
  }

  TStreamSaver& saver_;
  TWriter& out_;
  uint32_t root_ = 0;
  std::vector<Node> nodes_;
  std::unordered_map<const TElement*, uint32_t> index_;
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
