// The classes the model units register at start-up, in registration order: the system
// register, then the element model classes, then the tool model.  The inheritance model's own
// classes are not registered; the system register's class models stand for them.
#pragma once

#include "kernel/models/element_model.h"
#include "kernel/models/system_register.h"
#include "kernel/models/tool_model.h"
#include "kernel/platform/unit_classes.h"

namespace veska {

inline constexpr UnitClasses kSystemRegisterUnitClasses{
    kSystemRegisterUnit,
    ClassListOf<TSystemRegister, TRegisterClassModel, TRegisterClassModels, TRegisterPropertyModel>};

inline constexpr UnitClasses kElementModelUnitClasses{
    kElementModelUnit,
    ClassListOf<TModelLink, TSourceModelLink, TDestinationModelLink, TPropertyModel, TModelProperties, TElementModel>};

inline constexpr UnitClasses kToolModelUnitClasses{kToolModelUnit, ClassListOf<TToolModel>};

}  // namespace veska
