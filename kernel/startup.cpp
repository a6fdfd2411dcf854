// The start-up table: every unit of the library, in registration order.
//
// Units register after the units they use, the registry unit first, so that class records are
// numbered as the library has always numbered them.  A new unit adds one row here; no unit
// includes this file.  The table and the class lookup of the element layer are installed while
// the program starts; the registry runs the table on its first use.
#include "kernel/classes/registry.h"
#include "kernel/elements/class_lookup.h"
#include "kernel/elements/elements_unit.h"
#include "kernel/models/models_unit.h"
#include "kernel/persistence/persistence_unit.h"
#include "kernel/tools/tools_unit.h"
#include "kernel/types/types_unit.h"

namespace veska {

namespace {

constexpr UnitClasses kStartUpTable[] = {
    kRegistryUnitClasses,
    kElementsUnitClasses,
    kTypesUnitClasses,
    kSystemRegisterUnitClasses,
    kElementModelUnitClasses,
    kToolModelUnitClasses,
    kToolsUnitClasses,
    kWorldsUnitClasses,
    kSortedEntitiesUnitClasses,
    // the time elements come here
    kRecursorUnitClasses,
    // the file-system, memory and ini-file elements come here
    kSortingToolsUnitClasses,
    kLoaderUnitClasses,
    // the XML units, then the environment elements come here
    kSaverUnitClasses,  // the library's own additions, last
};

void RegisterLibraryUnits(TVeskaClasses& registry) {
  for (const UnitClasses& unit : kStartUpTable) registry.RegisterUnit(unit);
}

const ClassInfo* RegisteredClass(StringView name) { return GetVeskaClass(String(name)); }

bool InstallStartUp() {
  InstallStartUpSequence(&RegisterLibraryUnits);
  InstallClassLookup(&RegisteredClass);
  return true;
}

}  // namespace

}  // namespace veska

// Nothing calls into this file, so a static build names this symbol to the linker (the veska
// target's link options do), which keeps the file, and its installation, in every program.
extern "C" const bool veska_start_up_installed = veska::InstallStartUp();
