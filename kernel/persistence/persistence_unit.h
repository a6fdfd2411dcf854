// The classes the loader unit registers at start-up, in registration order.  TVeskaLoader and
// TStreamLoader are not registered.
#pragma once

#include "kernel/persistence/stream_loader.h"
#include "kernel/persistence/vsk_info.h"
#include "kernel/platform/unit_classes.h"

namespace veska {

inline constexpr UnitClasses kLoaderUnitClasses{kLoaderUnit, ClassListOf<TLoader, TLoad, TLoadVSKInfo, TVSKInfo>};

}  // namespace veska
