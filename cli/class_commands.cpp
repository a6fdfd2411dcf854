#include "cli/class_commands.h"

#include <string>

#include "kernel/classes/registry.h"

namespace veska::cli {
namespace {

// Joins the fields with tabs and writes them as one UTF-8 line.
void WriteLine(std::FILE* out, std::initializer_list<String> fields) {
  std::string line;
  const char* separator = "";
  for (const String& field : fields) {
    line += separator;
    line += ToUtf8(field);
    separator = "\t";
  }
  line += '\n';
  std::fputs(line.c_str(), out);
}

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
    WriteLine(out, {IntToStr(record->ID), record->GetName(), record->GetAncestorClassName(),
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
    WriteLine(out, {IntToStr(i), record->GetPropertyName(i), IntToStr(static_cast<int>(record->GetPropertyTypeKind(i))),
                    AccessText(*record, i), record->GetPropertyStored(i) ? u"stored" : u"not stored"});
  }
}

}  // namespace veska::cli
