// A class without VESKA_CLASS would pass for its parent; using it as a run-time class must not
// compile.
// expect: does not declare its run-time class with VESKA_CLASS
#include "kernel/elements/named.h"

namespace veska {

class TForgotten : public TOwnerElement {};

bool IsForgotten(TObject* object) { return ObjectAs<TForgotten>(object) != nullptr; }

}  // namespace veska
