#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "kernel/text/string_utils.h"

namespace veska {
namespace {

using namespace std::string_literals;

struct Token {
  String Text;
  char16_t Delim = u'?';
  int32_t Pos = -1;
};

Token Read(StringView s, const TCharSet& delims, int32_t start) {
  Token t;
  t.Text = ReadToDelimiter(s, delims, start, t.Delim, t.Pos);
  return t;
}

Token ReadTrimmed(StringView s, const TCharSet& delims, int32_t start) {
  Token t;
  t.Text = ReadToDelimiterWithoutWS(s, delims, start, t.Delim, t.Pos);
  return t;
}

Token ReadBlock(StringView s, const TCharSet& delims, const TCharSet& blocks, int32_t start) {
  Token t;
  t.Text = ReadToDelimiterWithoutWSIgnoreBlock(s, delims, blocks, start, t.Delim, t.Pos);
  return t;
}

TEST(CharSet, HoldsOnlyEightBitCodes) {
  constexpr TCharSet delims{u'\r', u','};
  static_assert(delims.Contains(u',') && !delims.Contains(u';'));
  // č is U+010D: its low byte is the code of CR, yet it is never a member.
  EXPECT_TRUE(delims.Contains(u'\r'));
  EXPECT_FALSE(delims.Contains(u'\u010D'));
  EXPECT_FALSE(TCharSet::Range(0, 255).Contains(u'\u0100'));
  EXPECT_TRUE(TCharSet::Range(0, 255).Contains(u'\u00FF'));
  EXPECT_THROW(TCharSet{u'\u010D'}, ERangeError);
}

TEST(CharSet, SetOperators) {
  const TCharSet digits = TCharSet::Range(u'0', u'9');
  const TCharSet odd{u'1', u'3', u'5', u'7', u'9'};
  EXPECT_EQ(digits - odd, (TCharSet{u'0', u'2', u'4', u'6', u'8'}));
  EXPECT_EQ(digits * odd, odd);
  EXPECT_EQ(odd + TCharSet{u'0'} - TCharSet{u'1'}, (TCharSet{u'0', u'3', u'5', u'7', u'9'}));
  EXPECT_TRUE(TCharSet::Range(u'9', u'0').IsEmpty());
  EXPECT_FALSE(TCharSet(odd).Exclude(u'1').Contains(u'1'));
}

TEST(ReadToDelimiter, TrimmedTokenStopsAtDelimiterAndPosFollowsIt) {
  const Token t = ReadTrimmed(u"  ab  .c", {u'.'}, 1);
  EXPECT_EQ(t.Text, u"ab");
  EXPECT_EQ(t.Delim, u'.');
  EXPECT_EQ(t.Pos, 8);
  EXPECT_EQ(Read(u"  ab  .c", {u'.'}, 1).Text, u"  ab  ");

  const Token rest = ReadTrimmed(u"  ab  .c", {u'.'}, t.Pos);
  EXPECT_EQ(rest.Text, u"c");
  EXPECT_EQ(rest.Delim, u'\0');
  EXPECT_EQ(rest.Pos, 10);  // Length + 2
}

TEST(ReadToDelimiter, AtTheEndGivesEmptyTokenCodeZeroAndLengthPlusTwo) {
  const Token after_last = Read(u"a,", {u','}, 3);
  EXPECT_EQ(after_last.Text, u"");
  EXPECT_EQ(after_last.Delim, u'\0');
  EXPECT_EQ(after_last.Pos, 4);

  const Token beyond = Read(u"abc", {u','}, 50);
  EXPECT_EQ(beyond.Text, u"");
  EXPECT_EQ(beyond.Pos, 5);

  const Token from_zero = Read(u"ab,c", {u','}, 0);
  EXPECT_EQ(from_zero.Text, u"ab");
  EXPECT_EQ(from_zero.Pos, 4);

  const Token delimiter_first = Read(u",x", {u','}, 1);
  EXPECT_EQ(delimiter_first.Text, u"");
  EXPECT_EQ(delimiter_first.Delim, u',');
  EXPECT_EQ(delimiter_first.Pos, 2);
}

TEST(ReadToDelimiter, EmptyTextReturnsAtOnceWithPosAtStart) {
  const Token t = Read(u"", {u','}, 7);
  EXPECT_EQ(t.Text, u"");
  EXPECT_EQ(t.Delim, u'\0');
  EXPECT_EQ(t.Pos, 7);
}

TEST(ReadToDelimiter, WalksALineTokenByToken) {
  const String line = u"x = 1; name ;;last";
  std::vector<String> tokens;
  std::vector<char16_t> delims;
  char16_t delim = u'\0';
  int32_t pos = 1;
  do {
    tokens.push_back(ReadToDelimiterWithoutWS(line, {u'=', u';'}, pos, delim, pos));
    delims.push_back(delim);
  } while (delim != u'\0');
  EXPECT_EQ(tokens, (std::vector<String>{u"x", u"1", u"name", u"", u"last"}));
  EXPECT_EQ(delims, (std::vector<char16_t>{u'=', u';', u';', u';', u'\0'}));
}

TEST(ReadToDelimiter, CharactersAboveLatin1NeverDelimit) {
  const Token t = Read(u"x\u010Dy\rz", {u'\r'}, 1);
  EXPECT_EQ(t.Text, u"x\u010Dy");
  EXPECT_EQ(t.Delim, u'\r');
}

TEST(ReadToDelimiterIgnoreBlock, DelimitersInsideTheFirstBlockDoNotCount) {
  const TCharSet quotes{u'\'', u'"'};
  const Token quoted = ReadBlock(u" 'a=b' = c", {u'='}, quotes, 1);
  EXPECT_EQ(quoted.Text, u"'a=b'");
  EXPECT_EQ(quoted.Delim, u'=');
  EXPECT_EQ(quoted.Pos, 9);

  // The block closes only at the same character that opened it.
  EXPECT_EQ(ReadBlock(u"\"it's=1\"=2", {u'='}, quotes, 1).Text, u"\"it's=1\"");

  // Text after the block runs on to the next delimiter.
  EXPECT_EQ(ReadBlock(u"'a;b'cd;e", {u';'}, quotes, 1).Text, u"'a;b'cd");

  // A delimiter before any block ends the token as usual.
  EXPECT_EQ(ReadBlock(u"a='b=c'", {u'='}, quotes, 1).Text, u"a");
}

TEST(ReadToDelimiterIgnoreBlock, OnlyTheFirstBlockIsProtectedAndAnUnclosedOneRunsToTheEnd) {
  const TCharSet quotes{u'\'', u'"'};
  const Token second = ReadBlock(u"'x'\"y=z\"=w", {u'='}, quotes, 1);
  EXPECT_EQ(second.Text, u"'x'\"y");
  EXPECT_EQ(second.Pos, 7);

  const Token unclosed = ReadBlock(u"'a=b", {u'='}, quotes, 1);
  EXPECT_EQ(unclosed.Text, u"'a=b");
  EXPECT_EQ(unclosed.Delim, u'\0');
  EXPECT_EQ(unclosed.Pos, 6);
}

TEST(ReadToDelimiter, RandomInputKeepsPositionsAndTokensInBounds) {
  // Code 0, and two characters above 255 whose low bytes are the delimiters CR and ','.
  const String alphabet = u"ab ,;\r'\"\0\u010D\u012C"s;
  const TCharSet delims{u',', u';', u'\r'};
  const TCharSet blocks{u'\'', u'"'};
  std::mt19937 random(20240611);
  for (int round = 0; round < 5000; ++round) {
    String s(random() % 24, u' ');
    for (char16_t& c : s) c = alphabet[random() % alphabet.size()];
    const int32_t length = int32_t(s.size());
    const int32_t start = int32_t(random() % uint32_t(length + 6)) - 2;
    SCOPED_TRACE(ToUtf8(s) + " start " + std::to_string(start));

    for (const Token& t : {Read(s, delims, start), ReadTrimmed(s, delims, start),
                           ReadBlock(s, delims, blocks, start)}) {
      if (s.empty()) {
        EXPECT_EQ(t.Pos, start);
        EXPECT_EQ(t.Delim, u'\0');
        continue;
      }
      ASSERT_GE(t.Pos, 2);
      ASSERT_LE(t.Pos, length + 2);
      EXPECT_NE(s.find(t.Text), String::npos);
      if (t.Delim == u'\0') {
        EXPECT_EQ(t.Pos, length + 2);
      } else {
        EXPECT_TRUE(delims.Contains(t.Delim));
        EXPECT_EQ(s[size_t(t.Pos) - 2], t.Delim);
      }
    }
    if (s.empty()) continue;
    const Token plain = Read(s, delims, start);
    const int32_t first = std::clamp(start, 1, length + 1);
    EXPECT_EQ(plain.Text, s.substr(size_t(first) - 1, size_t(plain.Pos - 1 - first)));
    EXPECT_EQ(ReadTrimmed(s, delims, start).Text, BezVnejsichMezer(plain.Text));
    for (char16_t c : plain.Text) EXPECT_FALSE(delims.Contains(c));
  }
}

TEST(StringAsParameter, SplitsAtTheFirstEqualsSignAndTrims) {
  String name = u"old";
  String value = u"old";
  EXPECT_TRUE(StringAsParameter(u" a = b ", name, value));
  EXPECT_EQ(name, u"a");
  EXPECT_EQ(value, u"b");

  EXPECT_TRUE(StringAsParameter(u"x=1=2", name, value));
  EXPECT_EQ(value, u"1=2");

  EXPECT_FALSE(StringAsParameter(u" abc ", name, value));
  EXPECT_EQ(name, u"abc");
  EXPECT_EQ(value, u"");

  EXPECT_TRUE(StringAsParameterWS(u" a = b ", name, value));
  EXPECT_EQ(name, u" a ");
  EXPECT_EQ(value, u" b ");
  value = u"old";
  EXPECT_FALSE(StringAsParameterWS(u" abc ", name, value));
  EXPECT_EQ(name, u" abc ");
  EXPECT_EQ(value, u"");
}

TEST(StringAsParameter, SeparatorBeyondPosition255RaisesRangeError) {
  using Splitter = std::function<bool(StringView)>;
  String first;
  String second;
  const std::vector<std::pair<const char*, Splitter>> splitters{
      {"StringAsParameter", [&](StringView s) { return StringAsParameter(s, first, second); }},
      {"StringAsParameterWS", [&](StringView s) { return StringAsParameterWS(s, first, second); }},
      {"StringAsTwoParams", [&](StringView s) { return StringAsTwoParams(s, u'=', first, second); }},
      {"StringAsTwoParamsWS", [&](StringView s) { return StringAsTwoParamsWS(s, u'=', first, second); }},
  };
  for (const auto& [name, split] : splitters) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(split(String(254, u'x') + u"=v"));  // "=" at 255
    EXPECT_EQ(second, u"v");
    EXPECT_THROW(split(String(255, u'x') + u"=v"), ERangeError);  // "=" at 256
    EXPECT_FALSE(split(String(1000, u'x')));                      // no separator: no limit
  }

