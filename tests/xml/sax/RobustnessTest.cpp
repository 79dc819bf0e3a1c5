#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/FailingAllocations.h"
#include "zamrit/zamrit.h"

thread_local long AllocationsUntilFailure = -1;

namespace {

void* Allocate(std::size_t Size) {
  if (AllocationsUntilFailure > 0 && --AllocationsUntilFailure == 0) throw std::bad_alloc();
  if (void* block = std::malloc(Size ? Size : 1)) return block;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t Size) { return Allocate(Size); }
void* operator new[](std::size_t Size) { return Allocate(Size); }
void* operator new(std::size_t Size, const std::nothrow_t&) noexcept { return std::malloc(Size ? Size : 1); }
void* operator new[](std::size_t Size, const std::nothrow_t&) noexcept { return std::malloc(Size ? Size : 1); }
void operator delete(void* Block) noexcept { std::free(Block); }
void operator delete[](void* Block) noexcept { std::free(Block); }
void operator delete(void* Block, std::size_t) noexcept { std::free(Block); }
void operator delete[](void* Block, std::size_t) noexcept { std::free(Block); }

namespace {

// Adds up what it is told, without memory of its own.
struct TSum : zm::TZmSAXDefaultHandler {
  std::size_t Events = 0, Units = 0;

  void StartElement(zm::StringView URI, zm::StringView LocalName, zm::StringView QName,
                    zm::IZmSAXAttributes& Attributes) override {
    Count(URI.size() + LocalName.size() + QName.size());
    for (int i = 0; i < Attributes.Count(); ++i) Count(Attributes.GetValue(i).size() + Attributes.GetURI(i).size());
  }
  void EndElement(zm::StringView URI, zm::StringView, zm::StringView) override { Count(URI.size()); }
  void Characters(zm::StringView Text) override { Count(Text.size()); }
  void EndPrefixMapping(zm::StringView Prefix) override { Count(Prefix.size()); }

 private:
  void Count(std::size_t Size) {
    ++Events;
    Units += Size;
  }
};

std::string Document(int Elements) {
  std::string text = "<?xml version='1.0' encoding='windows-1251'?><r xmlns='u' xmlns:p='v'>";
  for (int i = 0; i < Elements; ++i) {
    const std::string number = std::to_string(i);
    text += "<p:e" + number + " a" + number + "='1' xmlns:n" + number + "='\xE0'>" + std::string(300, '\xE1') +
            "<!-- c --><n" + number + ":x/></p:e" + number + ">";
  }
  return text + "</r>";
}

// A stream that is read through the window.
struct TPieces : zm::TZmMemoryStream {
  explicit TPieces(const std::string& Text) : TZmMemoryStream(Text.data(), Text.size()) {}
  std::size_t Read(void* Buffer, std::size_t Count) override {
    return TZmMemoryStream::Read(Buffer, Count < 999 ? Count : 999);
  }
};

TEST(XMLReaderRobustness, EveryAllocationMayFail) {
  const std::string text = Document(700);  // more names than are kept, more text than the first window
  auto reader = zm::Create<zm::TZmSAXXMLReader>();
  TSum whole;
  reader->SetHandler(&whole);
  reader->Parse(std::string_view(text));
  ASSERT_GT(whole.Events, 3500u);

  long failures = 0;
  for (long n = 1;; n = n < 400 ? n + 1 : n + n / 40) {
    TSum sum;
    bool failed = false;
    {
      TPieces pieces(text);
      reader = zm::Create<zm::TZmSAXXMLReader>();
      reader->SetHandler(&sum);
      AllocationsUntilFailure = n;
      try {
        reader->ParseStream(&pieces);
      } catch (const std::bad_alloc&) {
        failed = true;
      }
      failed = failed || AllocationsUntilFailure == 0;
      AllocationsUntilFailure = -1;
    }
    if (!failed) {
      EXPECT_EQ(sum.Units, whole.Units);
      break;
    }
    ++failures;
    // What the failed parse declared stays in force: a document of its own namespaces reads the same all the same.
    TSum again;
    reader->SetHandler(&again);
    TPieces pieces(text);
    reader->ParseStream(&pieces);
    ASSERT_GE(again.Events, whole.Events) << "after allocation " << n << " failed";
    ASSERT_GE(again.Units, whole.Units) << "after allocation " << n << " failed";
  }
  EXPECT_GT(failures, 100);
}

TEST(XMLReaderRobustness, ReadersRunSideBySide) {
  const std::string text = Document(50);
  std::vector<std::thread> threads;
  std::atomic<std::size_t> events = 0;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&text, &events] {
      for (const char* name : {"KOI8-R", "windows-1251", "Shift_JIS", "ISO-8859-5"}) {
        TSum sum;
        zm::TZmSAXXMLReader reader;
        reader.SetHandler(&sum);
        reader.Parse(std::string_view(text), zm::ZmCodePage(zm::FromUTF8(name)));
        events += sum.Events;
      }
    });
  for (std::thread& thread : threads) thread.join();
  TSum sum;
  zm::TZmSAXXMLReader reader;
  reader.SetHandler(&sum);
  reader.Parse(std::string_view(text));
  EXPECT_EQ(events, 16 * sum.Events);
}

}  // namespace
