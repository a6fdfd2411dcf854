#include "kernel/platform/streams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "kernel/platform/exceptions.h"
#include "tests/support/temp_folder.h"

namespace veska {
namespace {

using ::testing::StartsWith;
using ::testing::ThrowsMessage;

std::span<const std::byte> BytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

std::string ReadAll(TStream& stream) {
  stream.SetPosition(0);
  std::string text(static_cast<std::size_t>(stream.Size()), '\0');
  stream.ReadBuffer(std::as_writable_bytes(std::span(text)));
  return text;
}

TEST(MemoryStream, GrowsReadsBackCopiesSeeksFromEveryOriginAndFillsGapsWithZeros) {
  TMemoryStream stream;
  std::string expected;
  for (int i = 0; i < 20000; ++i) {
    const std::string piece = std::to_string(i) + ",";
    stream.WriteBuffer(BytesOf(piece));
    expected += piece;
  }
  EXPECT_EQ(stream.Position(), static_cast<int64_t>(expected.size()));
  EXPECT_EQ(ReadAll(stream), expected);
  std::array<std::byte, 4> buffer{};
  EXPECT_EQ(stream.Read(buffer), 0u);  // at the end
  stream.SetPosition(stream.Size() - 2);
  EXPECT_THAT([&] { stream.ReadBuffer(buffer); },
              ThrowsMessage<EReadError>("Stream read error: 4 bytes wanted at position 108888, 2 left"));

  TMemoryStream whole, part;  // the whole is more than one chunk of the copy
  EXPECT_EQ(whole.CopyFrom(stream, 0), static_cast<int64_t>(expected.size()));
  EXPECT_EQ(ReadAll(whole), expected);
  stream.SetPosition(100);
  EXPECT_EQ(part.CopyFrom(stream, 5), 5);
  EXPECT_EQ(ReadAll(part), expected.substr(100, 5));
  EXPECT_THROW(part.CopyFrom(stream, -1), EStreamError);

  TMemoryStream small(BytesOf("abcdef"));
  EXPECT_EQ((std::tuple{small.Seek(2, TSeekOrigin::soBeginning), small.Seek(1, TSeekOrigin::soCurrent),
                        small.Seek(-1, TSeekOrigin::soEnd)}),
            std::tuple(2, 3, 5));
  EXPECT_THROW(small.Seek(-7, TSeekOrigin::soEnd), EStreamError);
  EXPECT_EQ(small.Seek(4, TSeekOrigin::soCurrent), 9);  // from where the refused seek left it, past the end
  small.WriteBuffer(BytesOf("Z"));
  EXPECT_EQ(ReadAll(small), std::string("abcdef\0\0\0Z", 10));
  small.SetSize(4);  // truncating pulls the position back
  EXPECT_EQ(small.Position(), 4);
  small.SetSize(6);
  EXPECT_EQ(ReadAll(small), std::string("abcd\0\0", 6));
  small.Clear();
  EXPECT_EQ(std::tuple(small.Size(), small.Position()), std::tuple(0, 0));
}

TEST(FileStream, ModesKeepOrReplaceTheContentWholeFilesLoadAndSaveAndOpenFailuresNameTheFile) {
  const test::TempFolder folder;
  const String name = folder.Path("Příliš žluťoučký.bin");  // a non-ASCII file name
  TFileStream(name, TFileMode::fmCreate).WriteBuffer(BytesOf("abcdefgh"));
  {
    TFileStream file(name, TFileMode::fmOpenReadWrite);
    std::array<std::byte, 2> two{};
    file.ReadBuffer(two);             // "ab"
    file.WriteBuffer(BytesOf("XY"));  // over "cd"
    file.ReadBuffer(two);             // "ef"
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(two.data()), 2), "ef");
    EXPECT_THROW(file.Seek(-9, TSeekOrigin::soEnd), EStreamError);
    EXPECT_EQ(file.Seek(4, TSeekOrigin::soCurrent), 10);  // from where the refused seek left it
    file.WriteBuffer(BytesOf("!"));                       // a gap of two zero bytes
    file.SetSize(9);
  }
  {
    TFileStream file(name, TFileMode::fmOpenWrite);
    std::array<std::byte, 1> one{};
    EXPECT_EQ(file.Read(one), 0u);  // write-only
    file.WriteBuffer(BytesOf("A"));
  }
  TFileStream file(name, TFileMode::fmOpenRead);
  EXPECT_EQ(file.FileName(), name);
  EXPECT_EQ(ReadAll(file), std::string("AbXYefgh\0", 9));
  EXPECT_THROW(file.WriteBuffer(BytesOf("x")), EWriteError);  // read-only

  TMemoryStream saved(BytesOf(std::string_view("VSK0\0\1\2", 7)));
  saved.SaveToFile(name);
  TMemoryStream loaded(BytesOf("old content that is replaced"));
  loaded.LoadFromFile(name);
  EXPECT_EQ(loaded.Position(), 0);
  EXPECT_EQ(ReadAll(loaded), std::string("VSK0\0\1\2", 7));

  const String missing = folder.Path("missing.vsk"), in_missing_folder = folder.Path("no/such/folder/new.vsk");
  EXPECT_THAT([&] { loaded.LoadFromFile(missing); },
              ThrowsMessage<EFOpenError>("Cannot open file \"" + ToUtf8(missing) + "\". No such file or directory"));
  EXPECT_THAT([&] { TFileStream(missing, TFileMode::fmOpenRead); },
              ThrowsMessage<EFOpenError>("Cannot open file \"" + ToUtf8(missing) + "\". No such file or directory"));
  EXPECT_THAT([&] { TFileStream(in_missing_folder, TFileMode::fmCreate); },
              ThrowsMessage<EFOpenError>(StartsWith("Cannot create file \"" + ToUtf8(in_missing_folder) + "\".")));
}

}  // namespace
}  // namespace veska
