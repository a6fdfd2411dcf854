#include "kernel/platform/streams.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "kernel/platform/checked_arithmetic.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/file_bytes.h"

namespace veska {
namespace {

// The absolute position that a seek aims at; EStreamError when it lies before the beginning.
int64_t SeekTarget(int64_t offset, TSeekOrigin origin, int64_t current, int64_t size) {
  const int64_t base = origin == TSeekOrigin::soBeginning ? 0 : origin == TSeekOrigin::soCurrent ? current : size;
  const int64_t target = CheckedAdd(base, offset);
  if (target < 0) throw EStreamError(u"Stream seek error: position " + IntToStr(target) + u" is before the beginning");
  return target;
}

std::filesystem::path PathOf(const String& file_name) { return std::filesystem::path(file_name); }

String ReasonOf(int error_number) {
  return error_number == 0 ? String() : u" " + FromUtf8(std::generic_category().message(error_number));
}

}  // namespace

String ReadShortfallText(int64_t wanted, int64_t position, int64_t left) {
  return u"Stream read error: " + IntToStr(wanted) + (wanted == 1 ? u" byte" : u" bytes") + u" wanted at position " +
         IntToStr(position) + u", " + IntToStr(left) + u" left";
}

// ---------------------------------------------------------------------------------- TStream

int64_t TStream::Size() {
  const int64_t position = Position();
  const int64_t size = Seek(0, TSeekOrigin::soEnd);
  Seek(position, TSeekOrigin::soBeginning);
  return size;
}

void TStream::ReadBuffer(std::span<std::byte> buffer) {
  const int64_t position = Position();
  const std::size_t read = Read(buffer);
  if (read != buffer.size()) {
    throw EReadError(ReadShortfallText(static_cast<int64_t>(buffer.size()), position, static_cast<int64_t>(read)));
  }
}

void TStream::WriteBuffer(std::span<const std::byte> data) {
  const int64_t position = Position();
  const std::size_t written = Write(data);
  if (written != data.size()) {
    throw EWriteError(u"Stream write error: " + IntToStr(static_cast<long long>(data.size())) +
                      u" bytes to write at position " + IntToStr(position) + u", " +
                      IntToStr(static_cast<long long>(written)) + u" written");
  }
}

int64_t TStream::CopyFrom(TStream& source, int64_t count) {
  if (count < 0) throw EStreamError(u"Stream copy error: negative count " + IntToStr(count));
  if (count == 0) {
    source.SetPosition(0);
    count = source.Size();
  }
  constexpr int64_t kChunk = int64_t{64} * 1024;
  std::vector<std::byte> chunk(static_cast<std::size_t>(std::min(count, kChunk)));
  for (int64_t left = count; left > 0;) {
    const auto part = std::span(chunk).first(static_cast<std::size_t>(std::min(left, kChunk)));
    source.ReadBuffer(part);
    WriteBuffer(part);
    left -= static_cast<int64_t>(part.size());
  }
  return count;
}

// ---------------------------------------------------------------------------- TMemoryStream

std::size_t TMemoryStream::Read(std::span<std::byte> buffer) {
  const int64_t available = Size() - position_;
  if (available <= 0 || buffer.empty()) return 0;
  const std::size_t count = std::min(buffer.size(), static_cast<std::size_t>(available));
  std::memcpy(buffer.data(), data_.data() + position_, count);
  position_ += static_cast<int64_t>(count);
  return count;
}

std::size_t TMemoryStream::Write(std::span<const std::byte> data) {
  if (data.empty()) return 0;
  const int64_t end = CheckedAdd(position_, CheckedRange<int64_t>(data.size()));
  if (end > Size()) data_.resize(static_cast<std::size_t>(end));  // vector growth is geometric
  std::memcpy(data_.data() + position_, data.data(), data.size());
  position_ = end;
  return data.size();
}

int64_t TMemoryStream::Seek(int64_t offset, TSeekOrigin origin) {
  position_ = SeekTarget(offset, origin, position_, Size());
  return position_;
}

void TMemoryStream::SetSize(int64_t new_size) {
  if (new_size < 0) throw EStreamError(u"Stream size error: negative size " + IntToStr(new_size));
  data_.resize(static_cast<std::size_t>(new_size));
  position_ = std::min(position_, new_size);
}

void TMemoryStream::Clear() {
  std::vector<std::byte>().swap(data_);
  position_ = 0;
}

void TMemoryStream::LoadFromStream(TStream& source) {
  source.SetPosition(0);
  std::vector<std::byte> content(static_cast<std::size_t>(source.Size()));
  source.ReadBuffer(content);
  data_ = std::move(content);
  position_ = 0;
}

void TMemoryStream::LoadFromFile(const String& file_name) {
  const std::string bytes = ReadFileBytes(file_name);
  const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
  data_.assign(first, first + bytes.size());
  position_ = 0;
}

void TMemoryStream::SaveToStream(TStream& target) const { target.WriteBuffer(data_); }

void TMemoryStream::SaveToFile(const String& file_name) const {
  TFileStream file(file_name, TFileMode::fmCreate);
  SaveToStream(file);
}

// ------------------------------------------------------------------------------ TFileStream

TFileStream::TFileStream(const String& file_name, TFileMode mode)
    : file_name_(file_name), mode_(mode), file_(std::make_unique<std::filebuf>()) {
  using std::ios_base;
  ios_base::openmode open_mode = ios_base::binary;
  switch (mode) {
    case TFileMode::fmCreate:
      open_mode |= ios_base::in | ios_base::out | ios_base::trunc;
      break;
    case TFileMode::fmOpenRead:
      open_mode |= ios_base::in;
      break;
    // Without ios_base::in an output file buffer truncates the file.
    case TFileMode::fmOpenWrite:
    case TFileMode::fmOpenReadWrite:
      open_mode |= ios_base::in | ios_base::out;
      break;
  }
  errno = 0;
  if (!file_->open(PathOf(file_name), open_mode)) {
    const String verb = mode == TFileMode::fmCreate ? u"Cannot create file \"" : u"Cannot open file \"";
    throw EFOpenError(verb + file_name + u"\"." + ReasonOf(errno));
  }
}

TFileStream::~TFileStream() = default;

void TFileStream::SwitchTo(LastAccess access) {
  if (last_access_ != LastAccess::None && last_access_ != access) {
    file_->pubseekpos(file_->pubseekoff(0, std::ios_base::cur));
  }
  last_access_ = access;
}

std::size_t TFileStream::Read(std::span<std::byte> buffer) {
  if (mode_ == TFileMode::fmOpenWrite || buffer.empty()) return 0;
  SwitchTo(LastAccess::Reading);
  const std::streamsize read =
      file_->sgetn(reinterpret_cast<char*>(buffer.data()), static_cast<std::streamsize>(buffer.size()));
  return read > 0 ? static_cast<std::size_t>(read) : 0;
}

std::size_t TFileStream::Write(std::span<const std::byte> data) {
  if (mode_ == TFileMode::fmOpenRead || data.empty()) return 0;
  SwitchTo(LastAccess::Writing);
  const std::streamsize written =
      file_->sputn(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
  return written > 0 ? static_cast<std::size_t>(written) : 0;
}

int64_t TFileStream::Seek(int64_t offset, TSeekOrigin origin) {
  const auto current = static_cast<int64_t>(file_->pubseekoff(0, std::ios_base::cur));
  if (origin == TSeekOrigin::soCurrent && offset == 0) return current;
  int64_t size = 0;
  if (origin == TSeekOrigin::soEnd) {
    size = static_cast<int64_t>(file_->pubseekoff(0, std::ios_base::end));
    file_->pubseekpos(current);  // a refused seek must leave the position alone
  }
  const int64_t target = SeekTarget(offset, origin, current, size);
  if (file_->pubseekpos(target) == std::streampos(std::streamoff(-1))) {
    throw EStreamError(u"Stream seek error in file \"" + file_name_ + u"\" at position " + IntToStr(target));
  }
  last_access_ = LastAccess::None;
  return target;
}

void TFileStream::SetSize(int64_t new_size) {
  if (new_size < 0) throw EStreamError(u"Stream size error: negative size " + IntToStr(new_size));
  const int64_t position = Position();
  file_->pubsync();
  std::error_code error;
  std::filesystem::resize_file(PathOf(file_name_), static_cast<std::uintmax_t>(new_size), error);
  if (error) {
    throw EStreamError(u"Cannot resize file \"" + file_name_ + u"\". " + FromUtf8(error.message()));
  }
  // Repositioning also drops whatever the file buffer still holds from before the resize.
  Seek(std::min(position, new_size), TSeekOrigin::soBeginning);
}

}  // namespace veska
