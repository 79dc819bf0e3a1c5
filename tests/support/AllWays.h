#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/PlainReader.h"
#include "zamrit/common/Encoding.h"

/// Shows bytes as a stream whose reads bring few of them at a time.
class TShortStream : public zm::TCustomMemoryStream {
 public:
  TShortStream(const std::string& Bytes, std::size_t ReadSize) : FReadSize(ReadSize) {
    FMemory = Bytes.data();
    FSize = Bytes.size();
  }
  std::size_t Read(void* Buffer, std::size_t Count) override {
    return TCustomMemoryStream::Read(Buffer, std::min(Count, FReadSize));
  }

 private:
  std::size_t FReadSize;
};

/// How documents are read.
struct TSetup {
  std::uint16_t Page;
  bool SingleRoot;
  bool Lexical;
  std::size_t ReadSize;
};

/// The events of documents that one reader reads in turn, since a failed parse leaves something behind for the next.
/// Page 0 is not for the plain reader, which is taken to agree.
struct TAllWays {
  std::string Whole, InPieces, Plain;

  TAllWays(const std::vector<std::string>& Documents, const TSetup& Setup) {
    for (const bool pieces : {false, true}) {
      TEventRecorder recorder;
      zm::TZmSAXXMLReader reader;
      recorder.Locator = &reader;
      reader.SetHandler(&recorder);
      if (!Setup.Lexical) reader.SetLexicalHandler(nullptr);
      reader.SetCheckSingleRootElement(Setup.SingleRoot);
      for (const auto& document : Documents) {
        TShortStream stream(document, Setup.ReadSize);
        if (pieces)
          recorder.Read(reader, &stream, Setup.Page);
        else
          recorder.Read(reader, std::string_view(document), Setup.Page);
      }
      (pieces ? InPieces : Whole) = std::move(recorder.Text);
    }
    if (Setup.Page == 0) Plain = Whole;
    TPlainReader plain;
    plain.SingleRoot = Setup.SingleRoot;
    plain.Lexical = Setup.Lexical;
    for (const auto& document : Documents)
      if (Setup.Page != 0) Plain += plain.Parse(zm::TZmEncoding::ConvertA(document, Setup.Page));
  }

  bool Agree() const { return InPieces == Whole && Plain == Whole; }
};
