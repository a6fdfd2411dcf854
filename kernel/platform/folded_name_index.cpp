#include "kernel/platform/folded_name_index.h"

namespace veska {

bool SameFoldedName(StringView a, StringView b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (AsciiUpperChar(a[i]) != AsciiUpperChar(b[i])) return false;
  }
  return true;
}

}  // namespace veska
