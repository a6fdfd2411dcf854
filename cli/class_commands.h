// The commands of the veska program that show the class registry.
#pragma once

#include <cstdio>
#include <string_view>

namespace veska::cli {

// "veska classes": one line per registered class in list order:
// ID, name, ancestor class name, property count, unit name, separated by tabs.
int ListClasses(std::FILE* out);

// "veska class NAME": one line per property of the class in table order: index, name, type
// kind number, access ("R", "W" or "RW") and "stored" or "not stored", separated by tabs.
// An unregistered name prints "error: Veska nenašel třídu NAME" to err and gives 1.
int ShowClass(std::string_view name, std::FILE* out, std::FILE* err);

}  // namespace veska::cli
