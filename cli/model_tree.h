// A loaded model as the veska program prints it: the tree of the result's members, one line per
// element, and then the elements that no entity of the tree lists but that are referred to.
//
// Every element has a path: "/" for the root, the path of its entity and its position among the
// entity's members for a member ("/2", "/2/0"), and "#K" for the K-th element that no entity of
// the tree lists, in the order in which references first reach it ("#1", "#1/0").  An element
// listed again, by a second entity or further down its own members, is shown once more by the
// path of its first place only.  Members deeper than kMaxDepth levels are not shown.
#pragma once

#include <cstdio>
#include <string>
#include <unordered_map>
#include <vector>

#include "kernel/elements/element.h"

namespace veska::cli {

class ModelTree {
 public:
  static constexpr int kMaxDepth = 10000;

  struct Line {
    TElement* element;
    int depth;       // 0 for the root and each unlisted element
    bool repeated;   // shown at its first place; this line names only that place
  };

  explicit ModelTree(TElement& root);

  // The root's tree, then each unlisted element's, each in member order, depth first.
  const std::vector<Line>& Lines() const { return lines_; }
  const String& PathOf(const TElement& element) const { return paths_.at(&element); }
  // Whether the element is in the tree: a member of it, or reached through references.
  bool Holds(const TElement& element) const { return paths_.contains(&element); }
  // Whether members were left out for being deeper than kMaxDepth.
  bool Truncated() const { return truncated_; }

  // The properties a model file stores of the element (IsModelFileProperty), in the class's
  // order, with their values as the by-name read gives them; a reference is the path of the
  // element it refers to ("" for none).
  std::vector<std::pair<String, String>> StoredProperties(const TElement& element) const;

 private:
  void AddTree(TElement& top);
  void AddUnlistedReferences(std::size_t first_line);

  std::vector<Line> lines_;
  std::unordered_map<const TElement*, String> paths_;
  int unlisted_ = 0;
  bool truncated_ = false;
};

// "veska tree": one line per element, indented two spaces per depth: the class, a tab, the name,
// and for each stored property other than Name a tab and NAME=VALUE; a repeated element shows a
// tab and "@" with its path instead.  Tabs, line breaks and backslashes in names and values are
// written as \t, \n, \r and \\.
void WriteTreeText(const ModelTree& tree, std::FILE* out);

}  // namespace veska::cli
