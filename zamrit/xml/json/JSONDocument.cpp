#include "zamrit/xml/json/JSONDocument.h"

#include <filesystem>
#include <system_error>

#include "zamrit/common/Encoding.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/NodesDetail.h"
#include "zamrit/xml/json/WriterDetail.h"

namespace zm {

using detail::TJSONNodes;

TZmJSONDocument::TZmJSONDocument() : TZmJSONBase(nullptr, detail::ClassFlags(detail::jcDocument, jdtNull)) {}

TZmOwner<TZmJSONDocument> TZmJSONDocument::CreateFromFile(StringView FileName, std::uint16_t Mode) {
  auto document = Create<TZmJSONDocument>();
  document->LoadFromFile(FileName, Mode);
  return document;
}
TZmOwner<TZmJSONDocument> TZmJSONDocument::CreateFromJSON(StringView Text) {
  auto document = Create<TZmJSONDocument>();
  document->SetAsJSON(Text);
  return document;
}
TZmOwner<TZmJSONDocument> TZmJSONDocument::CreateFromJSON(std::string_view Text, std::uint16_t CodePage) {
  return CreateFromJSON(TZmEncoding::ConvertA(Text, CodePage));
}
TZmOwner<TZmJSONDocument> TZmJSONDocument::CreateFromStream(TStream* Stream, std::uint16_t CodePage,
                                                            bool FormURLEncoded) {
  auto document = Create<TZmJSONDocument>();
  document->LoadFromStream(Stream, CodePage, FormURLEncoded);
  return document;
}

TZmJSONBase* TZmJSONDocument::CreateRootValue(TZmJSONDataType DataType) {
  DestroyObjects();
  return TJSONNodes::NewValue(this, DataType);
}

TZmJSONBase* TZmJSONDocument::GetRootValue() {
  return TJSONNodes::CountOf(*this) == 1 ? TJSONNodes::ItemOf(*this, 0) : nullptr;
}

TZmJSONBase* TZmJSONDocument::Root() {
  if (TZmJSONBase* const root = GetRootValue()) return root;
  throw EZmJSONParseError(_cZmJSONNoRoot, 10);
}

String TZmJSONDocument::GetAsJSON() { return detail::JSONTextOf(*this, false); }

void TZmJSONDocument::LoadFromStream(TStream* Stream, std::uint16_t CodePage, bool FormURLEncoded) {
  TZmJSONBase::LoadFromStream(Stream, CodePage, FormURLEncoded);
}

void TZmJSONDocument::LoadFromFile(StringView FileName, std::uint16_t Mode) {
  std::error_code failure;
  if (!std::filesystem::exists(std::filesystem::path(FileName), failure)) throw EReadError(_cZmJSONNoFile, {FileName});
  TFileStream stream(FileName, Mode);
  LoadFromStream(&stream);
}

void TZmJSONDocument::SaveToFile(StringView FileName, bool Format) {
  TFileStream stream(FileName, fmCreate);
  SaveToStream(&stream, Format, cZmPageUTF8, true);
}

void TZmJSONDocument::SaveToStream(TStream* Stream, bool Format, std::uint16_t CodePage, bool WriteBOM) {
  if (CodePage == cZmPageUTF16) {
    if (WriteBOM) Stream->WriteBuffer(cZmUTF16LE, sizeof cZmUTF16LE);
    TZmJSONBase::SaveToStream(Stream, Format, 0, false);
  } else if (CodePage == cZmPageUTF8) {
    if (WriteBOM) Stream->WriteBuffer(cZmUTF8, sizeof cZmUTF8);
    detail::WriteJSON(*this, Stream, Format, 0, false, cZmPageUTF8);
  } else {
    const RawByteString bytes = TZmEncoding::ConvertW(detail::JSONTextOf(*this, Format), CodePage);
    Stream->WriteBuffer(bytes.data(), bytes.size());
  }
}

TZmIntf<IZmJSONBase> TZmJSONDocument::GetRootValueIntf() { return {GetRootValue()}; }
TZmIntf<IZmJSONBase> TZmJSONDocument::CreateRootValueIntf(TZmJSONDataType DataType) {
  return {CreateRootValue(DataType)};
}
TZmIntf<IZmJSONMember> TZmJSONDocument::FindMemberIntf(const TZmAnyText& Name, bool IgnoreCase) {
  return {FindMember(Name, IgnoreCase)};
}
TZmIntf<IZmJSONMember> TZmJSONDocument::GetMemberIntf(const TZmAnyText& Name, TZmJDOCSelectOptions Options) {
  return {GetMember(Name, Options)};
}

}  // namespace zm
