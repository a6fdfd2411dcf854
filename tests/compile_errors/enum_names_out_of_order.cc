// Value names that do not follow their enumerators must not compile.
// expect: EnumNames must name the enumerators 0, 1, 2, ... in order
#include "kernel/platform/publisher.h"

namespace veska {

enum class TValve : uint8_t { vOpen, vClosed };
template <>
struct EnumNames<TValve> {
  static constexpr std::u16string_view TypeName = u"TValve";
  static constexpr std::array Names{EnumName{TValve::vClosed, u"vClosed"}, EnumName{TValve::vOpen, u"vOpen"}};
};

class TPipe : public TPersistent {
  VESKA_CLASS(TPipe, TPersistent, u"Pipes")

 public:
  TValve Valve = TValve::vOpen;
  static void Publish(Publisher<TPipe>& p) { p.Field(u"Valve", &TPipe::Valve); }
};

}  // namespace veska
