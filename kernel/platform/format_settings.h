// The one record that decides the "locale" text forms of numbers, dates and times.
//
// A desktop program takes these from the regional settings of the machine.  A library must give
// the same text on every machine, so the record starts with fixed defaults, modelled on the
// Czech regional settings the system was made for, except for the decimal separator, which is
// the dot so that numbers written by the library read back anywhere.  Applications may change
// the record; nothing reads the machine's locale.
#pragma once

#include <array>

#include "kernel/platform/string.h"

namespace veska {

struct TFormatSettings {
  char16_t DecimalSeparator = u'.';
  char16_t ThousandSeparator = u' ';
  char16_t DateSeparator = u'.';
  char16_t TimeSeparator = u':';
  // Format patterns in the platform's notation: d/dd day, m/mm month, yy/yyyy year,
  // h/hh hour, n/nn minute, s/ss second, z/zzz millisecond.
  String ShortDateFormat = u"d.m.yyyy";
  String LongTimeFormat = u"h:nn:ss";
  String ShortTimeFormat = u"h:nn";
  // Names for the pattern letters ddd, dddd (Sunday first, as the platform counted) and mmm, mmmm.
  std::array<String, 7> ShortDayNames{u"ne", u"po", u"út", u"st", u"čt", u"pá", u"so"};
  std::array<String, 7> LongDayNames{u"neděle", u"pondělí", u"úterý", u"středa", u"čtvrtek", u"pátek", u"sobota"};
  std::array<String, 12> ShortMonthNames{u"led", u"úno", u"bře", u"dub", u"kvě", u"čvn",
                                         u"čvc", u"srp", u"zář", u"říj", u"lis", u"pro"};
  std::array<String, 12> LongMonthNames{u"leden",    u"únor",  u"březen", u"duben", u"květen",   u"červen",
                                        u"červenec", u"srpen", u"září",   u"říjen", u"listopad", u"prosinec"};
  // Words of the pattern letters ampm.
  String TimeAMString = u"dop.";
  String TimePMString = u"odp.";
  // A year read with one or two digits falls into the hundred years that start this many years
  // before the current year.
  int TwoDigitYearCenturyWindow = 50;
};

// The process-wide settings that the locale-dependent conversions use.  Set at start-up, before
// other threads run; afterwards read by every thread and changed by none.
inline TFormatSettings FormatSettings;

}  // namespace veska
