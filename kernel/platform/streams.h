// Byte streams: the abstract TStream and its memory and file implementations.
//
// Positions and sizes are 64-bit byte offsets.  Read and Write move as many bytes as they can
// and return the count; ReadBuffer and WriteBuffer insist on the whole count and raise
// EReadError / EWriteError otherwise.  Seeking before the beginning raises EStreamError; seeking
// past the end is allowed (a following write fills the gap with zero bytes).
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <span>
#include <vector>

#include "kernel/platform/string.h"

namespace veska {

enum class TSeekOrigin { soBeginning, soCurrent, soEnd };

class TStream {
 public:
  virtual ~TStream() = default;
  TStream() = default;
  TStream(const TStream&) = delete;
  TStream& operator=(const TStream&) = delete;

  // Reads up to buffer.size() bytes at the position; returns how many were read (0 at the end).
  virtual std::size_t Read(std::span<std::byte> buffer) = 0;
  // Writes up to data.size() bytes at the position; returns how many were written.
  virtual std::size_t Write(std::span<const std::byte> data) = 0;
  // Moves the position and returns the new one.
  virtual int64_t Seek(int64_t offset, TSeekOrigin origin) = 0;

  virtual int64_t Size();
  // Truncates or extends the stream (extension with zero bytes).  A position beyond the new
  // size moves to the new end.
  virtual void SetSize(int64_t new_size) = 0;

  int64_t Position() { return Seek(0, TSeekOrigin::soCurrent); }
  void SetPosition(int64_t position) { Seek(position, TSeekOrigin::soBeginning); }

  // Exactly buffer.size() bytes, or EReadError naming the shortfall.
  void ReadBuffer(std::span<std::byte> buffer);
  // Exactly data.size() bytes, or EWriteError.
  void WriteBuffer(std::span<const std::byte> data);
  // Copies count bytes from source's position; count 0 copies the whole source from its start.
  // Returns the number of bytes copied.
  int64_t CopyFrom(TStream& source, int64_t count);
};

// The EReadError text for a read that the stream could not satisfy, such as
// "Stream read error: 4 bytes wanted at position 10, 2 left".  Shared by everything that reads
// streams so that every underrun reads the same.
String ReadShortfallText(int64_t wanted, int64_t position, int64_t left);

// A stream over a growable block of memory.
class TMemoryStream : public TStream {
 public:
  TMemoryStream() = default;
  // A stream holding a copy of the content, positioned at its start.
  explicit TMemoryStream(std::span<const std::byte> content) : data_(content.begin(), content.end()) {}

  std::size_t Read(std::span<std::byte> buffer) override;
  std::size_t Write(std::span<const std::byte> data) override;
  int64_t Seek(int64_t offset, TSeekOrigin origin) override;
  int64_t Size() override { return static_cast<int64_t>(data_.size()); }
  void SetSize(int64_t new_size) override;

  // The whole content.  The view stays valid until the next write or size change.
  std::span<std::byte> Memory() { return data_; }
  std::span<const std::byte> Memory() const { return data_; }
  // Empties the stream and releases its memory.
  void Clear();

  // Replace the content by the whole of another stream or file; the position becomes 0.
  void LoadFromStream(TStream& source);
  void LoadFromFile(const String& file_name);
  // Write the whole content to another stream at its position, or to a new file.
  void SaveToStream(TStream& target) const;
  void SaveToFile(const String& file_name) const;

 private:
  std::vector<std::byte> data_;
  int64_t position_ = 0;
};

// How TFileStream opens its file.
enum class TFileMode {
  fmCreate,         // create the file, or empty an existing one; read and write
  fmOpenRead,       // open an existing file for reading only
  fmOpenWrite,      // open an existing file for writing only, keeping its content
  fmOpenReadWrite,  // open an existing file for reading and writing, keeping its content
};

// A stream over a file.  Raises EFOpenError naming the file when it cannot be opened or created.
class TFileStream : public TStream {
 public:
  TFileStream(const String& file_name, TFileMode mode);
  ~TFileStream() override;

  std::size_t Read(std::span<std::byte> buffer) override;
  std::size_t Write(std::span<const std::byte> data) override;
  int64_t Seek(int64_t offset, TSeekOrigin origin) override;
  void SetSize(int64_t new_size) override;

  const String& FileName() const { return file_name_; }

 private:
  enum class LastAccess { None, Reading, Writing };
  // A file buffer must be repositioned between a read and a write in either order.
  void SwitchTo(LastAccess access);

  String file_name_;
  TFileMode mode_;
  // Behind a pointer so that users of this header do not compile <fstream>.
  std::unique_ptr<std::filebuf> file_;
  LastAccess last_access_ = LastAccess::None;
};

}  // namespace veska
