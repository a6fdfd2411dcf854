#include "kernel/platform/typed_value_stream.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <utility>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"

namespace veska {
namespace {

constexpr uint64_t kIntegerBit = uint64_t{1} << 63;  // explicit integer bit of an extended
constexpr uint64_t kDoubleFractionMask = (uint64_t{1} << 52) - 1;
constexpr uint64_t kDoubleExponentMask = uint64_t{0x7FF} << 52;
constexpr uint64_t kDoubleQuietBit = uint64_t{1} << 51;
constexpr int kExtendedBias = 16383;
constexpr int kDoubleBias = 1023;
constexpr int kSmallestDenormalExponent = -1074;  // a double denormal is a multiple of 2^-1074
constexpr int kExtendedMaxExponent = 0x7FFF;
constexpr unsigned kLargestTag = static_cast<unsigned>(TValueType::vaDouble);

uint64_t LoadLittleEndian(std::span<const std::byte> bytes) {
  uint64_t value = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) value = (value << 8) | std::to_integer<uint64_t>(bytes[i]);
  return value;
}

void StoreLittleEndian(std::span<std::byte> bytes, uint64_t value) {
  for (std::byte& b : bytes) {
    b = static_cast<std::byte>(value & 0xFF);
    value >>= 8;
  }
}

// value / 2^shift rounded to nearest, ties to even; shift is 1..64.
uint64_t RoundingShiftRight(uint64_t value, int shift) {
  const uint64_t kept = shift == 64 ? 0 : value >> shift;
  const uint64_t rest = shift == 64 ? value : value & ((uint64_t{1} << shift) - 1);
  const uint64_t half = uint64_t{1} << (shift - 1);
  return (rest > half || (rest == half && (kept & 1) != 0)) ? kept + 1 : kept;
}

[[noreturn]] void ThrowShortRead(int64_t wanted, int64_t position, int64_t left) {
  throw EReadError(ReadShortfallText(wanted, position, left));
}

}  // namespace

// ------------------------------------------------------------------------- extended floats

TExtendedBytes DoubleToExtended(double value) {
  const auto bits = std::bit_cast<uint64_t>(value);
  const int exponent = static_cast<int>((bits & kDoubleExponentMask) >> 52);
  const uint64_t fraction = bits & kDoubleFractionMask;
  uint64_t significand = 0;
  int biased = 0;
  if (exponent == 0x7FF) {  // infinity, or NaN with its payload and quiet bit moved up
    biased = kExtendedMaxExponent;
    significand = kIntegerBit | (fraction << 11);
  } else if (exponent != 0) {
    biased = exponent - kDoubleBias + kExtendedBias;
    significand = kIntegerBit | (fraction << 11);
  } else if (fraction != 0) {  // a double denormal is a normal extended
    const int shift = std::countl_zero(fraction);
    significand = fraction << shift;
    biased = kExtendedBias + 63 + kSmallestDenormalExponent - shift;
  }
  TExtendedBytes result{};
  StoreLittleEndian(std::span(result).first<8>(), significand);
  StoreLittleEndian(std::span(result).last<2>(), static_cast<uint64_t>(biased) | ((bits >> 63) << 15));
  return result;
}

double ExtendedToDouble(const TExtendedBytes& bytes) {
  uint64_t significand = LoadLittleEndian(std::span(bytes).first<8>());
  const uint64_t sign_exponent = LoadLittleEndian(std::span(bytes).last<2>());
  const uint64_t sign = (sign_exponent >> 15) << 63;
  const int biased = static_cast<int>(sign_exponent & 0x7FFF);
  const double infinity = std::bit_cast<double>(sign | kDoubleExponentMask);

  if (biased == kExtendedMaxExponent) {
    const uint64_t fraction = significand & ~kIntegerBit;
    if (fraction == 0) return infinity;
    return std::bit_cast<double>(sign | kDoubleExponentMask | kDoubleQuietBit | (fraction >> 11));
  }
  if (significand == 0) return std::bit_cast<double>(sign);

  // The value is significand * 2^(e - 63) with e = max(biased, 1) - bias; the smallest exponent
  // also serves the extended denormals.  Normalise so that the leading one is bit 63.
  const int leading_zeros = std::countl_zero(significand);
  significand <<= leading_zeros;
  int exponent = std::max(biased, 1) - kExtendedBias - leading_zeros;  // exponent of the leading one
  if (exponent > kDoubleBias) return infinity;

  if (exponent >= 1 - kDoubleBias) {
    uint64_t mantissa = RoundingShiftRight(significand, 11);  // 53 bits, leading one included
    if (mantissa >> 53 != 0) {                                // rounding carried into a new power of two
      mantissa >>= 1;
      if (++exponent > kDoubleBias) return infinity;
    }
    return std::bit_cast<double>(sign | (static_cast<uint64_t>(exponent + kDoubleBias) << 52) |
                                 (mantissa & kDoubleFractionMask));
  }
  // A double denormal: a multiple of 2^-1074.  A carry out of the 52 fraction bits lands exactly
  // on the smallest normal's encoding.
  const int shift = 63 + kSmallestDenormalExponent - exponent;
  if (shift > 64) return std::bit_cast<double>(sign);
  return std::bit_cast<double>(sign | RoundingShiftRight(significand, shift));
}

