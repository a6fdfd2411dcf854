#include "cli/model_tree.h"

#include "kernel/elements/entity.h"
#include "kernel/persistence/stream_saver.h"
#include "kernel/platform/prop_info.h"

namespace veska::cli {
namespace {

String MemberPath(const String& entity_path, int position) {
  return (entity_path == u"/" ? String() : entity_path) + u"/" + IntToStr(position);
}

TElement* ReferenceOf(const PropInfo& property, const TElement& element) {
  return ObjectAs<TElement>(property.GetObj(element));
}

bool IsShown(const PropInfo& property, const TElement& element) {
  return IsModelFileProperty(property) && property.IsStored(element);
}

// A name or value on one line of the tree.
std::string Escaped(const String& text) {
  std::string escaped;
  for (char c : ToUtf8(text)) {
    switch (c) {
      case '\\':
        escaped += "\\\\";
        break;
      case '\t':
        escaped += "\\t";
        break;
      case '\n':
        escaped += "\\n";
        break;
      case '\r':
        escaped += "\\r";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

}  // namespace

ModelTree::ModelTree(TElement& root) {
  paths_.emplace(&root, u"/");
  AddTree(root);
  for (std::size_t scanned = 0; scanned < lines_.size();) {
    const std::size_t first = scanned;
    scanned = lines_.size();
    AddUnlistedReferences(first);
  }
}

// Depth first with the path on the heap, as members may nest deeper than the stack.  The top
// has its place already.
void ModelTree::AddTree(TElement& top) {
  struct Pending {
    TElement* element;
    int depth;
    String path;
  };
  std::vector<Pending> pending{{&top, 0, paths_.at(&top)}};
  while (!pending.empty()) {
    Pending next = std::move(pending.back());
    pending.pop_back();
    const bool first_place = next.depth == 0 || paths_.try_emplace(next.element, next.path).second;
    lines_.push_back({next.element, next.depth, !first_place});
    auto* entity = ObjectAs<TEntity>(next.element);
    if (!first_place || entity == nullptr) continue;
    if (next.depth == kMaxDepth) {
      truncated_ = truncated_ || entity->ElementsCount() > 0;
      continue;
    }
    for (int i = entity->ElementsCount() - 1; i >= 0; --i) {
      if (TElement* member = entity->Get(i)) pending.push_back({member, next.depth + 1, MemberPath(next.path, i)});
    }
  }
}

// The elements that the lines from `first_line` on refer to and that have no place yet become
// trees of their own, numbered in the order met.
void ModelTree::AddUnlistedReferences(std::size_t first_line) {
  std::vector<TElement*> unlisted;
  for (std::size_t i = first_line; i < lines_.size(); ++i) {
    const TElement& element = *lines_[i].element;
    if (lines_[i].repeated) continue;
    for (const PropInfo* property : element.ClassType().Properties()) {
      if (property->Kind() != TTypeKind::tkClass || !IsShown(*property, element)) continue;
      TElement* target = ReferenceOf(*property, element);
      if (target == nullptr || paths_.contains(target)) continue;
      String path(1, u'#');  // appended, not prefixed: g++ 12 misreads a prefix at -O2 (-Wrestrict)
      path += IntToStr(++unlisted_);
      paths_.emplace(target, std::move(path));
      unlisted.push_back(target);
    }
  }
  for (TElement* top : unlisted) AddTree(*top);
}

std::vector<std::pair<String, String>> ModelTree::StoredProperties(const TElement& element) const {
  std::vector<std::pair<String, String>> properties;
  for (const PropInfo* property : element.ClassType().Properties()) {
    if (!IsShown(*property, element)) continue;
    if (property->Kind() != TTypeKind::tkClass) {
      properties.emplace_back(property->Name(), element.GetPropertyStringByName(property->Name()));
      continue;
    }
    const TElement* target = ReferenceOf(*property, element);
    const auto path = target != nullptr ? paths_.find(target) : paths_.end();
    properties.emplace_back(property->Name(), path != paths_.end() ? path->second : String());
  }
  return properties;
}

void WriteTreeText(const ModelTree& tree, std::FILE* out) {
  for (const ModelTree::Line& line : tree.Lines()) {
    std::string text(static_cast<std::size_t>(line.depth) * 2, ' ');
    text += ToUtf8(line.element->ClassName()) + '\t' + Escaped(line.element->GetName());
    if (line.repeated) {
      text += "\t@" + Escaped(tree.PathOf(*line.element));
    } else {
      for (const auto& [name, value] : tree.StoredProperties(*line.element)) {
        if (name != u"Name") text += '\t' + ToUtf8(name) + '=' + Escaped(value);
      }
    }
    text += '\n';
    std::fputs(text.c_str(), out);
  }
}

}  // namespace veska::cli
