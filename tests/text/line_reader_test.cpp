#include "kernel/text/line_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "kernel/text/parameter_reader.h"
#include "tests/support/temp_folder.h"

namespace veska {
namespace {

using Reader = TCtiRadekClass;
using testing::ElementsAre;

// The values read until the first read that fails, as integer lists are built (at most 100, in
// case a read at the end of the line never fails).
template <typename Value>
std::vector<Value> ReadAll(StringView line, Value (Reader::*read)()) {
  std::vector<Value> values;
  Reader reader(line);
  for (Value value = (reader.*read)(); !reader.DosloKChybe() && values.size() < 100; value = (reader.*read)())
    values.push_back(value);
  return values;
}

TEST(LineReader, ReadsValuesSeparatedByBlanksCommasOrSemicolonsUntilTheFirstError) {
  EXPECT_THAT(ReadAll(u"\t-7 ,+8  ;  9  ", &Reader::DejLongInt), ElementsAre(-7, 8, 9));
  EXPECT_THAT(ReadAll(u"2147483647 -2147483648 007", &Reader::DejInteger), ElementsAre(2147483647, -2147483648, 7));
  EXPECT_THAT(ReadAll(u"5 x 6", &Reader::DejLongInt), ElementsAre(5));
  EXPECT_THAT(ReadAll(u"   ", &Reader::DejLongInt), ElementsAre());
  EXPECT_THAT(ReadAll(u"alpha beta,gamma;\tžluťoučký", &Reader::DejString),
              ElementsAre(u"alpha", u"beta", u"gamma", u"žluťoučký"));
  EXPECT_THAT(ReadAll(u" 'it''s' 'a, b;c' '', ''''", &Reader::DejStringMeziApostrofy),
              ElementsAre(u"it's", u"a, b;c", u"", u"'"));
  EXPECT_THAT(ReadAll(u"true FALSE Ano ne 1 0 aNO", &Reader::DejBoolean),  // Czech and English, any case
              ElementsAre(true, false, true, false, true, false, true));
  // A decimal mark is a dot, or a comma between digits; a number reads as the nearest double, or
  // long double.
  EXPECT_THAT(ReadAll(u"1,5 2.25; -3e2, .5 1.5,2 1,25,7 1, 5 +4E-1 4,9406564584124654e-324 0.1", &Reader::DejReal),
              ElementsAre(1.5, 2.25, -300, 0.5, 1.5, 2, 1.25, 7, 1, 5, 0.4, 4.9406564584124654e-324, 0.1));
  EXPECT_THAT(ReadAll(u"0,1 3", &Reader::DejExtended), ElementsAre(0.1L, 3.0L));

  Reader reader(u"  word 5");  // reads go on after a failure, and the flag stays until NovyString
  EXPECT_EQ(reader.DejLongInt(), 0);
  EXPECT_EQ(reader.DejString(), u"word");
  EXPECT_EQ(reader.DejLongInt(), 5);
  EXPECT_TRUE(reader.DosloKChybe());
  reader.NovyString(u"6");
  EXPECT_FALSE(reader.DosloKChybe());
}

// A read that fails gives zero or empty, sets the error flag and leaves the position at 1.
template <typename Value>
void ExpectFailsWithoutMoving(std::initializer_list<StringView> lines, Value (Reader::*read)()) {
  for (StringView line : lines) {
    Reader reader(line);
    EXPECT_EQ((reader.*read)(), Value{}) << ToUtf8(line);
    EXPECT_TRUE(reader.DosloKChybe() && reader.Pozice() == 1) << ToUtf8(line);
  }
}

TEST(LineReader, MalformedValuesFailWithoutMoving) {
  ExpectFailsWithoutMoving({u"12abc", u"2147483648", u"-2147483649", u"1.5", u"+", u"-", u",1", u"1-"},
                           &Reader::DejLongInt);
  ExpectFailsWithoutMoving({u"5.", u"1e", u"1e+", u"1.2.3", u".", u"1e400", u"e5"}, &Reader::DejReal);
  ExpectFailsWithoutMoving({u"'unclosed", u"'ends''", u"plain", u"'a'b", u"", u"'"}, &Reader::DejStringMeziApostrofy);
  ExpectFailsWithoutMoving({u"yes", u"2", u"truely", u""}, &Reader::DejBoolean);
}

TEST(LineReader, CharactersPositionsAndSkipping) {
  Reader reader(u" \ta= b");
  EXPECT_EQ(reader.DejChar(), u'a');
  EXPECT_EQ(reader.DejChar(), u'=');  // no separator or blank is consumed after a character
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
  EXPECT_TRUE(reader.DosloKChybe() && reader.Pozice() == 1);  // a bad position is refused
  reader.PreskocMnozinu(u"*=-");
  EXPECT_EQ(reader.DejChar(), u'x');
  reader.PreskocMnozinu(u"-");
  EXPECT_TRUE(reader.KonecRadku());
}

// CR LF ends one line, CR and LF one each; blank lines and comments are skipped, and a line
// without "=" is all value.
TEST(ParameterReader, DejRadekSkipsEmptyAndCommentLines) {
  TCteniParametru reader(u"; comment\r\n\r\n  // another\nName = Value\rSize = 10, 20\n \t \nLast line\n");
  const TCtiDefInfa& info = reader.DefInfo();
  String lines;
  while (reader.DejRadek())
    lines += IntToStr(info.CisloRadku) + u":" + info.Radek + u":" + info.Jmeno + u"=" + info.Hodnota.Radek() + u";";
  EXPECT_EQ(lines, u"4:Name = Value:Name=Value;5:Size = 10, 20:Size=10, 20;7:Last line:=Last line;");
  EXPECT_EQ(info.CisloRadku, 0u);

  reader.NovyText(u"Size = 10, 20");
  EXPECT_EQ(reader.DejLongIntParametr(), 0);  // before the first DejRadek there is no line
  EXPECT_TRUE(reader.BylaChybaParametru());
  reader.NovyText(u"Size = 10, 20");
  ASSERT_TRUE(!reader.BylaChybaParametru() && reader.DejRadek());
  EXPECT_EQ(reader.DejLongIntParametr(), 10);
  EXPECT_EQ(reader.DejLongIntParametr(), 20);
  EXPECT_FALSE(reader.BylaChybaParametru());
  EXPECT_FALSE(reader.DejBooleanParametr());
  EXPECT_TRUE(reader.BylaChybaParametru());
}

TEST(ParameterReader, ParametersByName) {
  TCteniParametru reader(u"Width = 12\nRatio=2,5\n  Precise = 0.1\nVisible = Ano\nŠířka = 3\nWidth = 99");
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

TEST(ParameterReader, ReadsUtf8AndWindows1250FilesAndMissingOnesAsEmpty) {
  const test::TempFolder folder;
  TCteniParametru reader;
  const String text = u"// popis\r\nNázev = 'Kůň'\r\nPočet = 3\r\n";
  for (const std::string& bytes : {ToUtf8(text), "\xEF\xBB\xBF" + ToUtf8(text), ToWin1250(text)}) {
    ASSERT_TRUE(reader.NactiSoubor(folder.Write("parameters.txt", bytes)) && reader.DejRadek());
    EXPECT_EQ(reader.DefInfo().Jmeno + u"=" + reader.DefInfo().Hodnota.DejStringMeziApostrofy(), u"Název=Kůň");
    EXPECT_EQ(reader.DejLongIntParametr(u"počet"), 3);
  }
  EXPECT_FALSE(reader.NactiSoubor(folder.Path("missing")) || reader.DejRadek());  // and the text before is gone
  EXPECT_FALSE(reader.NactiSoubor(folder.Path()));                                // a folder
}

}  // namespace
}  // namespace veska
