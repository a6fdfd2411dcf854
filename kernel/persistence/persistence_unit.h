// The classes the persistence units register at start-up, in registration order.  TVeskaLoader
// and TStreamLoader are not registered.  The saver is the library's own addition, registered
// after every other unit so that no other class's registration number moves.
#pragma once

#include "kernel/persistence/stream_loader.h"
#include "kernel/persistence/stream_saver.h"
#include "kernel/persistence/vsk_info.h"
#include "kernel/platform/unit_classes.h"

namespace veska {

inline constexpr UnitClasses kLoaderUnitClasses{kLoaderUnit, ClassListOf<TLoader, TLoad, TLoadVSKInfo, TVSKInfo>};
inline constexpr UnitClasses kSaverUnitClasses{kSaverUnit, ClassListOf<TStreamSaver>};

}  // namespace veska
