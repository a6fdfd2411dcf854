#include "kernel/text/string_paths.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace veska {
namespace {

constexpr char16_t kSeparator = u'/';

constexpr bool IsSeparator(char16_t c) { return c == u'/' || c == u'\\'; }

constexpr bool HasDrive(StringView S) {
  return S.size() >= 2 && S[1] == u':' && ((S[0] >= u'A' && S[0] <= u'Z') || (S[0] >= u'a' && S[0] <= u'z'));
}

// The length of the root that begins S: "/" or "\" (1), "C:" (2), "C:/" (3); 0 when relative.
size_t RootLength(StringView S) {
  if (HasDrive(S)) return S.size() > 2 && IsSeparator(S[2]) ? 3 : 2;
  return !S.empty() && IsSeparator(S.front()) ? 1 : 0;
}

String CurrentDirectory() {
  std::error_code error;
  const std::filesystem::path current = std::filesystem::current_path(error);
  return error ? String(1, kSeparator) : FromUtf8(current.string());
}

// An absolute path with "." and ".." resolved, written with '/'.
String NormalizeAbsolute(StringView path) {
  const size_t root_length = RootLength(path);
  String result(path.substr(0, root_length));
  CheckBackSlash(result);
  if (HasDrive(result) && result.size() == 2) result += kSeparator;

  std::vector<StringView> segments;
  StringView rest = path.substr(root_length);
  while (!rest.empty()) {
    const auto separator = std::find_if(rest.begin(), rest.end(), IsSeparator);
    const StringView segment = rest.substr(0, size_t(separator - rest.begin()));
    rest.remove_prefix(std::min(rest.size(), segment.size() + 1));
    if (segment.empty() || segment == u".") continue;
    if (segment == u"..") {
      if (!segments.empty()) segments.pop_back();
      continue;
    }
    segments.push_back(segment);
  }
  for (size_t i = 0; i < segments.size(); ++i) {
    if (i > 0) result += kSeparator;
    result += segments[i];
  }
  if (!segments.empty() && IsSeparator(path.back())) result += kSeparator;
  return result;
}

}  // namespace

String ExecPath() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  String directory = error ? CurrentDirectory() : FromUtf8(program.parent_path().string());
  AddBackSlash(directory);
  return directory;
}

bool IsRelativePath(StringView S) { return RootLength(S) == 0; }

String GetAbsolutePath(StringView S) { return GetAbsolutePath(S, CurrentDirectory()); }

String GetAbsolutePath(StringView S, StringView Base) {
  if (!IsRelativePath(S)) return NormalizeAbsolute(S);
  String combined = IsRelativePath(Base) ? CurrentDirectory() + kSeparator + String(Base) : String(Base);
  if (!S.empty()) combined += kSeparator + String(S);
  return NormalizeAbsolute(combined);
}

String WinDirStr() {
  const char* windows_directory = std::getenv("WINDIR");
  if (windows_directory != nullptr && *windows_directory != '\0') return FromUtf8(windows_directory);
  return u"/usr";
}

void CheckBackSlash(String& S) { std::replace(S.begin(), S.end(), u'\\', kSeparator); }

void AddBackSlash(String& S) {
  if (!S.empty() && !IsSeparator(S.back())) S += kSeparator;
}

void RemoveBackSlash(String& S) {
  const size_t root_length = RootLength(S);
  while (S.size() > root_length && IsSeparator(S.back())) S.pop_back();
}

}  // namespace veska
