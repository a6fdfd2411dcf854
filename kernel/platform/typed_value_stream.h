// The typed-value encoding of the component-stream form, with its reader and writer.
//
// Every value begins with a one-byte tag (TValueType); multi-byte numbers are little-endian.
// Lists are a list-begin tag, values, and a null tag.  Model files are sequences of such values
// after a 4-byte raw signature, and elements load and save their published properties through
// the same reader and writer.
//
// Input is untrusted: every length found in the data is checked against the bytes left in the
// stream before anything is allocated or read, every read stays inside the buffer, nesting is
// limited, and every failure is an EReadError whose text names what was wanted and where.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kernel/platform/streams.h"
#include "kernel/platform/string.h"

namespace veska {

enum class TValueType : uint8_t {
  vaNull,        // 0  null; the end of a list
  vaList,        // 1  list begin
  vaInt8,        // 2  signed 8-bit integer
  vaInt16,       // 3  signed 16-bit integer
  vaInt32,       // 4  signed 32-bit integer
  vaExtended,    // 5  10-byte x87 extended-precision float
  vaString,      // 6  8-bit Windows-1250 string, 1-byte length
  vaIdent,       // 7  identifier, 1-byte length
  vaFalse,       // 8
  vaTrue,        // 9
  vaBinary,      // 10 4-byte length and raw bytes
  vaSet,         // 11 identifiers as raw short strings, ended by an empty one
  vaLString,     // 12 8-bit Windows-1250 string, 4-byte length
  vaNil,         // 13
  vaCollection,  // 14 items, each an optional integer order and a list of named properties
  vaSingle,      // 15 4-byte IEEE float
  vaCurrency,    // 16 int64 scaled by 10000
  vaDate,        // 17 8-byte IEEE double (a TDateTime)
  vaWString,     // 18 UTF-16 string, 4-byte length in code units
  vaInt64,       // 19 signed 64-bit integer
  vaUTF8String,  // 20 UTF-8 string, 4-byte length in bytes
  vaDouble,      // 21 8-byte IEEE double
};

// The 10-byte x87 extended-precision layout: 64-bit significand with an explicit integer bit,
// then the sign bit over a 15-bit exponent biased by 16383, little-endian.  Converted by hand,
// so nothing depends on what long double is on the build machine.
using TExtendedBytes = std::array<std::byte, 10>;
// Exact for every finite double, infinities and NaN (sign and payload kept).
TExtendedBytes DoubleToExtended(double value);
// Rounded to nearest, ties to even.  Magnitudes beyond double's range become infinities, those
// below its smallest denormal become zeros; NaNs stay NaNs.
double ExtendedToDouble(const TExtendedBytes& bytes);

class TReader {
 public:
  static constexpr std::size_t kDefaultBufferSize = 4096;
  // Lists, sets and collections nested deeper than this are refused by SkipValue.
  static constexpr int kMaxNesting = 256;

  // Reads from the stream's current position.  The reader does not own the stream, and takes
  // the stream's size once, here: the stream must not change while the reader reads it.
  explicit TReader(TStream& stream, std::size_t buffer_size = kDefaultBufferSize);
  // Leaves the stream positioned just after the last value read, not after the buffered bytes.
  ~TReader();
  TReader(const TReader&) = delete;
  TReader& operator=(const TReader&) = delete;

  // The logical position in the stream: the byte after the last one read.
  int64_t Position() const { return buffer_origin_ + static_cast<int64_t>(buffer_pos_); }

  // Four raw bytes with no tag, such as "VSK0" or "TPF0".
  std::string ReadSignature();

  // The tag of the next value, consumed (ReadValue) or left in place (NextValue).
  TValueType ReadValue();
  TValueType NextValue();

  void ReadListBegin();
  void ReadListEnd();
  // Whether the next value is the end of the list; nothing is consumed.
  bool EndOfList();

  // Integer tags 2-4; a 64-bit integer only when its value fits in 32 bits.
  int32_t ReadInteger();
  // Integer tags 2-4 and 19.
  int64_t ReadInt64();
  // Any numeric tag: extended, single, double, date, currency and the integer tags.
  double ReadFloat();
  // String tags 6, 12, 18, 20 and the identifier tag 7; 8-bit text is Windows-1250.
  String ReadString();
  // A string of at most one character; the empty string gives character 0.
  char16_t ReadChar();
  bool ReadBoolean();
  // An identifier; the tags false, true, nil and null give "False", "True", "nil" and "Null".
  String ReadIdent();
  // Skips one value of any kind, nested values included.
  void SkipValue();

