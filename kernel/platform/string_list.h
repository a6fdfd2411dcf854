// The platform's string list: ordered lines of text, each with an associated untyped pointer.
//
// Indexes are 0-based as on the platform; a bad index raises EListError "List index out of
// bounds (<index>)".  Lines are compared as the platform's string list compared them: ignoring
// case by default (CompareText, Unicode case folding), or ordinally when CaseSensitive is set.
// That comparison serves IndexOf, IndexOfName, Values, Find and the sorting of a sorted list.
//
// The list is an object of the object model (it publishes nothing) so that element properties
// of class kind can take it, as the list elements' NextStringList does.
#pragma once

#include <vector>

#include "kernel/platform/publisher.h"
#include "kernel/platform/string.h"

namespace veska {

// What a sorted list does when a line equal to one it holds is added.
enum class TDuplicates { Ignore, Accept, Error };

// The 8-bit or Unicode form of a text file written by SaveToFile.
enum class TTextEncoding { Win1250, Utf8 };

class TStringList : public TPersistent {
  VESKA_CLASS(TStringList, TPersistent, u"Classes")
 public:
  TStringList() = default;
  // A list can be handed on by value; the new object has its own identity (object handle).
  TStringList(TStringList&& other) noexcept;
  TStringList& operator=(TStringList&& other) noexcept;

  int Count() const noexcept { return static_cast<int>(items_.size()); }

  const String& Get(int index) const;
  void Put(int index, const String& line);  // EListError on a sorted list
  void* Objects(int index) const;
  void PutObject(int index, void* object);

  // The index of the new line.  A sorted list puts it in order and applies Duplicates: an
  // ignored duplicate returns the index of the line already held, Error raises EListError
  // "String list does not allow duplicates".
  int Add(const String& line) { return AddObject(line, nullptr); }
  int AddObject(const String& line, void* object);
  // index 0..Count; EListError "Operation not allowed on sorted list" on a sorted list.
  void Insert(int index, const String& line) { InsertObject(index, line, nullptr); }
  void InsertObject(int index, const String& line, void* object);
  void Delete(int index);
  void Exchange(int index1, int index2);
  void Clear() noexcept { items_.clear(); }

  // The first line equal to `line` under the list's comparison, or -1.  A sorted list searches
  // with Find.
  int IndexOf(StringView line) const;
  // Binary search as the platform did it, meaningful on a sorted list only: true when found.
  // `index` receives the found line, or the place where the line would be inserted; with
  // Duplicates = Accept it is the first of equal lines.
  bool Find(StringView line, int& index) const;
  // Sorts the lines (stable) unless the list is already sorted.
  void Sort();

  bool Sorted() const noexcept { return sorted_; }
  void SetSorted(bool sorted);  // setting it sorts the lines
  TDuplicates Duplicates() const noexcept { return duplicates_; }
  void SetDuplicates(TDuplicates duplicates) noexcept { duplicates_ = duplicates; }
  bool CaseSensitive() const noexcept { return case_sensitive_; }
  void SetCaseSensitive(bool case_sensitive);  // a sorted list is sorted again

  // name=value lines.  The name is the part before the first "="; a line without "=" has an
  // empty name and an empty value.
  String Names(int index) const;
  int IndexOfName(StringView name) const;  // the first line with that name, or -1
  String Values(StringView name) const;    // empty when no line has the name
  String ValueFromIndex(int index) const;  // empty for a negative index
  // Replaces the value of the first line with that name, appends name=value when there is
  // none, and deletes the line when the value is empty.  As on the platform, appending to a
  // sorted list raises EListError (the new line is written with Put).
  void SetValue(StringView name, StringView value);

  // Every line followed by CR LF, the last one too, as the platform gave it.
  String Text() const;
  // Clears the list and adds the lines of the text: a line ends at CR LF, LF or CR; a final
  // line break does not start another line.  The text ends at its first NUL character.
  void SetText(StringView text);

  // The lines separated by Delimiter.  A line that contains the delimiter or the quote
  // character (or, unless StrictDelimiter, a space or a control character) is quoted with
  // QuoteChar, quotes inside doubled.  A list of one empty line gives two quote characters.
  String DelimitedText() const;
  // Clears the list and adds the parts of the text.  Unless StrictDelimiter, blanks (spaces
  // and control characters) outside quotes also separate parts and blanks around parts are
  // dropped; a delimiter at the very end adds an empty part.
  void SetDelimitedText(StringView text);
  // DelimitedText with "," as delimiter, '"' as quote character and StrictDelimiter off,
  // whatever the list's own settings are.
  String CommaText() const;
  void SetCommaText(StringView text);

  char16_t Delimiter() const noexcept { return delimiter_; }
  void SetDelimiter(char16_t delimiter) noexcept { delimiter_ = delimiter; }
  char16_t QuoteChar() const noexcept { return quote_char_; }
  void SetQuoteChar(char16_t quote_char) noexcept { quote_char_ = quote_char; }
  bool StrictDelimiter() const noexcept { return strict_delimiter_; }
  void SetStrictDelimiter(bool strict) noexcept { strict_delimiter_ = strict; }

  // Replaces the lines with those of a text file.  A file starting with a byte-order mark is
  // read as UTF-8 (EF BB BF), UTF-16 LE (FF FE) or UTF-16 BE (FE FF); any other file as
  // Windows-1250.  A file that cannot be opened or read raises EFOpenError
  // "Cannot open file "<name>". <reason>".
  void LoadFromFile(const String& file_name);
  // Writes Text (lines ended with CR LF): Windows-1250, characters it lacks becoming '?', or
  // UTF-8 preceded by its byte-order mark so that LoadFromFile recognises it.  A file that
  // cannot be created raises EFOpenError "Cannot create file "<name>". <reason>"; a failed
  // write raises EWriteError "Stream write error".
  void SaveToFile(const String& file_name, TTextEncoding encoding = TTextEncoding::Win1250) const;

 private:
  struct Item {
    String Line;
    void* Object;
  };

  void CheckIndex(int index) const;
  void CheckNotSorted() const;
  int CompareStrings(StringView a, StringView b) const;
  String JoinDelimited(char16_t delimiter, char16_t quote, bool strict) const;
  void SplitDelimited(StringView text, char16_t delimiter, char16_t quote, bool strict);

  std::vector<Item> items_;
  bool sorted_ = false;
  bool case_sensitive_ = false;
  TDuplicates duplicates_ = TDuplicates::Ignore;
  char16_t delimiter_ = u',';
  char16_t quote_char_ = u'"';
  bool strict_delimiter_ = false;
};

// The platform's abstract "TStrings" parameters take this list.
using TStrings = TStringList;

}  // namespace veska
