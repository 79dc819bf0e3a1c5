#pragma once

#include <string>

#include "tests/support/AllWays.h"
#include "tests/support/PlainJSONReader.h"

/// The events of a document in a page with their places: whole, in pieces, and by the plain reader.
struct TAllJSONWays {
  std::string Whole, InPieces, Plain;

  TAllJSONWays(const std::string& Document, std::uint16_t Page, bool AllowSurroundingSpace, std::size_t ReadSize) {
    for (const bool pieces : {false, true}) {
      zm::TZmJSONReader reader;
      TJSONRecorder recorder(&reader);
      reader.SetHandler(&recorder);
      reader.SetAllowSurroundingSpace(AllowSurroundingSpace);
      TShortStream stream(Document, ReadSize);
      if (pieces)
        recorder.Read(reader, &stream, Page);
      else
        recorder.Read(reader, std::string_view(Document), Page);
      reader.SetHandler(nullptr);
      (pieces ? InPieces : Whole) = std::move(recorder.Text);
    }
    TPlainJSONReader plain;
    plain.AllowSurroundingSpace = AllowSurroundingSpace;
    Plain = plain.Parse(zm::TZmEncoding::ConvertA(Document, Page));
  }

  bool Agree() const { return InPieces == Whole && Plain == Whole; }
};
