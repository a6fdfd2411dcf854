// Classes by name for the element layer.
//
// Elements create elements by class name (an entity's CreateElement, the path search
// FINDELEMENTBYCLASS), while the class registry that knows the names sits in a layer above.
// The registry's side installs its lookup here while the program starts; until then, and in a
// program that links no registry, every name is unknown.
#pragma once

#include "kernel/platform/object.h"

namespace veska {

using ClassLookup = const ClassInfo* (*)(StringView name);

// Safe to call from any thread; meant to be called once, at start-up.
void InstallClassLookup(ClassLookup lookup);

// The class registered under the name, as the installed lookup answers; none when unknown.
const ClassInfo* LookUpClass(StringView name);

}  // namespace veska
