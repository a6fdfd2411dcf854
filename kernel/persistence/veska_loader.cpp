#include "kernel/persistence/veska_loader.h"

namespace veska {

String TVeskaLoader::NumberToPropertyName(int32_t number) { return number == 0 ? u"FileName" : u"ContainerEntity"; }

void TVeskaLoader::Publish(Publisher<TVeskaLoader>& p) {
  p.Property(u"FileName", &TVeskaLoader::FileName, &TVeskaLoader::SetFileName);
  p.Property(u"ContainerEntity", &TVeskaLoader::GetContainerEntity, &TVeskaLoader::SetContainerEntity);
}

}  // namespace veska
