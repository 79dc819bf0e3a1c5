#pragma once

#include "zamrit/xml/json/Interfaces.h"
#include "zamrit/xml/json/JSONBase.h"

namespace zm {

class TZmJSONReader;

/// Builds nodes from the events of a reader, under the node that it is made for. Strings are decoded, names are kept as
/// they stand in the source. Raises EZmJSONException "oeps?", code 0, for a value that has no place to go, which is
/// any simple value of a document, and Exception "Invalid objecttype" for a member outside an object.
class TZmJSONHandler : public TZmJSONDefaultHandler {
  ZM_OBJECT(TZmJSONHandler, TZmJSONDefaultHandler)
 public:
  /// Neither is owned; both must outlive the parse.
  TZmJSONHandler(TZmJSONReader* Reader, TZmJSONBase* Node) : FReader(Reader), FCurrValue(Node) {}

  void StartObject() override { Start(jdtObject); }
  void StartMember(StringView Name) override;
  void StartArray() override { Start(jdtArray); }
  void Value(TZmJSONDataType DataType, StringView Text) override;
  void EndArray() override { Leave(); }
  void EndObject() override { Leave(); }

  TZmJSONReader* GetReader() const { return FReader; }
  /// The node that gets what comes next; nil behind the end of one without an owner.
  TZmJSONBase* GetCurrValue() const { return FCurrValue; }

 private:
  void Start(TZmJSONDataType DataType);
  void Leave();

  TZmJSONReader* FReader;
  TZmJSONBase* FCurrValue;
};

}  // namespace zm
