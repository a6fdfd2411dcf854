// "veska tree --json": a loaded model as one JSON document for scripts.
//
//   {"file": "...", "result": {"class": "...", "name": "..."} or null, "error": "..." or null,
//    "diagnostics": [{"level": 8, "text": "..."}, ...], "root": <element> or null,
//    "unlisted": [<element>, ...]}
//
// An element is {"class", "name", "properties": {NAME: VALUE, ...}, "children": [<element>...]}
// with the properties a model file stores of it (IsModelFileProperty), as the by-name read gives them,
// references as paths (see model_tree.h).  An element met again is {"class", "name",
// "same_as": PATH}.  "unlisted" holds the elements no entity of the tree lists, "#1" first.
#pragma once

#include <nlohmann/json.hpp>

#include "cli/model_tree.h"

namespace veska::cli {

// The outcome of loading a model file: the loader's result, its failure, its texts in posting
// order.
struct LoadReport {
  String file;
  TElement* result = nullptr;
  std::optional<String> error;
  std::vector<String> diagnostics;
};

nlohmann::ordered_json ModelJson(const LoadReport& report, const ModelTree* tree);

}  // namespace veska::cli