// ----------------------------------------------------------------------------------- TReader

TReader::TReader(TStream& stream, std::size_t buffer_size)
    : stream_(stream),
      stream_size_(stream.Size()),
      buffer_(std::max<std::size_t>(buffer_size, 1)),
      buffer_origin_(stream.Position()) {}

TReader::~TReader() {
  try {
    stream_.SetPosition(Position());
  } catch (const Exception& error) {
    ShowMessage(error.Message(), MessageKind::Error);
  } catch (...) {
    // A destructor must not throw; the stream is left wherever it stands.
  }
}

void TReader::DropBuffer() {
  buffer_origin_ = Position();
  buffer_pos_ = 0;
  buffer_end_ = 0;
}

void TReader::Fill() {
  DropBuffer();
  buffer_end_ = stream_.Read(buffer_);
}

void TReader::Require(int64_t count) {
  const int64_t left = std::max<int64_t>(0, stream_size_ - Position());
  if (count > left) ThrowShortRead(count, Position(), left);
}

void TReader::ReadBytes(std::span<std::byte> target) {
  Require(static_cast<int64_t>(target.size()));
  while (!target.empty()) {
    if (buffer_pos_ == buffer_end_) {
      if (target.size() >= buffer_.size()) {  // large reads bypass the buffer
        DropBuffer();
        const std::size_t read = stream_.Read(target);
        buffer_origin_ += static_cast<int64_t>(read);
        if (read == 0) ThrowShortRead(static_cast<int64_t>(target.size()), Position(), 0);
        target = target.subspan(read);
        continue;
      }
      Fill();
      if (buffer_end_ == 0) ThrowShortRead(static_cast<int64_t>(target.size()), Position(), 0);
    }
    const std::size_t count = std::min(target.size(), buffer_end_ - buffer_pos_);
    std::memcpy(target.data(), buffer_.data() + buffer_pos_, count);
    buffer_pos_ += count;
    target = target.subspan(count);
  }
}

void TReader::SkipBytes(int64_t count) {
  Require(count);
  const auto buffered = static_cast<int64_t>(buffer_end_ - buffer_pos_);
  if (count <= buffered) {
    buffer_pos_ += static_cast<std::size_t>(count);
    return;
  }
  const int64_t target = Position() + count;
  stream_.SetPosition(target);
  DropBuffer();
  buffer_origin_ = target;
}

uint64_t TReader::ReadUnsigned(std::size_t byte_count) {
  std::array<std::byte, 8> raw{};
  const auto bytes = std::span(raw).first(byte_count);
  ReadBytes(bytes);
  return LoadLittleEndian(bytes);
}

std::string TReader::ReadByteString(int64_t length) {
  Require(length);  // before the allocation: the length comes from the data
  std::string bytes(static_cast<std::size_t>(length), '\0');
  ReadBytes(std::as_writable_bytes(std::span(bytes)));
  return bytes;
}

[[noreturn]] void TReader::UnexpectedTag(TValueType tag, int64_t tag_position, StringView expected) const {
  throw EReadError(u"Unexpected value tag " + IntToStr(static_cast<int>(tag)) + u" where " + String(expected) +
                   u" was expected at position " + IntToStr(tag_position));
}

std::string TReader::ReadSignature() { return ReadByteString(4); }

TValueType TReader::NextValue() {
  if (buffer_pos_ == buffer_end_) {
    Require(1);
    Fill();
    if (buffer_end_ == 0) ThrowShortRead(1, Position(), 0);
  }
  const auto tag = std::to_integer<unsigned>(buffer_[buffer_pos_]);
  if (tag > kLargestTag) {
    throw EReadError(u"Invalid value tag " + IntToStr(tag) + u" at position " + IntToStr(Position()));
  }
  return static_cast<TValueType>(tag);
}

