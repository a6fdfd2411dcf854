#include "kernel/elements/class_lookup.h"

#include <atomic>

namespace veska {

namespace {

std::atomic<ClassLookup> installed_lookup{nullptr};

}  // namespace

void InstallClassLookup(ClassLookup lookup) { installed_lookup.store(lookup, std::memory_order_release); }

const ClassInfo* LookUpClass(StringView name) {
  const ClassLookup lookup = installed_lookup.load(std::memory_order_acquire);
  return lookup != nullptr ? lookup(name) : nullptr;
}

}  // namespace veska
