#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "tests/support/Pipe.h"
#include "tests/support/Raised.h"
#include "zamrit/platform/Streams.h"

namespace {

// A folder of its own for a test, gone afterwards.
struct TFolder {
  TFolder() {
    char name[] = "/tmp/zamritXXXXXX";
    Path = ::mkdtemp(name);
  }
  ~TFolder() { std::filesystem::remove_all(Path); }
  std::string operator/(const char* Name) const { return Path + "/" + Name; }

  std::string Path;
};

// Takes and gives a few bytes at a time, and ten in all.
struct TScantStream : zm::TMemoryStream {
  std::size_t Read(void* Buffer, std::size_t Count) override {
    return TMemoryStream::Read(Buffer, std::min<std::size_t>(Count, 3));
  }
  std::size_t Write(const void* Buffer, std::size_t Count) override {
    return TMemoryStream::Write(Buffer, std::min<std::size_t>({Count, 3, 10 - FPosition}));
  }
};

class TDeafStream : public zm::TStream {
  ZM_OBJECT(TDeafStream, zm::TStream)
};

std::string Content(zm::TStream& Stream) {
  std::string text(static_cast<std::size_t>(Stream.GetSize()), '\0');
  Stream.SetPosition(0);
  Stream.ReadBuffer(text.data(), text.size());
  return text;
}

void Put(zm::TStream& Stream, std::string_view Text) { Stream.WriteBuffer(Text.data(), Text.size()); }

TEST(Streams, BuffersAndCopiesGoOverShortTransfers) {
  TScantStream source;
  Put(source, "0123456789");
  EXPECT_EQ(Raised<zm::EWriteError>([&] { Put(source, "x"); }), "Stream write error");
  EXPECT_EQ(Raised<zm::EReadError>([&] { source.ReadBuffer(std::string(1, ' ').data(), 1); }), "Stream read error");
  const struct {
    std::uint64_t Count;
    std::size_t BufferSize;
    const char* Expected;
  } cases[] = {{0, 1 << 20, "0123456789"}, {0, 0, "0123456789"}, {4, 1 << 20, "3456"}, {7, 4, "3456789"}};
  for (const auto& c : cases) {
    zm::TMemoryStream target;
    source.SetPosition(3);
    EXPECT_EQ(target.CopyFrom(&source, c.Count, c.BufferSize), std::string(c.Expected).size());
    EXPECT_EQ(Content(target), c.Expected);
    source.SetPosition(3);
    EXPECT_EQ(Raised<zm::EReadError>([&] { target.CopyFrom(&source, 8, c.BufferSize); }), "Stream read error");
    EXPECT_EQ(Raised<zm::EStreamError>([&] { target.CopyFrom(&target); }), "A stream cannot be copied to itself");
  }
}

TEST(FileStream, WritesMovesAndCuts) {
  const TFolder folder;
  const std::string name = folder / "\xC3\xA9t\xC3\xA9";
  {
    zm::TFileStream file(zm::FromUTF8(name), zm::fmCreate | zm::fmShareExclusive);
    Put(file, "0123456789");
    EXPECT_EQ(file.Seek(-4, zm::soEnd), 6);
    EXPECT_EQ(file.Seek(1, zm::soCurrent), 7);
    EXPECT_EQ(file.GetSize(), 10);
    EXPECT_EQ(Raised<zm::EStreamError>([&] { file.SetPosition(-1); }), "Stream seek error. Invalid argument");
    EXPECT_EQ(Raised<zm::EStreamError>([&] { file.SetSize(-1); }), "Stream resize error. Invalid argument");
    EXPECT_EQ(file.GetPosition(), 7);
    file.SetSize(4);
    file.SetSize(6);
    EXPECT_EQ(file.GetPosition(), 4);
    EXPECT_EQ(Content(file), std::string("0123\0\0", 6));
  }
  zm::TFileStream reading(name, zm::fmOpenRead), writing(name, zm::fmOpenWrite), both(name, zm::fmOpenReadWrite);
  EXPECT_EQ(Raised<zm::EWriteError>([&] { Put(reading, "x"); }), "Stream write error. Bad file descriptor");
  EXPECT_EQ(Raised<zm::EReadError>([&] { Content(writing); }), "Stream read error. Bad file descriptor");
  Put(both, "abc");
  EXPECT_EQ(Content(reading), std::string("abc3\0\0", 6));
  EXPECT_EQ(zm::TFileStream(name, zm::fmCreate).GetSize(), 0);
}

TEST(FileStream, SaysWhyAFileCannotBeOpened) {
  const TFolder folder;
  const std::string none = folder / "none";
  const struct {
    std::string Name;
    std::uint16_t Mode;
    const char* Reason;
  } cases[] = {{none, zm::fmOpenRead, "No such file or directory"},
               {none, 3, "Invalid argument"},
               {folder.Path, zm::fmOpenRead, "Is a directory"},
               {folder.Path, zm::fmCreate, "Is a directory"},
               {none + "/a", zm::fmCreate, "No such file or directory"}};
  for (const auto& c : cases) {
    const auto open = [&] { zm::TFileStream(c.Name, c.Mode); };
    const std::string told = " file \"" + c.Name + "\". " + c.Reason;
    if (c.Mode == zm::fmCreate)
      EXPECT_EQ(Raised<zm::EFCreateError>(open), "Cannot create" + told);
    else
      EXPECT_EQ(Raised<zm::EFOpenError>(open), "Cannot open" + told);
  }
  EXPECT_THROW(zm::TFileStream(none + '\0' + "x", zm::fmCreate), zm::EFCreateError);
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path));
}

TEST(FileStream, FullDisk) {
  if (!std::filesystem::exists("/dev/full")) return;  // systems without such a device
  zm::TFileStream full("/dev/full", zm::fmOpenWrite);
  EXPECT_EQ(Raised<zm::EWriteError>([&] { Put(full, "x"); }), "Stream write error. No space left on device");
}

TEST(HandleStream, PipeOnlyGoesForward) {
  TPipe pipe;
  Put(pipe.Out, "0123456789");
  EXPECT_EQ(pipe.Out.GetPosition(), 10);
  std::string text(4, ' ');
  pipe.In.ReadBuffer(text.data(), 4);
  EXPECT_EQ(text, "0123");
  EXPECT_EQ(pipe.In.Seek(4, zm::soBeginning), 4);
  for (const auto& to : {std::pair{0, zm::soBeginning}, {1, zm::soCurrent}, {0, zm::soEnd}})
    EXPECT_EQ(Raised<zm::EStreamError>([&] { pipe.In.Seek(to.first, to.second); }), "THandleStream cannot be moved");
}

TEST(MemoryStream, InPlaceUnlessADescendantMayReadOtherwise) {
  zm::TMemoryStream stream;
  std::uint64_t size = 1;
  EXPECT_NE(stream.InPlace(size), nullptr);
  EXPECT_EQ(size, 0u);
  Put(stream, "abc");
  EXPECT_EQ(stream.InPlace(size), stream.GetMemory());
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(TScantStream().InPlace(size), nullptr);
}

}  // namespace