TValueType TReader::ReadValue() {
  const TValueType tag = NextValue();
  ++buffer_pos_;
  return tag;
}

void TReader::ReadListBegin() {
  const int64_t at = Position();
  if (const TValueType tag = ReadValue(); tag != TValueType::vaList) UnexpectedTag(tag, at, u"list begin");
}

void TReader::ReadListEnd() {
  const int64_t at = Position();
  if (const TValueType tag = ReadValue(); tag != TValueType::vaNull) UnexpectedTag(tag, at, u"end of list");
}

bool TReader::EndOfList() { return NextValue() == TValueType::vaNull; }

std::optional<int64_t> TReader::ReadIntegerPayload(TValueType tag) {
  switch (tag) {
    case TValueType::vaInt8:
      return static_cast<int8_t>(ReadUnsigned(1));
    case TValueType::vaInt16:
      return static_cast<int16_t>(ReadUnsigned(2));
    case TValueType::vaInt32:
      return static_cast<int32_t>(ReadUnsigned(4));
    case TValueType::vaInt64:
      return static_cast<int64_t>(ReadUnsigned(8));
    default:
      return std::nullopt;
  }
}

int32_t TReader::ReadInteger() {
  const int64_t at = Position();
  const TValueType tag = ReadValue();
  const std::optional<int64_t> value = ReadIntegerPayload(tag);
  if (!value) UnexpectedTag(tag, at, u"an integer");
  if (!std::in_range<int32_t>(*value)) {
    throw EReadError(u"Integer " + IntToStr(*value) + u" does not fit in 32 bits at position " + IntToStr(at));
  }
  return static_cast<int32_t>(*value);
}

int64_t TReader::ReadInt64() {
  const int64_t at = Position();
  const TValueType tag = ReadValue();
  const std::optional<int64_t> value = ReadIntegerPayload(tag);
  if (!value) UnexpectedTag(tag, at, u"an integer");
  return *value;
}

double TReader::ReadFloat() {
  const int64_t at = Position();
  const TValueType tag = ReadValue();
  switch (tag) {
    case TValueType::vaExtended: {
      TExtendedBytes raw{};
      ReadBytes(raw);
      return ExtendedToDouble(raw);
    }
    case TValueType::vaSingle:
      return std::bit_cast<float>(static_cast<uint32_t>(ReadUnsigned(4)));
    case TValueType::vaDouble:
    case TValueType::vaDate:
      return std::bit_cast<double>(ReadUnsigned(8));
    case TValueType::vaCurrency:
      return static_cast<double>(static_cast<int64_t>(ReadUnsigned(8))) / 10000.0;
    default:
      if (const std::optional<int64_t> value = ReadIntegerPayload(tag)) return static_cast<double>(*value);
      UnexpectedTag(tag, at, u"a float");
  }
}

String TReader::ReadStringValue(StringView expected) {
  const int64_t at = Position();
  const TValueType tag = ReadValue();
  switch (tag) {
    case TValueType::vaString:
    case TValueType::vaIdent:
      return FromWin1250(ReadByteString(static_cast<int64_t>(ReadUnsigned(1))));
    case TValueType::vaLString:
      return FromWin1250(ReadByteString(ReadLength32()));
    case TValueType::vaUTF8String:
      return FromUtf8(ReadByteString(ReadLength32()));
    case TValueType::vaWString: {
      const std::string bytes = ReadByteString(int64_t{ReadLength32()} * 2);
      String text(bytes.size() / 2, u'\0');
      for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                        static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
      }
      return text;
    }
    default:
      UnexpectedTag(tag, at, expected);
  }
}

String TReader::ReadString() { return ReadStringValue(u"a string"); }

char16_t TReader::ReadChar() {
  const int64_t at = Position();
  const String text = ReadStringValue(u"a character");
  if (text.size() > 1) {
    throw EReadError(u"String of " + IntToStr(static_cast<long long>(text.size())) +
                     u" characters where a character was expected at position " + IntToStr(at));
  }
  return text.empty() ? u'\0' : text[0];
}

bool TReader::ReadBoolean() {
  const int64_t at = Position();
  const TValueType tag = ReadValue();
  if (tag != TValueType::vaFalse && tag != TValueType::vaTrue) UnexpectedTag(tag, at, u"a boolean");
  return tag == TValueType::vaTrue;
}

