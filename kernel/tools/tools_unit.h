// The classes the tools unit registers at start-up, in registration order: the tools, then the
// technologies.  TParameters, TTools, TOrdinalTool and TIterateTechnology are not registered.
#pragma once

#include "kernel/platform/unit_classes.h"
#include "kernel/tools/technology.h"
#include "kernel/tools/tool.h"

namespace veska {

inline constexpr UnitClasses kToolsUnitClasses{
    kToolsUnit, ClassListOf<TProgressMessage, TToolProperties, TTool, TResultTool, TBooleanTool, TTechnology,
                            TSeqTechnology, TSelectTechnology>};

}  // namespace veska
