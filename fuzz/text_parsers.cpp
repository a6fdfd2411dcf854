// Feeds arbitrary text to the text parsers: whole numbers, floats, date-times in the locale and
// ISO 8601 forms, code-page detection and conversion, UTF-8, the line and parameter readers, and
// the key lists of the sorting tool, which then sorts a few elements by them.
#include <string>

#include "fuzz/fuzz_input.h"
#include "kernel/platform/date_time.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/float_text.h"
#include "kernel/text/code_page.h"
#include "kernel/text/line_reader.h"
#include "kernel/text/parameter_reader.h"
#include "kernel/text/string_numbers.h"
#include "kernel/tools/sort_elements.h"

namespace veska {
namespace {

void Numbers(const String& text) {
  (void)TryStrToInt64(text);
  (void)TryStrToLongInt(text);
  (void)StringToInteger(text);
  (void)StringIntSum(text);
  (void)RomeToInteger(text);
  (void)StringIsFloat(text);
  double value = 0;
  (void)TryStrToFloat(text, value);
  try {
    (void)StrToExtended(text);
  } catch (const Exception&) {
  }
}

void DateTimes(const String& text) {
  TDateTime value = 0;
  (void)TryStrToDate(text, value);
  (void)TryStrToTime(text, value);
  if (TryStrToDateTime(text, value)) (void)FormatDateTime(u"dddd d. mmmm yyyy hh:nn:ss.zzz ampm", value);
  (void)TryISO8601ToDate(text, value, true);
  (void)TryISO8601ToDate(text, value, false);
  (void)FormatDateTime(text, 45000.5);  // the text as a pattern
}

void CodePages(std::string_view bytes) {
  (void)cp_GetCodePage(bytes);
  (void)cp852ToWin(bytes);
  (void)_8859_2ToWin(bytes);
  (void)WinTo852(bytes);
  (void)WinToKAM(bytes);
  (void)WinToIBM(bytes);
  (void)WinTo_8859_2(bytes);
  (void)WinTo_UTF8(FromWin1250(bytes));
  (void)ToUtf8(FromUtf8(bytes));
}

void Readers(const String& text) {
  TCtiRadekClass line(text);
  while (!line.KonecRadku()) {
    const std::size_t before = line.Pozice();
    (void)line.DejInteger();
    (void)line.DejReal();
    (void)line.DejBoolean();
    (void)line.DejStringMeziApostrofy();
    (void)line.DejString();
    if (line.Pozice() == before) line.JdiNa(before + 1);
  }
  TCteniParametru parameters(text);
  while (parameters.DejRadek()) {
    (void)parameters.DejRealParametr();
    (void)parameters.DejBooleanParametr(u"a");
  }
}

void SortKeys(const String& text) {
  TEntity elements;
  for (StringView value : {u"2", u"x", u"1,5", u"-3"}) {
    auto* element = new TStringEntity;
    element->Value = String(value);
    element->SetName(String(value));
    elements.AddElement(element);
  }
  TSortElementsEx sorter;
  sorter.SetPropertyName(text);
  sorter.SetInput(&elements);
  sorter.DoIt();
}

}  // namespace
}  // namespace veska

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace veska;
  fuzz::FuzzInput input(data, size);
  switch (input.Choose(5)) {
    case 0:
      Numbers(input.RestAsString());
      break;
    case 1:
      DateTimes(input.RestAsString());
      break;
    case 2:
      CodePages(input.RestAsText());
      break;
    case 3:
      SortKeys(input.RestAsString());
      break;
    default:
      Readers(input.RestAsString());
      break;
  }
  return 0;
}
