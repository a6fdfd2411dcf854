// The classes a unit of the library registers at start-up, in their registration order.
//
// Each unit declares its list beside its classes; the start-up table, above every unit, hands
// the lists to the class registry in unit order.  A list is a compile-time table, so a unit
// costs nothing until the registry is first used.
#pragma once

#include <array>
#include <span>

#include "kernel/platform/object.h"

namespace veska {

using ClassInfoSource = const ClassInfo& (*)();

struct UnitClasses {
  StringView unit_name;
  std::span<const ClassInfoSource> classes;
};

template <RunTimeClass... Classes>
inline constexpr std::array<ClassInfoSource, sizeof...(Classes)> ClassListOf = {&Classes::StaticClassInfo...};

}  // namespace veska
