// A class that names a parent it does not derive from would pass for that parent's kind; it
// must not compile.
// expect: the parent named in VESKA_CLASS is not a base of the class
#include "kernel/elements/entity.h"
#include "kernel/elements/named.h"

namespace veska {

class TLiar : public TOwnerElement {
  VESKA_CLASS(TLiar, TEntity, u"Lies")
};

}  // namespace veska
