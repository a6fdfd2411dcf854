// UTF-8, UTF-16 and Windows-1250 conversions.  UTF-8 goes through ICU, which replaces every
// ill-formed sequence by U+FFFD as the Unicode standard recommends (one per maximal subpart:
// "ED A0 80", an encoded surrogate, gives three).  The Windows-1250 table is our own, because it
// must keep the undefined bytes as they are, so that every byte string survives a round trip.
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "kernel/platform/string.h"

namespace veska {
namespace {

constexpr UChar32 kReplacement = 0xFFFD;

// ICU counts in 32-bit lengths; longer texts are converted in pieces that end on a whole
// character.
constexpr std::size_t kPiece = std::size_t{1} << 28;

bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsUtf8Continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

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

// The byte of one UTF-16 character in Windows-1250; none when the code page lacks it.
std::optional<char> CharToWin1250(char16_t c) {
  if (c < 0x80) return char(c);
  for (std::size_t i = 0; i < kWin1250High.size(); ++i) {
    if (kWin1250High[i] == c) return char(0x80 + i);
  }
  return std::nullopt;
}

}  // namespace

std::string ToUtf8(StringView text) {
  std::string out;
  while (!text.empty()) {
    std::size_t length = std::min(text.size(), kPiece);
    if (length < text.size() && IsHighSurrogate(text[length - 1])) --length;
    const std::size_t start = out.size();
    out.resize(start + 3 * length);  // three bytes at most for each UTF-16 unit
    int32_t written = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(out.data() + start, static_cast<int32_t>(3 * length), &written, text.data(),
                       static_cast<int32_t>(length), kReplacement, nullptr, &status);
    out.resize(start + (U_SUCCESS(status) ? static_cast<std::size_t>(written) : 0));
    text.remove_prefix(length);
  }
  return out;
}

String FromUtf8(std::string_view utf8) {
  String out;
  while (!utf8.empty()) {
    std::size_t length = std::min(utf8.size(), kPiece);
    // A piece ends before the lead byte of a sequence that the next piece continues.
    for (std::size_t back = 0; length < utf8.size() && back < 3 && IsUtf8Continuation(utf8[length]); ++back) {
      --length;
    }
    const std::size_t start = out.size();
    out.resize(start + length);  // one UTF-16 unit at most for each byte
    int32_t written = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(out.data() + start, static_cast<int32_t>(length), &written, utf8.data(),
                         static_cast<int32_t>(length), kReplacement, nullptr, &status);
    out.resize(start + (U_SUCCESS(status) ? static_cast<std::size_t>(written) : 0));
    utf8.remove_prefix(length);
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
  for (char16_t c : text) out += CharToWin1250(c).value_or('?');
  return out;
}

std::optional<std::string> ToWin1250Exactly(StringView text) {
  std::string out(text.size(), '\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::optional<char> byte = CharToWin1250(text[i]);
    if (!byte) return std::nullopt;
    out[i] = *byte;
  }
  return out;
}

String IntToStr(long long value) {
  const std::string digits = std::to_string(value);
  return String(digits.begin(), digits.end());
}

}  // namespace veska
