// The classes the tools unit registers at start-up, in registration order.  TParameters and
// TOrdinalTool are not registered.
#pragma once

#include "kernel/platform/unit_classes.h"
#include "kernel/tools/tool.h"

namespace veska {

inline constexpr UnitClasses kToolsUnitClasses{
    kToolsUnit, ClassListOf<TProgressMessage, TToolProperties, TTool, TResultTool, TBooleanTool>};

}  // namespace veska
