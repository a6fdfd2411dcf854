// The system register: presentation settings of registered element classes for a host
// application.  It holds image and cursor lists and the class models, arranged as an
// inheritance model so that the settings of a base class cover its descendants unless a more
// specific class model overrides them:
//
//   register->GetClassModels()->SetFindClassName(u"TStringElement");
//   TRegisterClassModel* settings = register->GetClassModels()->GetActualClassModel();
//
// What a host does with editors, interpreters, shells and the image and cursor lists is its own
// affair: they are kept and handed out as they are.
#pragma once

#include <cstdint>

#include "kernel/models/inheritance_model.h"
#include "kernel/models/model_parts.h"
#include "kernel/types/list_elements.h"

namespace veska {

inline constexpr std::u16string_view kSystemRegisterUnit = u"E_sysreg";

class TRegisterPropertyModel : public TOwnerEntity {
  VESKA_CLASS(TRegisterPropertyModel, TOwnerEntity, kSystemRegisterUnit)
 public:
  String Alias;
  int32_t ImageIndex = 0;
  String Editor;

  static void Publish(Publisher<TRegisterPropertyModel>& p);
};

// The settings of one class; its element name is the class's name.
class TRegisterClassModel : public TInheritanceModel {
  VESKA_CLASS(TRegisterClassModel, TInheritanceModel, kSystemRegisterUnit)
 public:
  String Alias;
  int32_t ImageIndex = 0;
  int32_t ImageSelectedIndex = 0;
  String Editor;
  String Interpret;
  String SubClass;

  // "PROPERTY MODELS" and "SHELL": made and added on first use without a search by name, so a
  // class model read from a file that holds such an entity makes a second one.  Kept so, as
  // hosts rely on the entity the class model made itself.
  TOwnerEntity* GetPropertyModels();
  TOwnerEntity* GetShell();

  static void Publish(Publisher<TRegisterClassModel>& p);

 private:
  CachedPart<TOwnerEntity> property_models_;
  CachedPart<TOwnerEntity> shell_;
};

// The root of the class models: NewClassName makes class models.
class TRegisterClassModels : public TInheritanceModelEntity {
  VESKA_CLASS(TRegisterClassModels, TInheritanceModelEntity, kSystemRegisterUnit)
 public:
  const ClassInfo& GetItemClass() const override { return TRegisterClassModel::StaticClassInfo(); }
  // The class model the last command selected.
  TRegisterClassModel* GetActualClassModel() const { return ObjectAs<TRegisterClassModel>(ActualItem()); }

  static void Publish(Publisher<TRegisterClassModels>& p);
};

class TSystemRegister : public TOwnerEntity {
  VESKA_CLASS(TSystemRegister, TOwnerEntity, kSystemRegisterUnit)
 public:
  // The parts "IMAGES", "CURSORS" and "CLASS MODELS": found by name, or made, on first use.
  TStringListElement* GetImages();
  TStringListElement* GetCursors();
  TRegisterClassModels* GetClassModels();

  static void Publish(Publisher<TSystemRegister>& p);

 private:
  CachedPart<TStringListElement> images_;
  CachedPart<TStringListElement> cursors_;
  CachedPart<TRegisterClassModels> class_models_;
};

}  // namespace veska
