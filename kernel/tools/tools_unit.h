// The classes the units of the tools layer register at start-up, in registration order: the
// tools, then the technologies; the object model, then the world; the sorted entities; the
// recursor with tools; the sorting tools.  TParameters, TTools, TOrdinalTool,
// TIterateTechnology, TWorkPlace, THostTechnology, TCustomSortedEntity, TRecursor and
// TSortElements are not registered.
#pragma once

#include "kernel/platform/unit_classes.h"
#include "kernel/tools/recursor.h"
#include "kernel/tools/sort_elements.h"
#include "kernel/tools/sorted_entity.h"
#include "kernel/tools/technology.h"
#include "kernel/tools/tool.h"
#include "kernel/tools/world.h"

namespace veska {

inline constexpr UnitClasses kWorldsUnitClasses{kWorldsUnit, ClassListOf<TObjectModel, TWorld>};

inline constexpr UnitClasses kToolsUnitClasses{
    kToolsUnit, ClassListOf<TProgressMessage, TToolProperties, TTool, TResultTool, TBooleanTool, TTechnology,
                            TSeqTechnology, TSelectTechnology>};

inline constexpr UnitClasses kSortedEntitiesUnitClasses{kSortedEntitiesUnit,
                                                        ClassListOf<TSortedEntity, TSortedByPropertyEntity>};

inline constexpr UnitClasses kRecursorUnitClasses{kRecursorUnit, ClassListOf<TRecursorWithTools>};

inline constexpr UnitClasses kSortingToolsUnitClasses{
    kSortingToolsUnit, ClassListOf<TSortElementsByString, TSortElementsByInteger, TSortElementsBy2Integers,
                                   TSortElementsByFloat, TSortElementsEx>};

}  // namespace veska
