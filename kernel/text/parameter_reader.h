// TCteniParametru: reads a definition text line by line and takes typed parameters from it.
//
// A definition text is a sequence of lines separated by CR LF, LF or CR.  Lines that are empty
// or blank, and comment lines (their first non-blank characters are ';' or "//"), are skipped;
// there are no comments at the end of a line, since ';' is also a value separator.  A parameter
// line has the form "name = value": the name is the text before the first '=' and the value the
// text after it, both without outer blanks.
//
// DejRadek moves to the next line that is neither empty nor a comment and describes it in a
// TCtiDefInfa record: the line's number in the text, its text, its parameter name, and a line
// reader (TCtiRadekClass) over its value.  The typed parameters are then read in two ways:
//   - without a name, from the current line: the next value of its value reader, so a line
//     "Size = 10, 20" gives 10 and 20 to two DejLongIntParametr() calls;
//   - by name, from anywhere in the text: the first parameter line whose name matches
//     (case-insensitive) must hold exactly one value of the type.  The current line stays.
// Every failed read (no current line, a missing name, a value of the wrong form) sets
// BylaChybaParametru and returns the neutral value (0, false).  The flag stays set until a new
// text is given, so a caller can read a whole definition and check once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "kernel/platform/string.h"
#include "kernel/text/line_reader.h"

namespace veska {

// What the reader knows about the current line of a definition.
struct TCtiDefInfa {
  std::size_t CisloRadku = 0;  // 1-based number of the line in the text; 0 before the first line
  String Radek;                // the line without its outer blanks
  String Jmeno;                // the parameter name; empty when the line has no '='
  TCtiRadekClass Hodnota;      // a reader over the value (over the whole line when it has no '=')
};

class TCteniParametru {
 public:
  TCteniParametru() = default;
  explicit TCteniParametru(StringView text) { NovyText(text); }

  // Starts over with a new definition text: no current line, the error flag cleared.
  void NovyText(StringView text);
  // Starts over with the text of a file, taken as UTF-8 when it starts with the UTF-8 byte-order
  // mark or is valid UTF-8, and as Windows-1250 otherwise.  A file that cannot be read gives
  // false and leaves an empty text.
  bool NactiSoubor(const String& file_name);

  // Moves to the next line that is neither empty nor a comment; false at the end of the text,
  // after which there is no current line.
  bool DejRadek();
  const TCtiDefInfa& DefInfo() const { return info_; }
  TCtiDefInfa& DefInfo() { return info_; }  // to read the value with any of the line reader's reads

  // The next value of the current line.
  std::int32_t DejLongIntParametr();
  double DejRealParametr();
  long double DejExtendedParametr();
  bool DejBooleanParametr();
  // The value of the first parameter of this name.
  std::int32_t DejLongIntParametr(StringView name);
  double DejRealParametr(StringView name);
  long double DejExtendedParametr(StringView name);
  bool DejBooleanParametr(StringView name);

  bool BylaChybaParametru() const { return error_; }

 private:
  // Reads one value with a line-reader read, from the current line or from the named parameter.
  template <typename Value>
  Value FromCurrentLine(Value (TCtiRadekClass::*read)());
  template <typename Value>
  Value ByName(StringView name, Value (TCtiRadekClass::*read)());
  std::optional<StringView> FindValue(StringView name) const;

  std::vector<String> lines_;
  std::size_t next_line_ = 0;  // 0-based index of the line DejRadek looks at next
  TCtiDefInfa info_;
  bool error_ = false;
};

}  // namespace veska
