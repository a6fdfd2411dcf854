// The classes the tools unit and the worlds unit register at start-up, in registration order:
// the tools, then the technologies; the object model, then the world.  TParameters, TTools,
// TOrdinalTool, TIterateTechnology and TWorkPlace are not registered.
#pragma once

#include "kernel/platform/unit_classes.h"
#include "kernel/tools/technology.h"
#include "kernel/tools/tool.h"
#include "kernel/tools/world.h"

namespace veska {

inline constexpr UnitClasses kWorldsUnitClasses{kWorldsUnit, ClassListOf<TObjectModel, TWorld>};

inline constexpr UnitClasses kToolsUnitClasses{
    kToolsUnit, ClassListOf<TProgressMessage, TToolProperties, TTool, TResultTool, TBooleanTool, TTechnology,
                            TSeqTechnology, TSelectTechnology>};

}  // namespace veska