String TReader::ReadIdent() {
  const int64_t at = Position();
  const TValueType tag = ReadValue();
  switch (tag) {
    case TValueType::vaIdent:
      return FromWin1250(ReadByteString(static_cast<int64_t>(ReadUnsigned(1))));
    case TValueType::vaFalse:
      return u"False";
    case TValueType::vaTrue:
      return u"True";
    case TValueType::vaNil:
      return u"nil";
    case TValueType::vaNull:
      return u"Null";
    default:
      UnexpectedTag(tag, at, u"an identifier");
  }
}

void TReader::SkipValue() { SkipValueAt(0); }

// depth counts the lists, sets and collections around the value; recursion stops at kMaxNesting.
void TReader::SkipValueAt(int depth) {
  const int64_t at = Position();
  const auto enter_nested = [&] {
    if (depth >= kMaxNesting) {
      throw EReadError(u"Values nested deeper than " + IntToStr(kMaxNesting) + u" levels at position " + IntToStr(at));
    }
  };
  switch (ReadValue()) {
    case TValueType::vaNull:
    case TValueType::vaFalse:
    case TValueType::vaTrue:
    case TValueType::vaNil:
      return;
    case TValueType::vaInt8:
      return SkipBytes(1);
    case TValueType::vaInt16:
      return SkipBytes(2);
    case TValueType::vaInt32:
    case TValueType::vaSingle:
      return SkipBytes(4);
    case TValueType::vaInt64:
    case TValueType::vaCurrency:
    case TValueType::vaDate:
    case TValueType::vaDouble:
      return SkipBytes(8);
    case TValueType::vaExtended:
      return SkipBytes(10);
    case TValueType::vaString:
    case TValueType::vaIdent:
      return SkipShortString();
    case TValueType::vaBinary:
    case TValueType::vaLString:
    case TValueType::vaUTF8String:
      return SkipBytes(ReadLength32());
    case TValueType::vaWString:
      return SkipBytes(int64_t{ReadLength32()} * 2);
    case TValueType::vaSet:
      // Set members are raw short strings, not tagged values; an empty one ends the set.
      for (uint64_t length = ReadUnsigned(1); length != 0; length = ReadUnsigned(1)) {
        SkipBytes(static_cast<int64_t>(length));
      }
      return;
    case TValueType::vaList:
      enter_nested();
      while (!EndOfList()) SkipValueAt(depth + 1);
      return ReadListEnd();
    case TValueType::vaCollection:
      // Items: an optional integer order, then a list of raw short property names each
      // followed by its value.
      enter_nested();
      while (!EndOfList()) {
        const TValueType next = NextValue();
        if (next == TValueType::vaInt8 || next == TValueType::vaInt16 || next == TValueType::vaInt32) {
          SkipValueAt(depth + 1);
        }
        ReadListBegin();
        while (!EndOfList()) {
          SkipShortString();
          SkipValueAt(depth + 1);
        }
        ReadListEnd();
      }
      return ReadListEnd();
  }
}

// ----------------------------------------------------------------------------------- TWriter

TWriter::TWriter(TStream& stream, std::size_t buffer_size)
    : stream_(stream), buffer_limit_(std::max<std::size_t>(buffer_size, 1)), stream_origin_(stream.Position()) {
  buffer_.reserve(buffer_limit_);
}

TWriter::~TWriter() {
  try {
    try {
      FlushBuffer();
    } catch (const Exception& error) {
      ShowMessage(error.Message(), MessageKind::Error);
    } catch (const std::exception& error) {
      ShowMessage(FromUtf8(error.what()), MessageKind::Error);
    }
  } catch (...) {
    // Nothing is left to report with, and a destructor must not throw.
  }
}

void TWriter::FlushBuffer() {
  if (buffer_.empty()) return;
  // The buffer is handed over once, even when the stream refuses it, so that a failure is
  // reported once and not again by the destructor.
  struct Handover {
    TWriter& writer;
    ~Handover() {
      writer.stream_origin_ += static_cast<int64_t>(writer.buffer_.size());
      writer.buffer_.clear();
    }
  } handover{*this};
  stream_.WriteBuffer(buffer_);
}

void TWriter::WriteBytes(std::span<const std::byte> bytes) {
  if (buffer_.size() + bytes.size() > buffer_limit_) FlushBuffer();
  if (bytes.size() >= buffer_limit_) {  // large writes bypass the buffer
    stream_.WriteBuffer(bytes);
    stream_origin_ += static_cast<int64_t>(bytes.size());
    return;
  }
  buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
}

