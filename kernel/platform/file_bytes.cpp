#include "kernel/platform/file_bytes.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include "kernel/platform/exceptions.h"

namespace veska {
namespace {

struct FileCloser {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

[[noreturn]] void RaiseFileError(StringView action, const String& file_name, int error) {
  throw EFOpenError(String(action) + u" file \"" + file_name + u"\". " +
                    FromUtf8(std::generic_category().message(error)));
}

FileHandle OpenFile(const String& file_name, const char* mode, StringView action) {
  if (file_name.find(u'\0') != String::npos) RaiseFileError(action, file_name, EINVAL);
  FileHandle file(std::fopen(ToUtf8(file_name).c_str(), mode));
  if (!file) RaiseFileError(action, file_name, errno);
  return file;
}

}  // namespace

bool FileExists(const String& file_name) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(ToUtf8(file_name), error);
  return !error && std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

std::string ReadFileBytes(const String& file_name) {
  const FileHandle file = OpenFile(file_name, "rb", u"Cannot open");
  std::string bytes;
  char buffer[65536];
  std::size_t got = 0;
  while ((got = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) bytes.append(buffer, got);
  // A directory opens on POSIX systems and fails only when read.
  if (std::ferror(file.get())) RaiseFileError(u"Cannot open", file_name, errno);
  return bytes;
}

void WriteFileBytes(const String& file_name, std::string_view bytes) {
  FileHandle file = OpenFile(file_name, "wb", u"Cannot create");
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  const bool closed = std::fclose(file.release()) == 0;
  if (!written || !closed) throw EWriteError(u"Stream write error");
}

}  // namespace veska
