#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/support/EventRecorder.h"
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
struct TAllWays {
  std::string Whole, InPieces, Plain;

  TAllWays(const std::vector<std::string>& Documents, const TSetup& Setup) {
    Whole = Read(Setup, Documents, [&](auto& recorder, auto& reader, const std::string& document) {
      recorder.ReadAsSet(reader, std::string_view(document), Setup.Page);
    });
    InPieces = Read(Setup, Documents, [&](auto& recorder, auto& reader, const std::string& document) {
      TShortStream stream(document, Setup.ReadSize);
      recorder.ReadAsSet(reader, &stream, Setup.Page);
    });
    if (Setup.Page == 0) return;
    TPlainReader plain;
    plain.FCheckSingleRootElm = Setup.SingleRoot;
    plain.FHasLexicalHandler = Setup.Lexical;
    for (const auto& document : Documents) Plain += plain.Parse(zm::TZmEncoding::ConvertA(document, Setup.Page));
  }

 private:
  template <class F>
  static std::string Read(const TSetup& Setup, const std::vector<std::string>& Documents, F ReadOne) {
    zm::TZmSAXXMLReader reader;
    TEventRecorder recorder(&reader);
    reader.SetHandler(&recorder);
    if (!Setup.Lexical) reader.SetLexicalHandler(nullptr);
    reader.SetCheckSingleRootElement(Setup.SingleRoot);
    for (const auto& document : Documents) ReadOne(recorder, reader, document);
    return recorder.Text;
  }
};
