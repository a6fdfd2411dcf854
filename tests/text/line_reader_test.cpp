#include "kernel/text/line_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "kernel/text/parameter_reader.h"

namespace veska {
namespace {

TEST(LineReader, ReadsWholeNumbersOneAfterAnother) {
  TCtiRadekClass reader(u"3;4");
  EXPECT_EQ(reader.DejLongInt(), 3);
  EXPECT_EQ(reader.DejInteger(), 4);
  EXPECT_TRUE(!reader.DosloKChybe() && reader.KonecRadku());
  EXPECT_EQ(reader.DejLongInt(), 0);  // nothing left: the end of the line is an error
  EXPECT_TRUE(reader.DosloKChybe());

  // The loop that builds integer lists: read until the flag is set, keep the error-free reads.
  auto read_all = [](StringView line) {
    std::vector<std::int32_t> numbers;
    TCtiRadekClass list_reader(line);
    while (!list_reader.DosloKChybe()) {
      const std::int32_t number = list_reader.DejLongInt();
      if (!list_reader.DosloKChybe()) numbers.push_back(number);
    }
    return numbers;
  };
  EXPECT_EQ(read_all(u"\t-7 ,+8  ;  9  "), (std::vector<std::int32_t>{-7, 8, 9}));
  EXPECT_EQ(read_all(u"2147483647 -2147483648 007"), (std::vector<std::int32_t>{2147483647, -2147483648, 7}));
  EXPECT_EQ(read_all(u"5 x 6"), (std::vector<std::int32_t>{5}));
  EXPECT_TRUE(read_all(u"").empty() && read_all(u"   ").empty());
}

// A read that fails gives zero or empty, sets the error flag and leaves the position at 1.
template <typename Read>
void ExpectFailsWithoutMoving(std::initializer_list<StringView> lines, Read read) {
  for (StringView line : lines) {
    TCtiRadekClass reader(line);
    EXPECT_EQ(read(reader), decltype(read(reader)){}) << ToUtf8(line);
    EXPECT_TRUE(reader.DosloKChybe()) << ToUtf8(line);
    EXPECT_EQ(reader.Pozice(), 1u) << ToUtf8(line);
  }
}

TEST(LineReader, MalformedValuesFailWithoutMoving) {
  ExpectFailsWithoutMoving({u"12abc", u"2147483648", u"-2147483649", u"1.5", u"+", u"-", u",1", u"1-"},
                           [](TCtiRadekClass& r) { return r.DejLongInt(); });
  ExpectFailsWithoutMoving({u"5.", u"1e", u"1e+", u"1.2.3", u".", u"1e400", u"e5"},
                           [](TCtiRadekClass& r) { return r.DejReal(); });
  ExpectFailsWithoutMoving({u"'unclosed", u"'ends''", u"plain", u"'a'b", u"", u"'"},
                           [](TCtiRadekClass& r) { return r.DejStringMeziApostrofy(); });
  ExpectFailsWithoutMoving({u"yes", u"2", u"truely", u""}, [](TCtiRadekClass& r) { return r.DejBoolean(); });
}

TEST(LineReader, ErrorFlagStaysUntilNovyString) {
  TCtiRadekClass reader(u"  word 5");
  EXPECT_EQ(reader.DejLongInt(), 0);
  EXPECT_EQ(reader.DejString(), u"word");  // reads go on after a failure
  EXPECT_EQ(reader.DejLongInt(), 5);
  EXPECT_TRUE(reader.DosloKChybe());
  reader.NovyString(u"6");
  EXPECT_FALSE(reader.DosloKChybe());
  EXPECT_EQ(reader.DejLongInt(), 6);
}

TEST(LineReader, DecimalNumbersTakeDotOrCommaBetweenDigits) {
  TCtiRadekClass reader(u"1,5 2.25; -3e2, .5 1.5,2 1,25,7 1, 5 +4E-1");
  for (double expected : {1.5, 2.25, -300.0, 0.5, 1.5, 2.0, 1.25, 7.0, 1.0, 5.0, 0.4}) {
    EXPECT_DOUBLE_EQ(reader.DejReal(), expected);
  }
  EXPECT_TRUE(!reader.DosloKChybe() && reader.KonecRadku());

  reader.NovyString(u"0,1 3");
  EXPECT_EQ(reader.DejExtended(), 0.1L);  // the long double nearest to 0.1, not the double
  EXPECT_EQ(reader.DejExtended(), 3.0L);
  EXPECT_FALSE(reader.DosloKChybe());
  if constexpr (std::numeric_limits<long double>::max_exponent10 > 400) {
    reader.NovyString(u"1e400");
    EXPECT_EQ(reader.DejExtended(), 1e400L);  // beyond double, within long double
    EXPECT_FALSE(reader.DosloKChybe());
  }
}

TEST(LineReader, WordsQuotedTextsAndBooleans) {
  TCtiRadekClass reader(u"alpha beta,gamma;\tžluťoučký");
  for (StringView expected : {u"alpha", u"beta", u"gamma", u"žluťoučký"}) EXPECT_EQ(reader.DejString(), expected);
  EXPECT_FALSE(reader.DosloKChybe());
  EXPECT_EQ(reader.DejString(), u"");
  EXPECT_TRUE(reader.DosloKChybe());

  reader.NovyString(u" 'it''s' 'a, b;c' '', ''''");
  for (StringView expected : {u"it's", u"a, b;c", u"", u"'"}) EXPECT_EQ(reader.DejStringMeziApostrofy(), expected);
  EXPECT_TRUE(!reader.DosloKChybe() && reader.KonecRadku());

  reader.NovyString(u"true FALSE Ano ne 1 0 aNO");  // booleans in Czech and English, any case
  for (bool expected : {true, false, true, false, true, false, true}) EXPECT_EQ(reader.DejBoolean(), expected);
  EXPECT_FALSE(reader.DosloKChybe());
}

TEST(LineReader, CharactersPositionsAndSkipping) {
  TCtiRadekClass reader(u" \ta= b");
  EXPECT_EQ(reader.DejChar(), u'a');
  EXPECT_EQ(reader.DejChar(), u'=');  // no separator or blank is consumed after a character
  EXPECT_EQ(reader.Pozice(), 5u);
  reader.PreskocMezery();
  EXPECT_EQ(reader.Pozice(), 6u);
  reader.JdiNa(3);
  EXPECT_EQ(reader.DejString(), u"a=");
  reader.JdiNa(7);  // Length + 1: the end
  EXPECT_TRUE(!reader.DosloKChybe() && reader.KonecRadku());
  EXPECT_EQ(reader.DejChar(), u'\0');
  EXPECT_TRUE(reader.DosloKChybe());

  reader.NovyString(u"--=*x-");
  reader.JdiNa(0);
  reader.JdiNa(8);
  EXPECT_TRUE(reader.DosloKChybe());
  EXPECT_EQ(reader.Pozice(), 1u);  // a bad position is refused
  reader.PreskocMnozinu(u"*=-");
  EXPECT_EQ(reader.Pozice(), 5u);
  reader.PreskocMnozinu(u"");
  EXPECT_EQ(reader.DejChar(), u'x');
  reader.PreskocMnozinu(u"-");
  EXPECT_TRUE(reader.KonecRadku());
}

// Numbers written by the standard library come back exactly, with '.' or ',' as the mark.
TEST(LineReader, RandomNumbersReadBackExactly) {
  std::mt19937_64 random(20240611);
  std::uniform_int_distribution<std::int32_t> any_int(std::numeric_limits<std::int32_t>::min(),
                                                      std::numeric_limits<std::int32_t>::max());
  const StringView separators[] = {u" ", u",", u";", u" , ", u"\t; "};
  for (int round = 0; round < 200; ++round) {
    std::vector<std::int32_t> numbers(1 + round % 9);
    String line;
    for (std::int32_t& number : numbers) {
      number = any_int(random);
      line += IntToStr(number);
      line += separators[random() % std::size(separators)];
    }
    TCtiRadekClass reader(line);
    for (std::int32_t number : numbers) EXPECT_EQ(reader.DejLongInt(), number) << ToUtf8(line);
    EXPECT_TRUE(!reader.DosloKChybe() && reader.KonecRadku()) << ToUtf8(line);
  }

  for (int round = 0; round < 1500; ++round) {
    double value = 0;
    do {
      const std::uint64_t bits = random();
      value = std::bit_cast<double>(bits);
    } while (!std::isfinite(value));
    char text[64];
    const auto end = std::to_chars(std::begin(text), std::end(text), value).ptr;
    String line = FromUtf8(std::string_view(text, end - text));
    if (round % 2 == 1) std::ranges::replace(line, u'.', u',');
    line += u" ; 1";
    TCtiRadekClass reader(line);
    EXPECT_EQ(reader.DejReal(), value) << ToUtf8(line);
    EXPECT_EQ(reader.DejLongInt(), 1) << ToUtf8(line);
    EXPECT_FALSE(reader.DosloKChybe()) << ToUtf8(line);
  }
}

TEST(ParameterReader, DejRadekSkipsEmptyAndCommentLines) {
  TCteniParametru reader(u"; comment\r\n\r\n  // another\nName = Value\rSize = 10, 20\n \t \nLast line\n");
  EXPECT_EQ(reader.DefInfo().CisloRadku, 0u);
  ASSERT_TRUE(reader.DejRadek());
  EXPECT_EQ(reader.DefInfo().CisloRadku, 4u);  // CR LF ends one line, CR and LF one each
  EXPECT_EQ(reader.DefInfo().Radek + u"|" + reader.DefInfo().Jmeno + u"|" + reader.DefInfo().Hodnota.Radek(),
            u"Name = Value|Name|Value");

  ASSERT_TRUE(reader.DejRadek());
  EXPECT_EQ(reader.DefInfo().CisloRadku, 5u);
  EXPECT_EQ(reader.DejLongIntParametr(), 10);
  EXPECT_EQ(reader.DejLongIntParametr(), 20);
  EXPECT_EQ(reader.DejLongIntParametr(), 0);
  EXPECT_TRUE(reader.BylaChybaParametru());

  ASSERT_TRUE(reader.DejRadek());
  EXPECT_EQ(reader.DefInfo().CisloRadku, 7u);
  // No equals sign: the whole line is the value.
  EXPECT_EQ(reader.DefInfo().Jmeno + u"|" + reader.DefInfo().Hodnota.Radek(), u"|Last line");
  EXPECT_FALSE(reader.DejRadek());
  EXPECT_EQ(reader.DefInfo().CisloRadku, 0u);

  reader.NovyText(u"Flag = ne");
  EXPECT_FALSE(reader.BylaChybaParametru());
  EXPECT_FALSE(reader.DejBooleanParametr());  // before the first DejRadek there is no line
  EXPECT_TRUE(reader.BylaChybaParametru());
}

TEST(ParameterReader, ParametersByName) {
  TCteniParametru reader(
      u"Width = 12\nRatio=2,5\n  Precise = 0.1\nVisible = Ano\nŠířka = 3\nBroken = 12abc\n"
      u"Two = 1 2\n; Hidden = 4\nWidth = 99");
  ASSERT_TRUE(reader.DejRadek());
  // The first of that name, in any case.
  EXPECT_EQ(std::pair(reader.DejLongIntParametr(u"width"), reader.DejLongIntParametr(u"ŠÍŘKA")), std::pair(12, 3));
  EXPECT_DOUBLE_EQ(reader.DejRealParametr(u"RATIO"), 2.5);
  EXPECT_EQ(reader.DejExtendedParametr(u"Precise"), 0.1L);
  EXPECT_TRUE(reader.DejBooleanParametr(u"visible"));
  EXPECT_FALSE(reader.BylaChybaParametru());
  EXPECT_EQ(reader.DefInfo().Jmeno, u"Width");  // lookups by name keep the current line

  for (StringView bad : {u"Broken", u"Two", u"Hidden", u"Missing", u""}) {
    reader.NovyText(u"Broken = 12abc\nTwo = 1 2\n; Hidden = 4\n= 5");
    EXPECT_EQ(reader.DejLongIntParametr(bad), 0) << ToUtf8(bad);
    EXPECT_TRUE(reader.BylaChybaParametru()) << ToUtf8(bad);
  }
}

class ParameterFile : public testing::Test {
 protected:
  void TearDown() override { std::filesystem::remove(path_); }
  String Write(const std::string& bytes) {
    std::ofstream(path_, std::ios::binary) << bytes;
    return Name();
  }
  String Name() const { return FromUtf8(path_.string()); }
  std::filesystem::path path_ =
      std::filesystem::path(testing::TempDir()) /
      (std::string("veska_parameters_") + testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(ParameterFile, ReadsUtf8AndWindows1250FilesAndMissingOnesAsEmpty) {
  TCteniParametru missing(u"Old = 1");
  EXPECT_FALSE(missing.NactiSoubor(Name()));  // not written
  EXPECT_FALSE(missing.DejRadek());
  EXPECT_FALSE(missing.NactiSoubor(FromUtf8(testing::TempDir())));

  const String text = u"// popis\r\nNázev = 'Kůň'\r\nPočet = 3\r\n";
  for (const std::string& bytes : {ToUtf8(text), "\xEF\xBB\xBF" + ToUtf8(text), ToWin1250(text)}) {
    TCteniParametru reader;
    ASSERT_TRUE(reader.NactiSoubor(Write(bytes)));
    ASSERT_TRUE(reader.DejRadek());
    EXPECT_EQ(reader.DefInfo().Jmeno + u"=" + reader.DefInfo().Hodnota.DejStringMeziApostrofy(), u"Název=Kůň");
    EXPECT_EQ(reader.DejLongIntParametr(u"počet"), 3);
    EXPECT_FALSE(reader.BylaChybaParametru());
  }
}

}  // namespace
}  // namespace veska
