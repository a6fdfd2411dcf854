// Models as a modelling application uses them: settings per class of its own, found for any
// element through the inheritance of the classes, and a tool model whose property models set up
// an element and whose links carry a value on to another.
//
// Build and run: examples/veska_example_class_models
#include <veska/veska.h>

#include <cstdio>
#include <memory>

namespace plant {

// A machine, a pump that is a machine, a piston pump that is a pump, and a valve.
class TMachine : public veska::TOwnerEntity {
  VESKA_CLASS(TMachine, veska::TOwnerEntity, u"Plant")
};

class TPump : public TMachine {
  VESKA_CLASS(TPump, TMachine, u"Plant")
 public:
  int32_t Speed = 0;
  static void Publish(veska::Publisher<TPump>& p) { p.Field(u"Speed", &TPump::Speed); }
};

class TPistonPump : public TPump {
  VESKA_CLASS(TPistonPump, TPump, u"Plant")
};

class TValve : public TMachine {
  VESKA_CLASS(TValve, TMachine, u"Plant")
 public:
  int32_t Flow = 0;
  static void Publish(veska::Publisher<TValve>& p) { p.Field(u"Flow", &TValve::Flow); }
};

}  // namespace plant

namespace {

void Print(const veska::String& text) { std::printf("%s\n", veska::ToUtf8(text).c_str()); }

// The settings that apply to a class: those of the most specific class model covering it.
veska::TRegisterClassModel* SettingsFor(veska::TRegisterClassModels& models, const veska::String& class_name) {
  models.SetFindClassName(class_name);
  return models.GetActualClassModel();
}

}  // namespace

int main() {
  veska::RegisterVeskaClass<plant::TMachine>();
  veska::RegisterVeskaClass<plant::TPump>();
  veska::RegisterVeskaClass<plant::TPistonPump>();
  veska::RegisterVeskaClass<plant::TValve>();

  // Class models: one for machines in general, a more specific one for pumps.  Each command is
  // a property, as files and scripts write them; the error codes say how a command went.
  veska::TSystemRegister system_register;
  veska::TRegisterClassModels& models = *system_register.GetClassModels();
  models.SetNewClassName(u"TPump");
  models.GetActualClassModel()->Editor = u"PumpEditor";
  models.SetNewClassName(u"TMachine");  // takes the pump's model below its own
  models.GetActualClassModel()->Editor = u"MachineEditor";
  models.SetFindClassName(u"TNoSuchMachine");
  if (models.Error != veska::TInheritanceModelEntity::kErrorUnknownClass) return 1;

  const veska::TRegisterClassModel* piston = SettingsFor(models, u"TPistonPump");
  const veska::TRegisterClassModel* valve = SettingsFor(models, u"TValve");
  if (piston == nullptr || valve == nullptr) return 1;
  Print(u"TPistonPump is edited by " + piston->Editor);  // the pump's settings
  Print(u"TValve is edited by " + valve->Editor);        // the machine's

  // Two elements, each with its model as a member: the model's name and class name find the
  // element it describes.
  veska::TOwnerEntity line;
  auto* pump = new plant::TPump;
  auto* inlet = new plant::TValve;
  line.AddElement(pump);
  line.AddElement(inlet);
  pump->SetName(u"feed");
  inlet->SetName(u"inlet");
  const auto attach_model = [](veska::TEntity& element) {
    auto* model = new veska::TToolModel;
    model->SetName(element.GetName());
    model->ElementClassName = element.ClassName();
    element.AddElement(model);
    return model;
  };
  veska::TToolModel* pump_model = attach_model(*pump);
  veska::TToolModel* valve_model = attach_model(*inlet);

  // The pump's model sets its speed and passes it on to the valve's flow.
  pump_model->SetNewPropertyName(u"Speed");
  veska::TPropertyModel* speed = pump_model->GetLastPropertyModel();
  speed->Value = u"1450";
  valve_model->SetNewPropertyName(u"Flow");
  speed->SetNewDestinationLink(valve_model->GetLastPropertyModel());

  // Setting an element up from its model: every property model's value, then every link.
  veska::TElement* instance = speed->GetInstance();
  if (instance != pump) return 1;
  instance->SetPropertyStringByName(speed->GetName(), speed->Value);
  for (int i = 0; i < speed->GetLinks()->ElementsCount(); ++i) {
    if (auto* link = veska::ObjectAs<veska::TModelLink>(speed->GetLinks()->Get(i))) link->Link();
  }
  Print(u"feed runs at " + pump->GetPropertyStringByName(u"Speed") + u", inlet lets " +
        inlet->GetPropertyStringByName(u"Flow") + u" through");
  return inlet->Flow == 1450 ? 0 : 1;
}
