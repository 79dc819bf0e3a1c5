#pragma once

#include <concepts>
#include <string_view>

#include "zamrit/xml/json/JSONBase.h"

namespace zm {

/// A JSON text in memory: one value, an object or an array, as its root. May also stand on the stack or in a member.
class TZmJSONDocument : public TZmJSONBase, public virtual IZmJSONDocument {
  ZM_OBJECT(TZmJSONDocument, TZmJSONBase)
 public:
  /// Without a root.
  TZmJSONDocument();
  /// \name Documents that are loaded at once
  /// They raise what loading raises. The caller owns what they return.
  ///@{
  /// As LoadFromFile.
  static TZmOwner<TZmJSONDocument> CreateFromFile(StringView FileName, std::uint16_t Mode = fmOpenRead);
  /// Without a root where the text is empty.
  static TZmOwner<TZmJSONDocument> CreateFromJSON(StringView Text);
  /// The same from 8-bit text in a code page.
  static TZmOwner<TZmJSONDocument> CreateFromJSON(std::string_view Text, std::uint16_t CodePage);
  /// As LoadFromStream.
  static TZmOwner<TZmJSONDocument> CreateFromStream(TStream* Stream, std::uint16_t CodePage,
                                                    bool FormURLEncoded = false);
  ///@}

  /// Whether white space may stand before and after the root. Off at first: then a line break at the end of a text is
  /// refused.
  bool GetAllowSurroundingSpace() const { return FAllowSurroundingSpace; }
  void SetAllowSurroundingSpace(bool Value) { FAllowSurroundingSpace = Value; }

  /// Replaces the root by a new value.
  TZmJSONBase* CreateRootValue(TZmJSONDataType DataType);
  /// The root, or nil.
  TZmJSONBase* GetRootValue();
  /// \name Of the root
  /// EZmJSONParseError "There is no root value!", code 10, where there is none. They are templates so as not to
  /// override: through a TZmJSONBase a document refuses them, and with them HasMember, GetMemberEx and GetMemberEx1.
  /// FindMemberIntf and GetMemberIntf go to the root from everywhere.
  ///@{
  template <class Text>
  TZmJSONMember* FindMember(const Text& Name, bool IgnoreCase = false) {
    return Root()->FindMember(Name, IgnoreCase);
  }
  template <class Text>
  TZmJSONMember* GetMember(const Text& Name, TZmJDOCSelectOptions Options) {
    return Root()->GetMember(Name, Options);
  }
  template <std::integral Number>
  TZmJSONBase* Item(Number Index) {
    return Root()->Item(static_cast<int>(Index));
  }
  ///@}

  String GetAsJSON() override;
  String GetFormattedJSON() override { return TZmJSONBase::GetFormattedJSON(); }
  void SetAsJSON(StringView Text) override { TZmJSONBase::SetAsJSON(Text); }
  using TZmJSONBase::LoadFromStream;
  void LoadFromStream(TStream* Stream, std::uint16_t CodePage, bool FormURLEncoded) override;
  /// Raises EReadError with the name where there is no such file.
  void LoadFromFile(StringView FileName, std::uint16_t Mode = fmOpenRead) override;
  /// UTF-8 with a byte order mark.
  void SaveToFile(StringView FileName, bool Format = false) override;
// A page must not be taken for a level: what other nodes offer under this name is hidden on purpose.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
#endif
  /// Writes in a code page; the mark goes out in UTF-16 and UTF-8 only.
  void SaveToStream(TStream* Stream, bool Format, std::uint16_t CodePage, bool WriteBOM) override;
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
  TZmIntf<IZmJSONBase> GetRootValueIntf() override;
  TZmIntf<IZmJSONBase> CreateRootValueIntf(TZmJSONDataType DataType) override;
  TZmIntf<IZmJSONMember> FindMemberIntf(const TZmAnyText& Name, bool IgnoreCase = false) override;
  TZmIntf<IZmJSONMember> GetMemberIntf(const TZmAnyText& Name, TZmJDOCSelectOptions Options) override;
  TZmIntf<IZmJSONArray> SelectIntf(const TZmAnyText& Path, TZmJDOCSelectOptions Options = {}) override {
    return TZmJSONBase::SelectIntf(Path, Options);
  }
  TObject* Implementor() override { return this; }

 private:
  friend class detail::TJSONNodes;
  using TZmJSONBase::TZmJSONBase;
  TZmJSONBase* Root();

  bool FAllowSurroundingSpace = false;
};

}  // namespace zm
