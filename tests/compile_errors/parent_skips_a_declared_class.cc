// A class that names a farther ancestor as its parent would not pass for the nearer one it
// derives from; it must not compile.
// expect: the parent named in VESKA_CLASS skips a nearer declared class
#include "kernel/elements/named.h"

namespace veska {

class TSkipper : public TOwnerEntity {
  VESKA_CLASS(TSkipper, TEntity, u"Lies")
};

}  // namespace veska
