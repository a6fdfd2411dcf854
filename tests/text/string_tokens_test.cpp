#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <tuple>

#include "kernel/text/string_utils.h"

namespace veska {
namespace {

using namespace std::string_literals;

struct Token {
  String Text;
  char16_t Delim = u'?';
  int32_t Pos = -1;
};

using Reader = String (*)(StringView, const TCharSet&, int32_t, char16_t&, int32_t&);

Token Read(StringView s, const TCharSet& delims, int32_t start, Reader read = ReadToDelimiter) {
  Token t;
  t.Text = read(s, delims, start, t.Delim, t.Pos);
  return t;
}

std::tuple<String, char16_t, int32_t> Parts(const Token& t) { return {t.Text, t.Delim, t.Pos}; }

Token ReadBlock(StringView s, const TCharSet& delims, int32_t start) {
  Token t;
  t.Text = ReadToDelimiterWithoutWSIgnoreBlock(s, delims, {u'\'', u'"'}, start, t.Delim, t.Pos);
  return t;
}

TEST(CharSet, HoldsOnlyEightBitCodes) {
  constexpr TCharSet delims{u'\r', u','};
  static_assert(delims.Contains(u',') && !delims.Contains(u';'));
  // č is U+010D: its low byte is the code of CR, yet it is never a member.
  EXPECT_FALSE(delims.Contains(u'\u010D'));
  EXPECT_FALSE(TCharSet::Range(0, 255).Contains(u'\u0100'));
  EXPECT_THROW(TCharSet{u'\u010D'}, ERangeError);

  const TCharSet odd{u'1', u'3', u'5', u'7', u'9'};
  EXPECT_EQ(TCharSet::Range(u'0', u'9') - odd, (TCharSet{u'0', u'2', u'4', u'6', u'8'}));
  EXPECT_EQ(TCharSet::Range(u'0', u'9') * odd, odd);
  EXPECT_EQ(odd + TCharSet{u'0'} - TCharSet{u'1'}, (TCharSet{u'0', u'3', u'5', u'7', u'9'}));
  EXPECT_TRUE(TCharSet::Range(u'9', u'0').IsEmpty());
}

TEST(ReadToDelimiter, TokenDelimiterAndNextPositionAtEveryPlace) {
  struct Case {
    const char16_t* s;
    int32_t start;
    bool trimmed;
    const char16_t* text;
    char16_t delim;
    int32_t pos;
  };
  const Case cases[] = {
      {u"  ab  ,c", 1, true, u"ab", u',', 8},
      {u"  ab  ,c", 1, false, u"  ab  ", u',', 8},
      {u"  ab  ,c", 8, true, u"c", u'\0', 10},  // at the end: code 0 and Length + 2
      {u"a,", 3, false, u"", u'\0', 4},
      {u"abc", 50, false, u"", u'\0', 5},
      {u"ab,c", 0, false, u"ab", u',', 4},
      {u",x", 1, false, u"", u',', 2},
      {u"", 7, false, u"", u'\0', 7},                   // an empty text returns at once
      {u"x\u012Cy,z", 1, false, u"x\u012Cy", u',', 5},  // U+012C has the low byte of ','
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(ToUtf8(c.s) + " from " + std::to_string(c.start));
    const Token t = Read(c.s, {u','}, c.start, c.trimmed ? ReadToDelimiterWithoutWS : ReadToDelimiter);
    EXPECT_EQ(Parts(t), std::tuple(c.text, c.delim, c.pos));
  }
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

// Only the first block of a token is protected; it closes only at the character that opened
// it, and an unclosed block runs to the end.
TEST(ReadToDelimiterIgnoreBlock, DelimitersInsideTheFirstBlockDoNotCount) {
  EXPECT_EQ(Parts(ReadBlock(u" 'a=b' = c", {u'='}, 1)), std::tuple(u"'a=b'", u'=', 9));
  EXPECT_EQ(ReadBlock(u"\"it's=1\"=2", {u'='}, 1).Text, u"\"it's=1\"");
  EXPECT_EQ(ReadBlock(u"'a;b'cd;e", {u';'}, 1).Text, u"'a;b'cd");
  EXPECT_EQ(ReadBlock(u"a='b=c'", {u'='}, 1).Text, u"a");

  EXPECT_EQ(Parts(ReadBlock(u"'x'\"y=z\"=w", {u'='}, 1)), std::tuple(u"'x'\"y", u'=', 7));
  EXPECT_EQ(Parts(ReadBlock(u"'a=b", {u'='}, 1)), std::tuple(u"'a=b", u'\0', 6));
}

TEST(ReadToDelimiter, RandomInputKeepsPositionsAndTokensInBounds) {
  // Code 0, and two characters above 255 whose low bytes are the delimiters CR and ','.
  const String alphabet = u"ab ,;\r'\"\0\u010D\u012C"s;
  const TCharSet delims{u',', u';', u'\r'};
  std::mt19937 random(20240611);
  for (int round = 0; round < 4000; ++round) {
    String s(random() % 24, u' ');
    for (char16_t& c : s) c = alphabet[random() % alphabet.size()];
    const int32_t length = int32_t(s.size());
    const int32_t start = int32_t(random() % uint32_t(length + 6)) - 2;
    SCOPED_TRACE(ToUtf8(s) + " start " + std::to_string(start));

    for (const Token& t :
         {Read(s, delims, start), Read(s, delims, start, ReadToDelimiterWithoutWS), ReadBlock(s, delims, start)}) {
      if (s.empty()) {
        EXPECT_EQ(std::pair(t.Pos, t.Delim), std::pair(start, u'\0'));
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
    EXPECT_EQ(Read(s, delims, start, ReadToDelimiterWithoutWS).Text, BezVnejsichMezer(plain.Text));
    for (char16_t c : plain.Text) EXPECT_FALSE(delims.Contains(c));
  }
}

TEST(StringAsParameter, SplitsAtTheFirstEqualsSignAndTrimsOrNot) {
  String name = u"old";
  String value = u"old";
  EXPECT_TRUE(StringAsParameter(u" a = b ", name, value));
  EXPECT_EQ(name + u"|" + value, u"a|b");
  EXPECT_TRUE(StringAsParameter(u"x=1=2", name, value));
  EXPECT_EQ(value, u"1=2");
  EXPECT_FALSE(StringAsParameter(u" abc ", name, value));
  EXPECT_EQ(name + u"|" + value, u"abc|");

  EXPECT_TRUE(StringAsParameterWS(u" a = b ", name, value));
  EXPECT_EQ(name + u"|" + value, u" a | b ");
  value = u"old";
  EXPECT_FALSE(StringAsParameterWS(u" abc ", name, value));
  EXPECT_EQ(name + u"|" + value, u" abc |");

  // The block variant protects a quoted "=" in the name and trims the rest as the value.
  EXPECT_TRUE(StringAsParameterIgnoreBlock(u" 'a=b' =  c = d ", name, value, {u'\''}));
  EXPECT_EQ(name + u"|" + value, u"'a=b'|c = d");
  EXPECT_FALSE(StringAsParameterIgnoreBlock(u" abc ", name, value, {u'\''}));
  EXPECT_EQ(name + u"|" + value, u"abc|");
  EXPECT_FALSE(StringAsParameterIgnoreBlock(u"", name, value, {u'\''}));
  EXPECT_EQ(name, u"");
}

TEST(StringAsParameter, SeparatorBeyondPosition255RaisesRangeError) {
  using Splitter = std::function<bool(StringView)>;
  String first;
  String second;
  const std::pair<const char*, Splitter> splitters[] = {
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
  EXPECT_TRUE(StringAsParameterIgnoreBlock(String(300, u'x') + u"=v", first, second, {u'\''}));
  EXPECT_EQ(first + u"|" + second, String(300, u'x') + u"|v");
}

TEST(StringAsTwoParams, SecondPartIsSetOnlyWhenTextFollowsTheSeparator) {
  String first;
  String second = u"kept";
  EXPECT_TRUE(StringAsTwoParams(u"a;", u';', first, second));
  EXPECT_EQ(first + u"|" + second, u"a|kept");
  EXPECT_FALSE(StringAsTwoParams(u" b ", u';', first, second));
  EXPECT_EQ(first + u"|" + second, u"b|kept");
  EXPECT_TRUE(StringAsTwoParams(u" a ; b c ", u';', first, second));
  EXPECT_EQ(first + u"|" + second, u"a|b c");
  EXPECT_TRUE(StringAsTwoParams(u"a; ", u';', first, second));  // a blank is text
  EXPECT_EQ(second, u"");

  EXPECT_TRUE(StringAsTwoParamsWS(u" a ; b ", u';', first, second));
  EXPECT_EQ(first + u"|" + second, u" a | b ");
  EXPECT_FALSE(StringAsTwoParamsWS(u" c ", u';', first, second));
  EXPECT_EQ(first + u"|" + second, u" c | b ");
}

}  // namespace
}  // namespace veska
