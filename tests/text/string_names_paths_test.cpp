#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <tuple>

#include "kernel/text/string_utils.h"

namespace veska {
namespace {

TEST(NameWithNumber, SplitsTrailingDigitsTakingAtMost255AndSaturating) {
  const std::tuple<String, String, int32_t> cases[] = {
      {u"Element12", u"Element", 12},
      {u"Element", u"Element", 0},
      {u"a1b", u"a1b", 0},
      {u"Item007", u"Item", 7},
      {u"123", u"", 0},
      {u"", u"", 0},
      {u"x\u0661", u"x\u0661", 0},  // only the digits 0 to 9 count
      {u"x2147483647", u"x", 2147483647},
      {u"x2147483648", u"x", 2147483647},
      {u"x" + String(254, u'0') + u"5", u"x", 5},
      {u"x" + String(255, u'0') + u"5", u"x", 0}};  // the 256th digit is not read
  for (const auto& [text, name, number] : cases) {
    EXPECT_EQ(GetNameWithoutNumber(text), name) << ToUtf8(text);
    EXPECT_EQ(GetNameEndNumber(text), number) << ToUtf8(text);
  }
  EXPECT_EQ(GetNameEndNumber(u"x" + String(100000, u'9')), 2147483647);
}

TEST(CheckClassName, TrimsAndPrefixesT) {
  for (const auto& [given, expected] : {std::pair<String, String>{u"Element", u"TElement"},
                                        {u" TElement ", u"TElement"},
                                        {u"tElement", u"tElement"},
                                        {u"  ", u""},
                                        {u"", u""}}) {
    String name = given;
    CheckClassName(name);
    EXPECT_EQ(name, expected) << ToUtf8(given);
  }
}

TEST(GetValidFileName, ReplacesCharactersNoHostAccepts) {
  EXPECT_EQ(GetValidFileName(u"a/b\\c:d*e?f\"g<h>i|j\tk.txt"), u"a_b_c_d_e_f_g_h_i_j_k.txt");
  EXPECT_EQ(GetValidFileName(u"Příliš žluťoučký.vsk"), u"Příliš žluťoučký.vsk");
  EXPECT_EQ(GetValidFileName(u""), u"");
}

TEST(Paths, RelativeOrAbsolute) {
  for (StringView relative : {u"", u"a/b", u"..\\a", u"1:x"}) EXPECT_TRUE(IsRelativePath(relative)) << ToUtf8(relative);
  for (StringView absolute : {u"/a", u"\\a", u"C:\\Models", u"c:"})
    EXPECT_FALSE(IsRelativePath(absolute)) << ToUtf8(absolute);
}

TEST(Paths, AbsolutePathResolvesDotsAgainstTheBase) {
  EXPECT_EQ(GetAbsolutePath(u"b/../c/./d", u"/a"), u"/a/c/d");
  EXPECT_EQ(GetAbsolutePath(u"..\\..\\..\\x", u"/a\\"), u"/x");
  EXPECT_EQ(GetAbsolutePath(u"/q//r/", u"/a"), u"/q/r/");
  EXPECT_EQ(GetAbsolutePath(u"sub\\", u"/a/b/"), u"/a/b/sub/");
  EXPECT_EQ(GetAbsolutePath(u"", u"/a/b"), u"/a/b");
  EXPECT_EQ(GetAbsolutePath(u"..", u"/"), u"/");
  EXPECT_EQ(GetAbsolutePath(u"C:\\a\\..\\b", u"/x"), u"C:/b");
  EXPECT_EQ(GetAbsolutePath(u"d", u"C:\\models"), u"C:/models/d");

  const String current = FromUtf8(std::filesystem::current_path().string());
  EXPECT_EQ(GetAbsolutePath(u"x/y"), GetAbsolutePath(u"x/y", current));
  EXPECT_EQ(GetAbsolutePath(u"x", u"base"), GetAbsolutePath(u"base/x", current));
  EXPECT_FALSE(IsRelativePath(GetAbsolutePath(u"x")));
}

TEST(Paths, TrailingSeparators) {
  String path = u"a\\b\\";
  CheckBackSlash(path);
  EXPECT_EQ(path, u"a/b/");

  for (const auto& [given, added, removed] : {std::tuple<String, String, String>{u"a", u"a/", u"a"},
                                              {u"a\\", u"a\\", u"a"},
                                              {u"a//", u"a//", u"a"},
                                              {u"", u"", u""},
                                              {u"/", u"/", u"/"},
                                              {u"C:\\", u"C:\\", u"C:\\"},
                                              {u"C:", u"C:/", u"C:"}}) {
    String with = given;
    AddBackSlash(with);
    EXPECT_EQ(with, added) << ToUtf8(given);
    String without = given;
    RemoveBackSlash(without);
    EXPECT_EQ(without, removed) << ToUtf8(given);
  }
}

TEST(WinDirStr, ComesFromWindirOrIsUsr) {
  const char* const saved = std::getenv("WINDIR");
  const std::optional<std::string> old = saved != nullptr ? std::optional<std::string>(saved) : std::nullopt;
  setenv("WINDIR", "/opt/system", 1);
  EXPECT_EQ(WinDirStr(), u"/opt/system");
  setenv("WINDIR", "", 1);
  EXPECT_EQ(WinDirStr(), u"/usr");
  unsetenv("WINDIR");
  EXPECT_EQ(WinDirStr(), u"/usr");
  if (old) setenv("WINDIR", old->c_str(), 1);
}

TEST(UnitGlobals, StartUpValuesDescribeTheRunningProgram) {
  const String exec_path = ExecPath();
  ASSERT_FALSE(exec_path.empty());
  EXPECT_EQ(exec_path.back(), u'/');
  EXPECT_TRUE(std::filesystem::exists(ToUtf8(exec_path) + "veska_text_tests"));
  EXPECT_EQ(RootDirectory, exec_path);
  EXPECT_EQ(Directory_Store, RootDirectory);
  EXPECT_EQ(AppString, u"veska_text_tests");
  EXPECT_TRUE(DotDecimalSeparator);
  EXPECT_FALSE(DBTransLiterate);
  const char* user = std::getenv("USER");
  if (user != nullptr && *user != '\0') {
    EXPECT_EQ(_USR, FromUtf8(user));
  }
}

}  // namespace
}  // namespace veska
