#include "cli/class_commands.h"

#include "cli/tab_line.h"
#include "kernel/classes/registry.h"

namespace veska::cli {
namespace {

String AccessText(const TVeskaClass& record, int index) {
  if (record.GetPropertyIsReadOnly(index)) return u"R";
  if (record.GetPropertyIsWriteOnly(index)) return u"W";
  return u"RW";
}

}  // namespace

void ListClasses(std::FILE* out) {
  TVeskaClasses& registry = VeskaClasses();
  for (int i = 0; i < registry.ElementsCount(); ++i) {
    const auto* record = dynamic_cast<const TVeskaClass*>(registry.Get(i));
    if (record == nullptr) continue;
    WriteTabLine(out, {IntToStr(record->ID), record->GetName(), record->GetAncestorClassName(),
                       IntToStr(record->PropCount), record->GetUnit_Name()});
  }
}

void ShowClass(std::string_view name, std::FILE* out) {
  const String wanted = FromUtf8(name);
  const ClassInfo* cls = ClassForCreationByName(wanted);
  // Neither name is registered: FindVeskaClass raises EClassNotFound with the registry's text.
  if (cls == nullptr) cls = FindVeskaClass(wanted);
  const TVeskaClass* record = VeskaClasses().GetVeskaClassByName(cls->Name());
  for (int i = 0; record->HasPropertyTable() && i < record->PropCount; ++i) {
    WriteTabLine(out,
                 {IntToStr(i), record->GetPropertyName(i), IntToStr(static_cast<int>(record->GetPropertyTypeKind(i))),
                  AccessText(*record, i), record->GetPropertyStored(i) ? u"stored" : u"not stored"});
  }
}

}  // namespace veska::cli
