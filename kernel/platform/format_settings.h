// The one record that decides the "locale" text forms of numbers, dates and times.
//
// The original took these from the operating system's regional settings.  A library must give
// the same text on every machine, so the record starts with fixed defaults, modelled on the
// Czech regional settings the system was made for, except for the decimal separator, which is
// the dot so that numbers written by the library read back anywhere.  Applications may change
// the record; nothing reads the machine's locale.
#pragma once

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
};

// The process-wide settings that the locale-dependent conversions use.
inline TFormatSettings FormatSettings;

}  // namespace veska