void TWriter::WriteUnsigned(uint64_t value, std::size_t byte_count) {
  std::array<std::byte, 8> raw{};
  const auto bytes = std::span(raw).first(byte_count);
  StoreLittleEndian(bytes, value);
  WriteBytes(bytes);
}

void TWriter::WriteTaggedLength32(TValueType tag, std::size_t length) {
  if (length > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) {
    throw EWriteError(u"Stream write error: a length of " + IntToStr(static_cast<long long>(length)) +
                      u" does not fit in 31 bits");
  }
  WriteValue(tag);
  WriteUnsigned(length, 4);
}

void TWriter::WriteShortBytes(std::string_view bytes) {
  WriteUnsigned(bytes.size(), 1);
  WriteBytes(std::as_bytes(std::span(bytes)));
}

void TWriter::WriteSignature(std::string_view signature) {
  if (signature.size() != 4) {
    throw EWriteError(u"Stream write error: a signature has 4 bytes, not " +
                      IntToStr(static_cast<long long>(signature.size())));
  }
  WriteBytes(std::as_bytes(std::span(signature)));
}

void TWriter::WriteListBegin() { WriteValue(TValueType::vaList); }

void TWriter::WriteListEnd() { WriteValue(TValueType::vaNull); }

void TWriter::WriteInteger(int64_t value) {
  if (std::in_range<int8_t>(value)) {
    WriteValue(TValueType::vaInt8);
    WriteUnsigned(static_cast<uint64_t>(value), 1);
  } else if (std::in_range<int16_t>(value)) {
    WriteValue(TValueType::vaInt16);
    WriteUnsigned(static_cast<uint64_t>(value), 2);
  } else if (std::in_range<int32_t>(value)) {
    WriteValue(TValueType::vaInt32);
    WriteUnsigned(static_cast<uint64_t>(value), 4);
  } else {
    WriteInt64(value);
  }
}

void TWriter::WriteInt64(int64_t value) {
  WriteValue(TValueType::vaInt64);
  WriteUnsigned(static_cast<uint64_t>(value), 8);
}

void TWriter::WriteFloat(double value) {
  WriteValue(TValueType::vaExtended);
  WriteBytes(DoubleToExtended(value));
}

void TWriter::WriteString(StringView text) {
  const std::optional<std::string> converted = ToWin1250Exactly(text);
  if (!converted) return WriteWideString(text);
  const std::string& bytes = *converted;
  if (bytes.size() <= 255) {
    WriteValue(TValueType::vaString);
    return WriteShortBytes(bytes);
  }
  WriteTaggedLength32(TValueType::vaLString, bytes.size());
  WriteBytes(std::as_bytes(std::span(bytes)));
}

void TWriter::WriteWideString(StringView text) {
  std::vector<std::byte> bytes(text.size() * 2);
  for (std::size_t i = 0; i < text.size(); ++i) StoreLittleEndian(std::span(bytes).subspan(2 * i, 2), text[i]);
  WriteTaggedLength32(TValueType::vaWString, text.size());
  WriteBytes(bytes);
}

void TWriter::WriteUTF8String(StringView text) {
  const std::string bytes = ToUtf8(text);
  WriteTaggedLength32(TValueType::vaUTF8String, bytes.size());
  WriteBytes(std::as_bytes(std::span(bytes)));
}

void TWriter::WriteChar(char16_t c) { WriteString(StringView(&c, 1)); }

void TWriter::WriteBoolean(bool value) { WriteValue(value ? TValueType::vaTrue : TValueType::vaFalse); }

void TWriter::WriteIdent(StringView ident) {
  static constexpr std::pair<StringView, TValueType> kNamedTags[] = {{u"False", TValueType::vaFalse},
                                                                     {u"True", TValueType::vaTrue},
                                                                     {u"nil", TValueType::vaNil},
                                                                     {u"Null", TValueType::vaNull}};
  for (const auto& [name, tag] : kNamedTags) {
    if (SameText(ident, name)) return WriteValue(tag);
  }
  const std::string bytes = ToWin1250(ident);
  if (bytes.size() > 255) {
    throw EWriteError(u"Stream write error: an identifier of " + IntToStr(static_cast<long long>(bytes.size())) +
                      u" characters is longer than 255");
  }
  WriteValue(TValueType::vaIdent);
  WriteShortBytes(bytes);
}

}  // namespace veska
