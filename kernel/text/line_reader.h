// TCtiRadekClass: a cursor that reads words, numbers and quoted texts from one line of text.
//
// The reader keeps its own copy of the line and a 1-based position (1..Length+1; Length+1 is
// the end of the line).  Rules shared by every Dej... read:
//   - leading blanks (spaces and tabs) are skipped first;
//   - an item ends at a blank, a comma, a semicolon or the end of the line; after it, blanks and
//     one separator (a comma or a semicolon) are consumed together with the blanks that follow,
//     so "1 2, 3;4" gives 1, 2, 3 and 4 to four DejLongInt calls and KonecRadku is then true;
//   - a read that finds the end of the line or text it cannot read sets DosloKChybe, returns a
//     neutral value (0, empty text, false, code 0) and leaves the position where it was.  The
//     flag stays set until NovyString; later reads still work, so a caller may read a whole line
//     and look at the flag once.
// The reader never looks outside its line, whatever the text or the calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "kernel/platform/string.h"

namespace veska {

class TCtiRadekClass {
 public:
  TCtiRadekClass() = default;
  explicit TCtiRadekClass(StringView line) { NovyString(line); }

  // Starts reading a new line from its first character and clears the error flag.
  void NovyString(StringView line);

  const String& Radek() const { return line_; }                 // the line being read
  std::size_t Pozice() const { return position_; }              // the 1-based position of the next character
  bool KonecRadku() const { return position_ > line_.size(); }  // nothing is left to read
  bool DosloKChybe() const { return error_; }                   // some read failed since NovyString

  // Moves to a 1-based position, Length+1 meaning the end; any other value sets the error flag
  // and keeps the position.
  void JdiNa(std::size_t position);

  void PreskocMezery();                        // skips spaces and tabs
  void PreskocMnozinu(StringView characters);  // skips every character that occurs in `characters`

  // The next character after the blanks, taken alone: no separator is consumed after it.
  char16_t DejChar();
  // The next word: the characters up to a blank, comma, semicolon or the end of the line.
  String DejString();
  // A text between apostrophes, where two apostrophes in a row stand for one: 'it''s' gives
  // it's.  The apostrophe must be the next character after the blanks and must be closed.
  String DejStringMeziApostrofy();
  // Whole numbers: an optional sign and decimal digits.  A number that does not fit, or runs
  // into any other character than an item end ("12abc", "1.5"), is an error.  Both are 32-bit:
  // the system's Integer and LongInt are the same 32-bit type.
  std::int32_t DejInteger();
  std::int32_t DejLongInt();
  // Decimal numbers: an optional sign, digits with at most one decimal mark, an optional
  // exponent (e or E, optional sign, digits).  The mark is '.' or ','; a comma counts as the
  // mark only between two digits, so "1,5" is one and a half while "1, 5" and "1.5,2" are two
  // numbers.  A '.' needs a digit after it: ".5" is a number, "5." is not.  DejReal gives double and DejExtended long
  // double, the system's two float types; a value beyond the type's range is an error.
  double DejReal();
  long double DejExtended();
  // true/false, ano/ne or 1/0 in any letter case.
  bool DejBoolean();

 private:
  // The extent of the item that starts at the current position, when it is well formed.
  struct Item {
    std::size_t begin;  // 0-based index of its first character
    std::size_t end;    // 0-based index just past it
  };

  std::size_t FirstNonBlank() const;        // 0-based index of the first non-blank at or after the position
  bool IsItemEnd(std::size_t index) const;  // a blank, a separator or the end of the line
  StringView ItemText(Item item) const;
  std::optional<Item> WordItem() const;
  std::optional<Item> NumberItem(bool with_fraction) const;
  void FinishItem(std::size_t end);  // moves past the item, the blanks and one separator
  template <typename Value>
  Value Fail(Value neutral);
  template <typename Number>
  Number ReadNumber();

  String line_;
  std::size_t position_ = 1;
  bool error_ = false;
};

}  // namespace veska
