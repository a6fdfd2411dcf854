// The classes the element unit registers at start-up, in registration order.  Registration
// happens once however often start-up runs.
#pragma once

#include "kernel/elements/entity.h"
#include "kernel/elements/message.h"
#include "kernel/elements/named.h"
#include "kernel/platform/unit_classes.h"

namespace veska {

inline constexpr UnitClasses kElementsUnitClasses{
    kElementsUnit, ClassListOf<TElement, TNameElement, TOwnerElement, TEntity, TNameEntity, TOwnerEntity,
                               TEnvelopeEntity, TQuickEntity, TVeskaMessage, TStringEntity, TYouShallNotPass>};

}  // namespace veska
