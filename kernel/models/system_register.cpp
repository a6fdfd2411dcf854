#include "kernel/models/system_register.h"

namespace veska {

namespace {

// The cached part, or the part of that name found or made now and cached.
template <class Part>
Part* CachedNamedPart(TEntity& holder, CachedPart<Part>& cache, StringView name) {
  if (Part* part = cache.Get(holder)) return part;
  Part* part = FindOrCreatePart<Part>(holder, name);
  cache.Set(part);
  return part;
}

}  // namespace

void TRegisterPropertyModel::Publish(Publisher<TRegisterPropertyModel>& p) {
  p.Field(u"Alias", &TRegisterPropertyModel::Alias);
  p.Field(u"ImageIndex", &TRegisterPropertyModel::ImageIndex);
  p.Field(u"Editor", &TRegisterPropertyModel::Editor);
}

TOwnerEntity* TRegisterClassModel::GetPropertyModels() {
  return CachedOrAddedPart(*this, property_models_, u"PROPERTY MODELS");
}
TOwnerEntity* TRegisterClassModel::GetShell() { return CachedOrAddedPart(*this, shell_, u"SHELL"); }

void TRegisterClassModel::Publish(Publisher<TRegisterClassModel>& p) {
  using Self = TRegisterClassModel;
  p.Field(u"Alias", &Self::Alias);
  p.Field(u"ImageIndex", &Self::ImageIndex);
  p.Field(u"ImageSelectedIndex", &Self::ImageSelectedIndex);
  p.Field(u"Editor", &Self::Editor);
  p.Field(u"Interpret", &Self::Interpret);
  p.Field(u"SubClass", &Self::SubClass);
  p.Property(u"PropertyModels", &Self::GetPropertyModels).Stored(false);
  p.Property(u"Shell", &Self::GetShell).Stored(false);
}

void TRegisterClassModels::Publish(Publisher<TRegisterClassModels>& p) {
  p.Property(u"ActualClassModel", &TRegisterClassModels::GetActualClassModel).Stored(false);
}

TStringListElement* TSystemRegister::GetImages() { return CachedNamedPart(*this, images_, u"IMAGES"); }
TStringListElement* TSystemRegister::GetCursors() { return CachedNamedPart(*this, cursors_, u"CURSORS"); }
TRegisterClassModels* TSystemRegister::GetClassModels() {
  return CachedNamedPart(*this, class_models_, u"CLASS MODELS");
}

void TSystemRegister::Publish(Publisher<TSystemRegister>& p) {
  p.Property(u"Images", &TSystemRegister::GetImages).Stored(false);
  p.Property(u"Cursors", &TSystemRegister::GetCursors).Stored(false);
  p.Property(u"ClassModels", &TSystemRegister::GetClassModels).Stored(false);
}

}  // namespace veska
