// UTF-8, UTF-16 and Windows-1250 conversions.  Written by hand rather than through ICU's
// converters because every malformed sequence must become U+FFFD in a defined way and the
// Windows-1250 table must keep its undefined bytes as they are, so that every byte string survives a round trip.
#include <array>
#include <cstdint>

#include "kernel/platform/string.h"

namespace veska {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += char(cp);
  } else if (cp < 0x800) {
    out += char(0xC0 | (cp >> 6));
    out += char(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += char(0xE0 | (cp >> 12));
    out += char(0x80 | ((cp >> 6) & 0x3F));
    out += char(0x80 | (cp & 0x3F));
  } else {
    out += char(0xF0 | (cp >> 18));
    out += char(0x80 | ((cp >> 12) & 0x3F));
    out += char(0x80 | ((cp >> 6) & 0x3F));
    out += char(0x80 | (cp & 0x3F));
  }
}

void AppendUtf16(String& out, char32_t cp) {
  if (cp < 0x10000) {
    out += char16_t(cp);
  } else {
    cp -= 0x10000;
    out += char16_t(0xD800 + (cp >> 10));
    out += char16_t(0xDC00 + (cp & 0x3FF));
  }
}

// Windows-1250 bytes 80..FF as UTF-16.  The undefined bytes 81, 83, 88, 90 and 98 stand for
// the code points of the same number, so that text read from old files converts back to the same bytes.
constexpr std::array<char16_t, 128> kWin1250High = {
    0x20AC, 0x0081, 0x201A, 0x0083, 0x201E, 0x2026, 0x2020, 0x2021,  // 80
    0x0088, 0x2030, 0x0160, 0x2039, 0x015A, 0x0164, 0x017D, 0x0179,  // 88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90
    0x0098, 0x2122, 0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A,  // 98
    0x00A0, 0x02C7, 0x02D8, 0x0141, 0x00A4, 0x0104, 0x00A6, 0x00A7,  // A0
    0x00A8, 0x00A9, 0x015E, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x017B,  // A8
    0x00B0, 0x00B1, 0x02DB, 0x0142, 0x00B4, 0x00B5, 0x00B6, 0x00B7,  // B0
    0x00B8, 0x0105, 0x015F, 0x00BB, 0x013D, 0x02DD, 0x013E, 0x017C,  // B8
    0x0154, 0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0139, 0x0106, 0x00C7,  // C0
    0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E,  // C8
    0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7,  // D0
    0x0158, 0x016E, 0x00DA, 0x0170, 0x00DC, 0x00DD, 0x0162, 0x00DF,  // D8
    0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,  // E0
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F,  // E8
    0x0111, 0x0144, 0x0148, 0x00F3, 0x00F4, 0x0151, 0x00F6, 0x00F7,  // F0
    0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9,  // F8
};

// The byte of one UTF-16 character in Windows-1250, or '?' when the code page lacks it.
char CharToWin1250(char16_t c) {
  if (c < 0x80) return char(c);
  for (std::size_t i = 0; i < kWin1250High.size(); ++i) {
    if (kWin1250High[i] == c) return char(0x80 + i);
  }
  return '?';
}

}  // namespace

std::string ToUtf8(StringView text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      ++i;
    } else if (IsHighSurrogate(c) || IsLowSurrogate(c)) {
      c = kReplacement;
    }
    AppendUtf8(out, c);
  }
  return out;
}

String FromUtf8(std::string_view utf8) {
  String out;
  out.reserve(utf8.size());
  std::size_t i = 0;
  while (i < utf8.size()) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    int length = 0;
    char32_t cp = 0;
    char32_t minimum = 0;
    if (lead < 0x80) {
      out += char16_t(lead);
      ++i;
      continue;
    } else if ((lead & 0xE0) == 0xC0) {
      length = 2, cp = lead & 0x1F, minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
      length = 3, cp = lead & 0x0F, minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
      length = 4, cp = lead & 0x07, minimum = 0x10000;
    } else {
      out += kReplacement;  // a stray continuation byte or an invalid lead byte
      ++i;
      continue;
    }
    // Take continuation bytes while they come; a short sequence is replaced as a whole
    // and the byte that broke it is read again as the start of the next one.
    int taken = 1;
    while (taken < length && i + taken < utf8.size() && (static_cast<unsigned char>(utf8[i + taken]) & 0xC0) == 0x80) {
      cp = (cp << 6) | (static_cast<unsigned char>(utf8[i + taken]) & 0x3F);
      ++taken;
    }
    i += taken;
    if (taken < length || cp < minimum || cp > 0x10FFFF || IsHighSurrogate(cp) || IsLowSurrogate(cp)) {
      out += kReplacement;
    } else {
      AppendUtf16(out, cp);
    }
  }
  return out;
}

char16_t Win1250ToChar(unsigned char byte) { return byte < 0x80 ? char16_t(byte) : kWin1250High[byte - 0x80]; }

String FromWin1250(std::string_view bytes) {
  String out;
  out.reserve(bytes.size());
  for (char b : bytes) out += Win1250ToChar(static_cast<unsigned char>(b));
  return out;
}

std::string ToWin1250(StringView text) {
  std::string out;
  out.reserve(text.size());
  for (char16_t c : text) out += CharToWin1250(c);
  return out;
}

String IntToStr(long long value) {
  const std::string digits = std::to_string(value);
  return String(digits.begin(), digits.end());
}

}  // namespace veska
