// The commands of the veska program that show the class registry.
#pragma once

#include <cstdio>
#include <string_view>

namespace veska::cli {

// "veska classes": one line per registered class in list order (sorted by name): ID, name,
// ancestor class name, property count, unit name, separated by tabs.
void ListClasses(std::FILE* out);

// "veska class NAME": one line per property of the class in table order: index, name, type
// kind number, access ("R", "W" or "RW") and "stored" or "not stored", separated by tabs.  The
// name is looked up as creation by name does (NAME, else "T" + NAME); when neither is registered
// FindVeskaClass raises EClassNotFound ("Veska nenašel třídu NAME").
void ShowClass(std::string_view name, std::FILE* out);

}  // namespace veska::cli
