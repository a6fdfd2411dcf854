#include "kernel/platform/typed_value_stream.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <tuple>
#include <vector>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"

namespace veska {
namespace {

using Bytes = std::vector<uint8_t>;
using ReaderAction = std::function<void(TReader&)>;

std::span<const std::byte> Raw(const Bytes& bytes) { return std::as_bytes(std::span(bytes)); }

Bytes Written(const std::function<void(TWriter&)>& write, std::size_t buffer_size = 64) {
  TMemoryStream stream;
  TWriter writer(stream, buffer_size);
  write(writer);
  writer.FlushBuffer();
  const auto* memory = reinterpret_cast<const uint8_t*>(stream.Memory().data());
  return Bytes(memory, memory + stream.Memory().size());
}

TExtendedBytes Extended(const Bytes& bytes) {
  TExtendedBytes result{};
  for (std::size_t i = 0; i < result.size(); ++i) result[i] = std::byte{bytes.at(i)};
  return result;
}

String ReadErrorOf(const Bytes& bytes, const ReaderAction& read) {
  TMemoryStream stream(Raw(bytes));
  TReader reader(stream);
  try {
    read(reader);
  } catch (const EReadError& error) {
    return error.Message();
  }
  return u"(no error)";
}

const String kCzech = u"Příliš žluťoučký kůň";
const String kBeyond1250 = u"ω and 中 \U0001F600";
const String kLongCzech(300, u'ř');  // a long string, and longer than the buffers of both sides

// Every writer method once, and nested lists that only SkipValue meets.
void WriteMixed(TWriter& w) {
  w.WriteSignature("TPF0");
  w.WriteListBegin();
  for (int64_t value : {int64_t{0}, int64_t{-1}, int64_t{300}, int64_t{-70000}, int64_t{1} << 40})
    w.WriteInteger(value);
  w.WriteInt64(std::numeric_limits<int64_t>::min());
  for (double value : {-2.5, 0.1}) w.WriteFloat(value);
  for (const String& text : {kCzech, kLongCzech, kBeyond1250}) w.WriteString(text);
  w.WriteWideString(kCzech);
  w.WriteUTF8String(kBeyond1250);
  for (char16_t letter : {u'č', u'\0'}) w.WriteChar(letter);
  w.WriteBoolean(true);
  w.WriteIdent(u"Name");
  for (int i = 0; i < 2; ++i) w.WriteListBegin();
  for (int i = 0; i < 3; ++i) w.WriteListEnd();
  w.WriteIdent(u"null");  // behind the list: its tag ends a list
}

void ReadMixed(TReader& reader) {
  EXPECT_EQ(reader.ReadSignature(), "TPF0");
  reader.ReadListBegin();
  for (int32_t expected : {0, -1}) EXPECT_EQ(reader.ReadInteger(), expected);
  EXPECT_EQ(reader.ReadInt64(), 300);
  EXPECT_EQ(reader.ReadFloat(), -70000.0);
  EXPECT_EQ(reader.ReadInt64(), int64_t{1} << 40);
  EXPECT_EQ(reader.ReadInt64(), std::numeric_limits<int64_t>::min());
  for (double expected : {-2.5, 0.1}) EXPECT_EQ(reader.ReadFloat(), expected);
  for (const String& text : {kCzech, kLongCzech, kBeyond1250, kCzech, kBeyond1250})
    EXPECT_EQ(reader.ReadString(), text);
  for (char16_t expected : {u'č', u'\0'}) EXPECT_EQ(reader.ReadChar(), expected);
  EXPECT_TRUE(reader.ReadBoolean());
  EXPECT_EQ(reader.ReadIdent(), u"Name");
  reader.SkipValue();
  reader.ReadListEnd();
  EXPECT_TRUE(reader.EndOfList());  // "Null" was written as the null tag, as the platform did
  EXPECT_EQ(reader.ReadIdent(), u"Null");
}

TEST(TypedValueStream, ValuesTakeTheSmallestTagEveryWriterMethodRoundTripsAndTruncationAtEveryByteRaisesReadError) {
  EXPECT_EQ(Written([](TWriter& w) {
              for (int64_t value : {-128, 127, 128, -32769}) w.WriteInteger(value);
              w.WriteInteger(int64_t{1} << 31);
            }),
            (Bytes{2, 0x80, 2, 0x7F, 3, 0x80, 0x00, 4, 0xFF, 0x7F, 0xFF, 0xFF, 19, 0, 0, 0, 0x80, 0, 0, 0, 0}));
  EXPECT_EQ(Written([](TWriter& w) { w.WriteString(u"Žák"); }), (Bytes{6, 3, 0x8E, 0xE1, 'k'}));
  EXPECT_EQ(Written([](TWriter& w) { w.WriteString(String(255, u'a')); }).size(), 2u + 255u);
  const Bytes long_text = Written([](TWriter& w) { w.WriteString(String(256, u'a')); });
  EXPECT_EQ(Bytes(long_text.begin(), long_text.begin() + 5), (Bytes{12, 0, 1, 0, 0}));
  // Text that Windows-1250 cannot carry goes as UTF-16, whatever its length.
  EXPECT_EQ(Written([](TWriter& w) { w.WriteString(u"a中"); }), (Bytes{18, 2, 0, 0, 0, 'a', 0, 0x2D, 0x4E}));
  EXPECT_EQ(Written([](TWriter& w) {
              w.WriteSignature("VSK0");
              for (StringView ident : {u"alClient", u"TRUE", u"nil"}) w.WriteIdent(ident);
              w.WriteBoolean(false);
              w.WriteInt64(-1);  // always the 64-bit tag
              w.WriteUTF8String(u"č");
              w.WriteChar(u'€');
            }),
            (Bytes{'V',  'S',  'K',  '0',  7,    8,    'a',  'l',  'C', 'l', 'i', 'e', 'n', 't',  9,    13, 8, 19,
                   0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 20,  2,   0,   0,   0,   0xC4, 0x8D, 6,  1, 0x80}));

  TMemoryStream refused;
  TWriter writer(refused);
  EXPECT_THROW(writer.WriteSignature("VSK"), EWriteError);
  EXPECT_THROW(writer.WriteIdent(String(256, u'x')), EWriteError);
  EXPECT_EQ(writer.Position(), 0);  // nothing of a refused value was written

  const Bytes whole = Written(WriteMixed);
  EXPECT_EQ(Written(WriteMixed, 8), whole);
  {
    TMemoryStream stream(Raw(whole));
    TReader reader(stream, 16);
    ReadMixed(reader);
    EXPECT_EQ(reader.Position(), stream.Size());
  }
  for (std::size_t cut = 0; cut < whole.size(); ++cut) {
    const Bytes prefix(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut));
    for (bool skipping : {false, true}) {
      TMemoryStream stream(Raw(prefix));
      TReader reader(stream, 5);
      const auto skip = [](TReader& r) { r.ReadSignature(), r.SkipValue(), r.ReadIdent(); };
      EXPECT_THROW(skipping ? skip(reader) : ReadMixed(reader), EReadError) << "cut at " << cut;
    }
  }
}

// Each opening `depth` times, then each closing as often.
Bytes Nested(const Bytes& opening, int depth, const Bytes& closing) {
  Bytes bytes;
  for (int i = 0; i < depth; ++i) bytes.insert(bytes.end(), opening.begin(), opening.end());
  for (int i = 0; i < depth; ++i) bytes.insert(bytes.end(), closing.begin(), closing.end());
  return bytes;
}

template <auto Method>
void Call(TReader& reader) {
  (void)(reader.*Method)();
}
using R = TReader;

TEST(TypedValueReader, ReadsEveryTagSkipsWhatItDoesNotNeedAndErrorsNameTheTagThePositionAndTheShortfall) {
  const Bytes bytes = {
      2,  0xFE,                                                        // int8 -2
      3,  0x00, 0x80,                                                  // int16 -32768
      19, 5,    0,    0,    0,    0,    0,    0,    0,                 // int64 5 as an integer
      15, 0x00, 0x00, 0xC0, 0x3F,                                      // single 1.5
      21, 0,    0,    0,    0,    0,    0,    0xF0, 0xBF,              // double -1.0
      17, 0,    0,    0,    0,    0,    0x40, 0xE5, 0x40,              // date 43520.0
      16, 0x39, 0x30, 0,    0,    0,    0,    0,    0,                 // currency 1.2345
      3,  0xE8, 0x03,                                                  // int16 1000 as a float
      7,  2,    'i',  'd',                                             // identifier as a string
      12, 2,    0,    0,    0,    0xE8, 0x9A,                          // long 8-bit string "čš"
      20, 3,    0,    0,    0,    'a',  0xC5, 0xBE,                    // UTF-8 "až"
      18, 0,    0,    0,    0,                                         // empty UTF-16 string
      11, 3,    'a',  'k',  'L',  2,    'a',  'R',  0,                 // set [akL, aR]
      14,                                                              // collection
      1,  4,    'N',  'a',  'm',  'e',  6,    1,    'x',  0,           //   item without order
      2,  5,    1,    0,                                               //   item with order 5, no properties
      0,                                                               // end of collection
      10, 3,    0,    0,    0,    1,    2,    3,                       // binary
      5,  0,    0,    0,    0,    0,    0,    0,    0x80, 0xFF, 0x3F,  // extended
      13, 16,   0,    0,    0,    0,    0,    0,    0,    0,           // nil, currency
      2,  42,
  };
  TMemoryStream stream(Raw(bytes));
  TReader reader(stream, 3);
  for (int32_t expected : {-2, -32768, 5}) EXPECT_EQ(reader.ReadInteger(), expected);
  for (double expected : {1.5, -1.0, 43520.0, 1.2345, 1000.0}) EXPECT_DOUBLE_EQ(reader.ReadFloat(), expected);
  for (StringView expected : {u"id", u"čš", u"až"}) EXPECT_EQ(reader.ReadString(), expected);
  EXPECT_EQ(reader.ReadChar(), u'\0');
  for (int i = 0; i < 6; ++i) reader.SkipValue();
  EXPECT_EQ(reader.ReadInteger(), 42);

  const std::tuple<Bytes, ReaderAction, StringView> cases[] = {
      {{4, 1, 2}, Call<&R::ReadInteger>, u"Stream read error: 4 bytes wanted at position 1, 2 left"},
      {{}, Call<&R::ReadValue>, u"Stream read error: 1 byte wanted at position 0, 0 left"},
      {{99}, Call<&R::NextValue>, u"Invalid value tag 99 at position 0"},
      {{19, 0, 0, 0, 0, 1, 0, 0, 0},
       Call<&R::ReadInteger>,
       u"Integer 4294967296 does not fit in 32 bits at position 0"},
      {{6, 2, 'a', 'b'}, Call<&R::ReadChar>, u"String of 2 characters where a character was expected at position 0"},
      {{6, 0}, Call<&R::ReadFloat>, u"Unexpected value tag 6 where a float was expected at position 0"},
      {{2, 0}, Call<&R::ReadBoolean>, u"Unexpected value tag 2 where a boolean was expected at position 0"},
      {{6, 0}, Call<&R::ReadIdent>, u"Unexpected value tag 6 where an identifier was expected at position 0"},
      {{0}, Call<&R::ReadListBegin>, u"Unexpected value tag 0 where list begin was expected at position 0"},
      {{1}, Call<&R::ReadListEnd>, u"Unexpected value tag 1 where end of list was expected at position 0"},
      {{'V', 'S'}, Call<&R::ReadSignature>, u"Stream read error: 4 bytes wanted at position 0, 2 left"},
      // Huge lengths are refused before anything is allocated.
      {{12, 0xFF, 0xFF, 0xFF, 0x7F, 'x', 'x', 'x'},
       Call<&R::ReadString>,
       u"Stream read error: 2147483647 bytes wanted at position 5, 3 left"},
      {{18, 0xFF, 0xFF, 0xFF, 0xFF},
       Call<&R::ReadString>,
       u"Stream read error: 8589934590 bytes wanted at position 5, 0 left"},
      // Lists nest up to 256 levels; collections whose items hold collections nest too.
      {Nested({1}, 256, {0}), Call<&R::SkipValue>, u"(no error)"},
      {Nested({1}, 257, {0}), Call<&R::SkipValue>, u"Values nested deeper than 256 levels at position 256"},
      {Nested({14, 1, 1, 'p'}, 1000, {}), Call<&R::SkipValue>,
       u"Values nested deeper than 256 levels at position 1024"},
  };
  for (const auto& [input, read, error] : cases) EXPECT_EQ(ReadErrorOf(input, read), error) << ToUtf8(error);
  EXPECT_EQ(ReadErrorOf({2, 1, 7, 1, 'x'}, [](TReader& r) { r.ReadInteger(), r.ReadInteger(); }),
            u"Unexpected value tag 7 where an integer was expected at position 2");
}

TEST(ExtendedFloat, DecodesToTheNearestEvenDoubleOrItsDenormalsAndInfinityAndEveryDoubleRoundTripsExactly) {
  using L = std::numeric_limits<double>;
  const double kInfinity = L::infinity(), kDenormMin = L::denorm_min();
  const std::pair<Bytes, double> cases[] = {
      {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0x80}, -0.0},
      {{1, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0.0},  // the smallest extended denormal is far below double's
      {{0, 0, 0, 0, 0, 0, 0, 0x80, 0xFF, 0x7F}, kInfinity},
      {{0, 0, 0, 0, 0, 0, 0, 0x80, 0x00, 0x44}, kInfinity},       // 2^1025, beyond double's range
      {{0, 0, 0, 0, 0, 0, 0, 0x80, 0xCD, 0x3B}, kDenormMin},      // 2^-1074: exponent 16383 - 1074
      {{0, 0, 0, 0, 0, 0, 0, 0x80, 0xCC, 0x3B}, 0.0},             // half of it: to even
      {{0, 0, 0, 0, 0, 0, 0, 0xC0, 0xCD, 0x3B}, 2 * kDenormMin},  // 1.5 of it: to even
      {{0, 0x04, 0, 0, 0, 0, 0, 0x80, 0xFF, 0x3F}, 1.0},          // 1 + 2^-53 is a tie: stays 1
      {{0, 0x0C, 0, 0, 0, 0, 0, 0x80, 0xFF, 0x3F}, 1.0 + 4 * std::ldexp(1.0, -53)},
      // All ones rounds up across the power of two; at the top of the range that is infinity.
      {{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x3F}, 2.0},
      {{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0x43}, kInfinity},
  };
  for (const auto& [bytes, expected] : cases)
    EXPECT_EQ(std::bit_cast<uint64_t>(ExtendedToDouble(Extended(bytes))), std::bit_cast<uint64_t>(expected))
        << expected;
  EXPECT_TRUE(std::isnan(ExtendedToDouble(Extended({1, 0, 0, 0, 0, 0, 0, 0x80, 0xFF, 0x7F}))));  // low payload only

  EXPECT_EQ(DoubleToExtended(1.0), Extended({0, 0, 0, 0, 0, 0, 0, 0x80, 0xFF, 0x3F}));
  for (double value : {0.0, -0.0, 0.1, -L::max(), L::min(), std::nextafter(L::min(), 0.0), L::denorm_min(),
                       3 * L::denorm_min(), L::infinity(), -L::quiet_NaN()})
    EXPECT_EQ(std::bit_cast<uint64_t>(ExtendedToDouble(DoubleToExtended(value))), std::bit_cast<uint64_t>(value))
        << value;
}

class TRefusingStream : public TMemoryStream {
 public:
  std::size_t Write(std::span<const std::byte>) override { return 0; }
};

// The writer flushes at its end, where a failure cannot leave: it is shown.
TEST(TypedValueWriter, AFailedFinalFlushIsShown) {
  CapturedMessages messages;
  {
    TRefusingStream refusing;
    TWriter writer(refusing);
    writer.WriteInteger(5);
  }
  EXPECT_EQ(messages.Texts(), std::vector<String>{u"Stream write error: 2 bytes to write at position 0, 0 written"});
}

}  // namespace
}  // namespace veska