 private:
  // Forgets the consumed buffer; only called when all of it is consumed.
  void DropBuffer();
  // Refills the consumed buffer from the stream; an empty buffer afterwards means the end.
  void Fill();
  // EReadError unless count more bytes are left in the stream.
  void Require(int64_t count);
  void ReadBytes(std::span<std::byte> target);
  void SkipBytes(int64_t count);
  uint64_t ReadUnsigned(std::size_t byte_count);
  uint32_t ReadLength32() { return static_cast<uint32_t>(ReadUnsigned(4)); }
  std::string ReadByteString(int64_t length);
  // The payload of an integer tag, or nothing for any other tag.
  std::optional<int64_t> ReadIntegerPayload(TValueType tag);
  String ReadStringValue(StringView expected);
  [[noreturn]] void UnexpectedTag(TValueType tag, int64_t tag_position, StringView expected) const;
  void SkipValueAt(int depth);
  void SkipShortString() { SkipBytes(ReadUnsigned(1)); }

  TStream& stream_;
  int64_t stream_size_;
  std::vector<std::byte> buffer_;
  // The stream position of buffer_[0]; the stream itself stands at buffer_origin_ + buffer_end_.
  int64_t buffer_origin_;
  std::size_t buffer_pos_ = 0;
  std::size_t buffer_end_ = 0;
};

class TWriter {
 public:
  static constexpr std::size_t kDefaultBufferSize = 4096;

  // Writes at the stream's current position.  The writer does not own the stream.
  explicit TWriter(TStream& stream, std::size_t buffer_size = kDefaultBufferSize);
  // Flushes.  A failure cannot leave a destructor: it is shown through the message sink.
  ~TWriter();
  TWriter(const TWriter&) = delete;
  TWriter& operator=(const TWriter&) = delete;

  // The logical position: where the next value goes, buffered bytes included.
  int64_t Position() const { return stream_origin_ + static_cast<int64_t>(buffer_.size()); }
  // Hands the buffered bytes to the stream.
  void FlushBuffer();

  // Four raw bytes with no tag; EWriteError for any other length.
  void WriteSignature(std::string_view signature);
  void WriteListBegin();
  void WriteListEnd();
  // The smallest of the 8-, 16- and 32-bit tags, or the 64-bit tag when 32 bits do not hold it.
  void WriteInteger(int64_t value);
  // Always the 64-bit tag.
  void WriteInt64(int64_t value);
  // As a 10-byte extended float; every double reads back exactly.
  void WriteFloat(double value);
  // Text that Windows-1250 represents exactly goes as an 8-bit string (1-byte length up to 255
  // bytes, 4-byte length beyond); any other text goes as a UTF-16 string.
  void WriteString(StringView text);
  void WriteWideString(StringView text);
  // Unpaired surrogates become U+FFFD.
  void WriteUTF8String(StringView text);
  // A string of one character, chosen as WriteString chooses.
  void WriteChar(char16_t c);
  void WriteBoolean(bool value);
  // "False", "True", "nil" and "Null" in any letter case become their own tags, as the platform
  // did; any other identifier is written as 8-bit text of at most 255 bytes (EWriteError beyond).
  void WriteIdent(StringView ident);

 private:
  void WriteValue(TValueType tag) { WriteBytes(std::as_bytes(std::span(&tag, 1))); }
  void WriteBytes(std::span<const std::byte> bytes);
  void WriteUnsigned(uint64_t value, std::size_t byte_count);
  // A tag and its 4-byte length; EWriteError, with nothing written, when the length exceeds what
  // a signed 32-bit length can say.
  void WriteTaggedLength32(TValueType tag, std::size_t length);
  // A 1-byte length and the bytes; the caller has checked the length.
  void WriteShortBytes(std::string_view bytes);

  TStream& stream_;
  std::size_t buffer_limit_;
  std::vector<std::byte> buffer_;
  // The stream position of the first buffered byte.
  int64_t stream_origin_;
};

}  // namespace veska
