// The start-up registrations of the library's units.
//
// Each unit of the library registers its element classes in a fixed order, and the units run
// in dependency order: the registry unit first, then the element model, then every later unit.
// The sequence runs once, when the registry is first used.  A new unit of the library declares
// its registration function in a header of its own (as kernel/types/types_unit.h does) and adds
// it to the table of startup.cpp in its place; an application registers its own classes with
// RegisterVeskaClass after that.
#pragma once

namespace veska {

class TVeskaClasses;

void RegisterRegistryUnit(TVeskaClasses& registry);  // "E_class"
void RegisterElementsUnit(TVeskaClasses& registry);  // "Elements"

// Runs the registrations of every unit of the library, in order.
void RegisterLibraryUnits(TVeskaClasses& registry);

}  // namespace veska
