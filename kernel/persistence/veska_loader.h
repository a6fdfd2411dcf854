// The model-file loaders: tools that read a model (a graph of elements) back from a binary
// model file.  "VSK0" files are the library's own format, self-describing: every class and
// property a file uses is declared in it, by name and type kind, before its first use, so files
// written by older versions of a class still load.
//
// TVeskaLoader is the frame, independent of how values are read; TStreamLoader reads a VSK0
// stream.  A loader is given FileName (and optionally ContainerEntity), run once through DoIt
// and freed.
#pragma once

#include "kernel/tools/tool.h"

namespace veska {

inline constexpr std::u16string_view kLoaderUnit = u"Loader";

class TVeskaLoader : public TTool {
  VESKA_CLASS(TVeskaLoader, TTool, kLoaderUnit)
 public:
  String FileName;

  void SetFileName(const String& name) { FileName = name; }
  TEntity* GetContainerEntity() const { return container_entity_.Get(); }
  // The entity that receives every loaded element at the end; none leaves them to the result.
  void SetContainerEntity(TEntity* entity) { container_entity_ = entity; }
  // 0 is FileName, any other number ContainerEntity.
  String NumberToPropertyName(int32_t number) override;

  static void Publish(Publisher<TVeskaLoader>& p);

 private:
  WeakRef<TEntity> container_entity_;
};

}  // namespace veska