  // The block variant reads with the token reader and has no such limit.
  String name;
  String value;
  EXPECT_TRUE(StringAsParameterIgnoreBlock(String(300, u'x') + u"=v", name, value, {u'\''}));
  EXPECT_EQ(name, String(300, u'x'));
  EXPECT_EQ(value, u"v");
}

TEST(StringAsParameterIgnoreBlock, NameMayHoldAQuotedEqualsSign) {
  String name;
  String value = u"old";
  EXPECT_TRUE(StringAsParameterIgnoreBlock(u" 'a=b' =  c = d ", name, value, {u'\''}));
  EXPECT_EQ(name, u"'a=b'");
  EXPECT_EQ(value, u"c = d");

  EXPECT_FALSE(StringAsParameterIgnoreBlock(u" abc ", name, value, {u'\''}));
  EXPECT_EQ(name, u"abc");
  EXPECT_EQ(value, u"");

  EXPECT_FALSE(StringAsParameterIgnoreBlock(u"", name, value, {u'\''}));
  EXPECT_EQ(name, u"");

  EXPECT_TRUE(StringAsParameterIgnoreBlock(u"a=", name, value, {u'\''}));
  EXPECT_EQ(value, u"");
}

TEST(StringAsTwoParams, SecondPartIsSetOnlyWhenTextFollowsTheSeparator) {
  String first;
  String second = u"kept";
  EXPECT_TRUE(StringAsTwoParams(u" a ; b c ", u';', first, second));
  EXPECT_EQ(first, u"a");
  EXPECT_EQ(second, u"b c");

  second = u"kept";
  EXPECT_TRUE(StringAsTwoParams(u"a;", u';', first, second));
  EXPECT_EQ(first, u"a");
  EXPECT_EQ(second, u"kept");

  EXPECT_FALSE(StringAsTwoParams(u" a ", u';', first, second));
  EXPECT_EQ(first, u"a");
  EXPECT_EQ(second, u"kept");

  EXPECT_TRUE(StringAsTwoParams(u"a; ", u';', first, second));  // a blank is text
  EXPECT_EQ(second, u"");

  EXPECT_TRUE(StringAsTwoParamsWS(u" a ; b ", u';', first, second));
  EXPECT_EQ(first, u" a ");
  EXPECT_EQ(second, u" b ");
  EXPECT_FALSE(StringAsTwoParamsWS(u" a ", u';', first, second));
  EXPECT_EQ(first, u" a ");
  EXPECT_EQ(second, u" b ");
}

}  // namespace
}  // namespace veska
