#include "cli/model_json.h"

namespace veska::cli {
namespace {

using Json = nlohmann::ordered_json;

Json Text(const String& text) { return ToUtf8(text); }

Json ElementJson(const ModelTree& tree, const ModelTree::Line& line) {
  const TElement& element = *line.element;
  Json json{{"class", Text(element.ClassName())}, {"name", Text(element.GetName())}};
  if (line.repeated) {
    json["same_as"] = Text(tree.PathOf(element));
    return json;
  }
  Json& properties = json["properties"] = Json::object();
  for (const auto& [name, value] : tree.StoredProperties(element)) properties[ToUtf8(name)] = Text(value);
  json["children"] = Json::array();
  return json;
}

// The lines as nested elements, without recursion: each line goes into the children of the
// last line one level up.  Only a line's own siblings move when it is added, and the levels
// above it stay where they are.
void AddTrees(const ModelTree& tree, Json& document) {
  std::vector<Json*> levels;
  for (const ModelTree::Line& line : tree.Lines()) {
    Json element = ElementJson(tree, line);
    Json& siblings = line.depth > 0 ? (*levels[static_cast<std::size_t>(line.depth - 1)])["children"]
                                    : (document["root"].is_null() ? document["root"] : document["unlisted"]);
    Json* added;
    if (siblings.is_array()) {
      siblings.push_back(std::move(element));
      added = &siblings.back();
    } else {
      siblings = std::move(element);
      added = &siblings;
    }
    levels.resize(static_cast<std::size_t>(line.depth));
    levels.push_back(added);
  }
}

}  // namespace

nlohmann::ordered_json ModelJson(const LoadReport& report, const ModelTree* tree) {
  Json document{{"file", Text(report.file)}};
  document["result"] = report.result != nullptr ? Json{{"class", Text(report.result->ClassName())},
                                                       {"name", Text(report.result->GetName())}}
                                                 : Json();
  document["error"] = report.error ? Text(*report.error) : Json();
  Json& diagnostics = document["diagnostics"] = Json::array();
  for (const String& text : report.diagnostics) diagnostics.push_back({{"level", 8}, {"text", Text(text)}});
  document["root"] = Json();
  document["unlisted"] = Json::array();
  if (tree != nullptr) AddTrees(*tree, document);
  return document;
}

}  // namespace veska::cli
