#include "kernel/platform/streams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
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

TEST(MemoryStream, GrowsOnWriteAndReadsBackReportingTheShortfall) {
  TMemoryStream stream;
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
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
              ThrowsMessage<EReadError>("Stream read error: 4 bytes wanted at position 23888, 2 left"));
}

TEST(MemoryStream, SeeksFromEveryOriginAndFillsGapsWithZeros) {
  TMemoryStream stream;
  stream.WriteBuffer(BytesOf("abcdef"));
  EXPECT_EQ(stream.Seek(2, TSeekOrigin::soBeginning), 2);
  EXPECT_EQ(stream.Seek(1, TSeekOrigin::soCurrent), 3);
  EXPECT_EQ(stream.Seek(-1, TSeekOrigin::soEnd), 5);
  EXPECT_THROW(stream.Seek(-7, TSeekOrigin::soEnd), EStreamError);
  EXPECT_EQ(stream.Position(), 5);  // a refused seek leaves the position alone

  EXPECT_EQ(stream.Seek(3, TSeekOrigin::soEnd), 9);  // past the end is allowed
  EXPECT_EQ(stream.Size(), 6);
  stream.WriteBuffer(BytesOf("Z"));
  EXPECT_EQ(ReadAll(stream), std::string("abcdef\0\0\0Z", 10));
  stream.SetSize(4);  // truncating pulls the position back
  EXPECT_EQ(stream.Position(), 4);
  stream.SetSize(6);
  EXPECT_EQ(ReadAll(stream), std::string("abcd\0\0", 6));
  stream.Clear();
  EXPECT_EQ(std::tuple(stream.Size(), stream.Position()), std::tuple(0, 0));
}

TEST(MemoryStream, CopyFromCopiesAPartOrTheWholeSource) {
  TMemoryStream source;
  std::string content(200000, '\0');
  std::mt19937 random(7);
  for (char& c : content) c = static_cast<char>(random());
  source.WriteBuffer(BytesOf(content));

  TMemoryStream whole;
  EXPECT_EQ(whole.CopyFrom(source, 0), static_cast<int64_t>(content.size()));
  EXPECT_EQ(ReadAll(whole), content);
  TMemoryStream part;
  source.SetPosition(100);
  EXPECT_EQ(part.CopyFrom(source, 5), 5);
  EXPECT_EQ(ReadAll(part), content.substr(100, 5));
  EXPECT_THROW(part.CopyFrom(source, -1), EStreamError);
}

TEST(FileStream, ModesKeepOrReplaceTheContentAndReadsAndWritesAlternate) {
  const test::TempFolder folder;
  const String name = folder.Path("data.bin");
  {
    TFileStream file(name, TFileMode::fmCreate);
    file.WriteBuffer(BytesOf("abcdefgh"));
    EXPECT_EQ(file.FileName(), name);
  }
  {
    TFileStream file(name, TFileMode::fmOpenReadWrite);
    std::array<std::byte, 2> two{};
    file.ReadBuffer(two);             // "ab"
    file.WriteBuffer(BytesOf("XY"));  // over "cd"
    file.ReadBuffer(two);             // "ef"
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(two.data()), 2), "ef");
    EXPECT_THROW(file.Seek(-9, TSeekOrigin::soEnd), EStreamError);
    EXPECT_EQ(file.Position(), 6);
    file.Seek(2, TSeekOrigin::soEnd);
    file.WriteBuffer(BytesOf("!"));  // a gap of two zero bytes
    file.SetSize(9);
  }
  {
    TFileStream file(name, TFileMode::fmOpenWrite);
    std::array<std::byte, 1> one{};
    EXPECT_EQ(file.Read(one), 0u);  // write-only
    file.WriteBuffer(BytesOf("A"));
  }
  TFileStream file(name, TFileMode::fmOpenRead);
  EXPECT_EQ(ReadAll(file), std::string("AbXYefgh\0", 9));
  EXPECT_THROW(file.WriteBuffer(BytesOf("x")), EWriteError);  // read-only
}

TEST(FileStream, OpenFailureNamesTheFile) {
  const test::TempFolder folder;
  const String missing = folder.Path("missing.vsk"), in_missing_folder = folder.Path("no/such/folder/new.vsk");
  EXPECT_THAT([&] { TFileStream(missing, TFileMode::fmOpenRead); },
              ThrowsMessage<EFOpenError>("Cannot open file \"" + ToUtf8(missing) + "\". No such file or directory"));
  EXPECT_THAT([&] { TFileStream(in_missing_folder, TFileMode::fmCreate); },
              ThrowsMessage<EFOpenError>(StartsWith("Cannot create file \"" + ToUtf8(in_missing_folder) + "\".")));
}

TEST(FileStream, MemoryStreamLoadsAndSavesWholeFiles) {
  const test::TempFolder folder;
  const String name = folder.Path("Příliš žluťoučký.bin");  // a non-ASCII file name
  TMemoryStream saved;
  saved.WriteBuffer(BytesOf(std::string("VSK0\0\1\2", 7)));
  saved.SaveToFile(name);

  TMemoryStream loaded;
  loaded.WriteBuffer(BytesOf("old content that is replaced"));
  loaded.LoadFromFile(name);
  EXPECT_EQ(loaded.Position(), 0);
  EXPECT_EQ(ReadAll(loaded), std::string("VSK0\0\1\2", 7));
  EXPECT_THROW(loaded.LoadFromFile(folder.Path("absent")), EFOpenError);
}

}  // namespace
}  // namespace veska
