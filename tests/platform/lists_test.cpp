#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/pointer_list.h"
#include "kernel/platform/string_list.h"
#include "tests/support/temp_folder.h"

namespace veska {
namespace {

using ::testing::ThrowsMessage;
using Texts = std::vector<String>;

auto OutOfBounds(int index) {
  return ThrowsMessage<EListError>("List index out of bounds (" + std::to_string(index) + ")");
}

Texts Lines(const TStringList& list) {
  Texts lines;
  for (int i = 0; i < list.Count(); ++i) lines.push_back(list.Get(i));
  return lines;
}

TStringList ListOf(std::initializer_list<String> lines) {
  TStringList list;
  for (const String& line : lines) list.Add(line);
  return list;
}

std::vector<void*> Items(const TList& list) { return {list.begin(), list.end()}; }

TEST(Lists, KeepOrderAndObjectsThroughInsertDeleteExchangeAndRemoveAndRefuseBadIndexes) {
  int a = 0, b = 0, c = 0, d = 0;
  TList list;
  list.Add(&a);
  EXPECT_EQ(list.Add(&c), 1);
  list.Insert(1, &b);
  list.Insert(3, &d);  // at Count: appends
  EXPECT_EQ(Items(list), (std::vector<void*>{&a, &b, &c, &d}));
  list.Exchange(0, 3);
  EXPECT_EQ(std::pair(list.First(), list.Last()), (std::pair<void*, void*>(&d, &a)));
  list.Delete(1);   // b
  list.Put(1, &d);  // d twice: Remove takes the first
  EXPECT_EQ(list.Remove(&d), 0);
  EXPECT_EQ(list.Remove(&b), -1);
  list.SetCapacity(2);  // down to the count keeps every item
  EXPECT_EQ(Items(list), (std::vector<void*>{&d, &a}));

  EXPECT_THAT([&] { list.Get(-1); }, OutOfBounds(-1));
  EXPECT_THAT([&] { list.Get(2); }, OutOfBounds(2));
  EXPECT_THAT([&] { list.Exchange(0, 5); }, OutOfBounds(5));
  EXPECT_THAT([&] { list.Insert(3, &a); }, OutOfBounds(3));
  EXPECT_THAT([&] { list.SetCapacity(1); }, ThrowsMessage<EListError>("List capacity out of bounds (1)"));
  TList empty;
  EXPECT_THAT([&] { empty.First(); }, OutOfBounds(0));
  EXPECT_THAT([&] { empty.Last(); }, OutOfBounds(-1));

  TStringList strings;
  strings.AddObject(u"one", &a);
  strings.Add(u"none");
  strings.InsertObject(0, u"two", &b);
  strings.Exchange(0, 2);
  EXPECT_EQ(Lines(strings), (Texts{u"none", u"one", u"two"}));
  EXPECT_EQ(std::tuple(strings.Objects(0), strings.Objects(1), strings.Objects(2)), std::tuple(nullptr, &a, &b));
  strings.Delete(0);
  EXPECT_EQ(strings.Objects(0), &a);
  EXPECT_THAT([&] { strings.Get(2); }, OutOfBounds(2));
  EXPECT_THAT([&] { strings.Insert(3, u"x"); }, OutOfBounds(3));
  EXPECT_THAT([&] { strings.Names(-1); }, OutOfBounds(-1));
  EXPECT_EQ(strings.ValueFromIndex(-1), u"");  // a negative index is "not found", not an error
}

// A long list filled far from its end keeps its items in blocks; it must answer as a vector
// does, through every operation, on the way into blocks and back.
TEST(Lists, ALongListFilledInTheMiddleAnswersAsAVectorDoes) {
  std::mt19937 random(11);
  std::vector<void*> model;
  TList list;
  const auto item = [](std::size_t n) { return reinterpret_cast<void*>(n * 8 + 8); };
  const auto same = [&] { return std::vector<void*>(list.begin(), list.end()) == model; };
  for (std::size_t n = 0; n < 20'000; ++n) {
    const int index = static_cast<int>(random() % (model.size() + 1));
    list.Insert(index, item(n));
    model.insert(model.begin() + index, item(n));
  }
  ASSERT_TRUE(same());
  list.Exchange(0, 19'999);
  std::swap(model.front(), model.back());
  list.Put(7'000, item(99'999));
  model[7'000] = item(99'999);
  EXPECT_EQ(list.IndexOf(item(99'999)), 7'000);
  EXPECT_EQ(list.Get(12'345), model[12'345]);
  while (model.size() > 100) {
    const int index = static_cast<int>(random() % model.size());
    list.Delete(index);
    model.erase(model.begin() + index);
  }
  EXPECT_TRUE(same());
  EXPECT_EQ(list.Add(item(123'456)), 100);
  EXPECT_EQ(list.Remove(item(123'456)), 100);
}

TEST(StringList, IndexOfIgnoresCaseUnlessCaseSensitiveNameValueLinesAndSortedListsApplyDuplicates) {
  TStringList cased = ListOf({u"Žluťoučký", u"kůň", u"KŮŇ"});
  EXPECT_EQ(std::tuple(cased.IndexOf(u"ŽLUŤOUČKÝ"), cased.IndexOf(u"Kůň"), cased.IndexOf(u"kun")),
            std::tuple(0, 1, -1));
  cased.SetCaseSensitive(true);
  EXPECT_EQ(std::tuple(cased.IndexOf(u"KŮŇ"), cased.IndexOf(u"Kůň")), std::tuple(2, -1));

  TStringList list = ListOf({u"plain", u"Width=10", u"=nameless", u"Path=a=b", u"width=20"});
  EXPECT_EQ(list.Names(0) + u"|" + list.Names(3), u"|Path");
  EXPECT_EQ(list.IndexOfName(u"WIDTH"), 1);  // the first of the two, ignoring case
  // Split at the first "="; a line without "=" has no name.
  EXPECT_EQ(
      list.Values(u"width") + u"|" + list.Values(u"path") + u"|" + list.Values(u"") + u"|" + list.Values(u"plain"),
      u"10|a=b|nameless|");
  EXPECT_EQ(list.ValueFromIndex(0) + u"|" + list.ValueFromIndex(3), u"|a=b");

  list.SetValue(u"WIDTH", u"30");  // rewrites the line with the name as given
  list.SetValue(u"Height", u"5");  // appended
  list.SetValue(u"path", u"");     // an empty value deletes the line
  list.SetValue(u"missing", u"");  // nothing to delete
  EXPECT_EQ(Lines(list), (Texts{u"plain", u"WIDTH=30", u"=nameless", u"width=20", u"Height=5"}));

  TStringList sorted = ListOf({u"pear", u"Apple", u"čaj", u"fig"});
  sorted.SetSorted(true);
  EXPECT_EQ(Lines(sorted), (Texts{u"Apple", u"fig", u"pear", u"čaj"}));
  EXPECT_EQ(sorted.Add(u"banana"), 1);
  EXPECT_EQ(sorted.Add(u"APPLE"), 0);  // ignored: the index of the line held
  EXPECT_EQ(std::tuple(sorted.Count(), sorted.IndexOf(u"PEAR")), std::tuple(5, 3));
  int index = -1;
  EXPECT_TRUE(!sorted.Find(u"grape", index) && index == 3);
  sorted.SetDuplicates(TDuplicates::Accept);
  EXPECT_EQ(sorted.Add(u"FIG"), 2);  // before the equal line already there

  sorted.SetDuplicates(TDuplicates::Error);
  EXPECT_THAT([&] { sorted.Add(u"pear"); }, ThrowsMessage<EListError>("String list does not allow duplicates"));
  EXPECT_THAT([&] { sorted.Insert(0, u"x"); }, ThrowsMessage<EListError>("Operation not allowed on sorted list"));
  // Kept from the platform: a new name=value line goes in through Put, which a sorted list refuses.
  EXPECT_THAT([&] { sorted.SetValue(u"k", u"v"); }, ThrowsMessage<EListError>("Operation not allowed on sorted list"));
}

TEST(StringList, TextEndsEveryLineAndSplitsOnAnyLineBreakAndCommaTextQuotesWhatNeedsIt) {
  TStringList list = ListOf({u"a", u"", u"č"});
  EXPECT_EQ(list.Text(), u"a\r\n\r\nč\r\n");
  list.SetText(u"one\r\ntwo\nthree\rfour\n\rfive\r\n");
  EXPECT_EQ(Lines(list), (Texts{u"one", u"two", u"three", u"four", u"", u"five"}));
  list.SetText(String(u"kept\nlost", 9) + u'\0' + u"\nlost");
  EXPECT_EQ(Lines(list), (Texts{u"kept", u"lost"}));
  list.SetText(u"");
  EXPECT_EQ(list.Count(), 0);

  const auto split = [](StringView text) {
    TStringList parts;
    parts.SetCommaText(text);
    return Lines(parts);
  };
  const TStringList quoted = ListOf({u"plain", u"two words", u"a,b", u"say \"hi\"", u"", u"tab\there", u"ř"});
  EXPECT_EQ(quoted.CommaText(), u"plain,\"two words\",\"a,b\",\"say \"\"hi\"\"\",,\"tab\there\",ř");
  EXPECT_EQ(split(quoted.CommaText()), Lines(quoted));
  EXPECT_EQ(ListOf({u""}).CommaText(), u"\"\"");
  // Unquoted blanks separate too; blanks around parts go; a trailing comma adds an empty part;
  // an unterminated quote runs to the end.
  EXPECT_EQ(split(u"  a b ,, \"c d\"e,\"open ,end"), (Texts{u"a", u"b", u"", u"c d", u"e", u"open ,end"}));
  EXPECT_EQ(split(u"x,"), (Texts{u"x", u""}));
}

TEST(StringListFile, SavesWindows1250OrUtf8AndRecognisesByteOrderMarksWhenLoading) {
  const test::TempFolder folder;
  const auto loaded = [](const String& file_name) {
    TStringList list = ListOf({u"replaced"});
    list.LoadFromFile(file_name);
    return Lines(list);
  };
  const TStringList czech = ListOf({u"Příliš žluťoučký kůň", u"úpěl=ďábelské ódy"});
  czech.SaveToFile(folder.Path("cz.txt"));
  EXPECT_EQ(folder.Read("cz.txt"),
            "P\xF8\xED\x6Ci\x9A \x9Elu\x9Dou\xE8k\xFD k\xF9\xF2\r\n\xFAp\xECl=\xEF\xE1\x62\x65lsk\xE9 \xF3\x64y\r\n");
  EXPECT_EQ(loaded(folder.Path("cz.txt")), Lines(czech));
  const TStringList utf8 = ListOf({u"Čeština", u"€ 5"});
  utf8.SaveToFile(folder.Path("utf8.txt"), TTextEncoding::Utf8);
  EXPECT_EQ(folder.Read("utf8.txt"), "\xEF\xBB\xBF\xC4\x8C\x65\xC5\xA1tina\r\n\xE2\x82\xAC 5\r\n");
  EXPECT_EQ(loaded(folder.Path("utf8.txt")), Lines(utf8));
  // Without the mark the same bytes are Windows-1250; an odd last byte of UTF-16 is dropped.
  EXPECT_EQ(loaded(folder.Write("nobom.txt", "\xC4\x8D")), (Texts{u"ÄŤ"}));
  EXPECT_EQ(loaded(folder.Write("le.txt", std::string_view("\xFF\xFE\x0D\x01\x0D\x00\x0A\x00z\x00\x01", 11))),
            (Texts{u"č", u"z"}));
  EXPECT_EQ(loaded(folder.Write("be.txt", std::string_view("\xFE\xFF\x01\x0D", 4))), (Texts{u"č"}));

  // A folder opens on POSIX systems and fails only when read or written.
  const std::string directory = ToUtf8(folder.Path());
  EXPECT_THAT([&] { loaded(FromUtf8(directory)); },
              ThrowsMessage<EFOpenError>("Cannot open file \"" + directory + "\". Is a directory"));
  EXPECT_THAT([&] { czech.SaveToFile(FromUtf8(directory)); },
              ThrowsMessage<EFOpenError>("Cannot create file \"" + directory + "\". Is a directory"));
}

}  // namespace
}  // namespace veska
