// Published properties that the fuzz targets leave alone because they act outside what a target
// drives: files anywhere on the machine; messages handed to the host, which then owns them; and
// the member commands of every entity, which free or let go of whatever element they are given,
// held or not, and add any element, an entity's own holder too: they are the element layer's,
// whose own fuzz target and tests take them.
#pragma once

#include "kernel/elements/entity.h"
#include "kernel/platform/string.h"

namespace veska::fuzz {

inline bool ActsOutside(const String& name) {
  const PropInfo* entity_command = TEntity::StaticClassInfo().FindProperty(name);
  if (entity_command != nullptr && !entity_command->CanRead()) return true;
  for (StringView outside : {u"LoadFromFile", u"SaveToFile", u"SendIt", u"PostIt"}) {
    if (SameText(name, outside)) return true;
  }
  return false;
}

}  // namespace veska::fuzz
