#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "kernel/text/string_utils.h"

namespace veska {
namespace {

TEST(NameWithNumber, SplitsTrailingDigits) {
  EXPECT_EQ(GetNameWithoutNumber(u"Element12"), u"Element");
  EXPECT_EQ(GetNameEndNumber(u"Element12"), 12);
  EXPECT_EQ(GetNameWithoutNumber(u"Element"), u"Element");
  EXPECT_EQ(GetNameEndNumber(u"Element"), 0);
  EXPECT_EQ(GetNameWithoutNumber(u"a1b"), u"a1b");
  EXPECT_EQ(GetNameEndNumber(u"a1b"), 0);
  EXPECT_EQ(GetNameEndNumber(u"Item007"), 7);
  EXPECT_EQ(GetNameWithoutNumber(u"123"), u"");
  EXPECT_EQ(GetNameEndNumber(u"123"), 0);  // all digits
  EXPECT_EQ(GetNameEndNumber(u""), 0);
  EXPECT_EQ(GetNameEndNumber(u"x\u0661"), 0);  // only the digits 0 to 9 count
}

TEST(NameWithNumber, TakesAtMost255DigitsAndSaturates) {
  EXPECT_EQ(GetNameEndNumber(u"x" + String(254, u'0') + u"5"), 5);
  EXPECT_EQ(GetNameEndNumber(u"x" + String(255, u'0') + u"5"), 0);  // the 256th digit is not read
  EXPECT_EQ(GetNameEndNumber(u"x2147483647"), 2147483647);
  EXPECT_EQ(GetNameEndNumber(u"x2147483648"), 2147483647);
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
  EXPECT_TRUE(IsRelativePath(u""));
  EXPECT_TRUE(IsRelativePath(u"a/b"));
  EXPECT_TRUE(IsRelativePath(u"..\\a"));
  EXPECT_TRUE(IsRelativePath(u"1:x"));
  EXPECT_FALSE(IsRelativePath(u"/a"));
  EXPECT_FALSE(IsRelativePath(u"\\a"));
  EXPECT_FALSE(IsRelativePath(u"C:\\Models"));
  EXPECT_FALSE(IsRelativePath(u"c:"));
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

// Sets an environment variable for the lifetime of the object and restores it afterwards.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) saved_ = old;
    if (value != nullptr) {
      setenv(name, value, 1);
    } else {
      unsetenv(name);
    }
  }
  ~ScopedEnvironment() {
    if (saved_) {
      setenv(name_, saved_->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  const char* name_;
  std::optional<std::string> saved_;
};

TEST(WinDirStr, ComesFromWindirOrIsUsr) {
  {
    const ScopedEnvironment windir("WINDIR", "/opt/system");
    EXPECT_EQ(WinDirStr(), u"/opt/system");
  }
  {
    const ScopedEnvironment windir("WINDIR", "");
    EXPECT_EQ(WinDirStr(), u"/usr");
  }
  const ScopedEnvironment windir("WINDIR", nullptr);
  EXPECT_EQ(WinDirStr(), u"/usr");
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
