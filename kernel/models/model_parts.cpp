#include "kernel/models/model_parts.h"

#include <unordered_set>
#include <vector>

namespace veska {

bool IsSelfOrAbove(TElement* element, const TElement* candidate) {
  std::vector<TElement*> pending{element};
  std::unordered_set<const TElement*> seen;
  while (!pending.empty()) {
    TElement* current = pending.back();
    pending.pop_back();
    if (current == candidate) return true;
    if (!seen.insert(current).second) continue;
    if (auto* envelope = ObjectAs<TEnvelopeEntity>(current)) {
      if (envelope->Owner() != nullptr) pending.push_back(envelope->Owner());
      continue;
    }
    for (int i = 0; i < current->GetOwnersCount(); ++i) {
      if (TEntity* owner = current->GetOwnerEntity(i)) pending.push_back(owner);
    }
  }
  return false;
}

}  // namespace veska
