#pragma once

#include <memory>

#include "zamrit/xml/dom/Element.h"

namespace zm {

/// An XML document: the root of a tree, which it loads and saves.
class TZmDOMDocument : public TZmDOMNode {
  ZM_OBJECT(TZmDOMDocument, TZmDOMNode)
 public:
  TZmDOMDocument();
  /// With a root element of that name.
  explicit TZmDOMDocument(const TZmAnyText& RootName);
  TZmDOMDocument(const TZmAnyText& RootName, const TZmAnyText& NamespaceURI);
  /// Loads the file.
  TZmDOMDocument(const TZmAnyText& FileName, std::uint16_t Mode);
  /// Loads the stream.
  explicit TZmDOMDocument(TStream* Stream);

  /// The first element that was appended, nil where there is none.
  TZmDOMElement* GetRootNode() const { return FRootNode; }
  TZmDOMDocument* GetDOMDocument() const override { return const_cast<TZmDOMDocument*>(this); }

  /// How names compare.
  TZmXPathCollationClass GetCollation() const override { return FCollation; }
  void SetCollation(TZmXPathCollationClass Collation) { FCollation = Collation; }
  /// Chooses between the two built-in collations; another one stays where case is to matter.
  void SetCaseSensitive(bool Value);
  TZmDOMSelectMatchOption GetSelectMatchOption() const override { return FSelectMatchOption; }
  void SetSelectMatchOption(TZmDOMSelectMatchOption Value) { FSelectMatchOption = Value; }
  TZmDOMSelectCheckOption GetSelectCheckOption() const { return FSelectCheckOption; }
  void SetSelectCheckOption(TZmDOMSelectCheckOption Value) { FSelectCheckOption = Value; }

  /// \name Loading. EZmDomSyntax with line and column for a text that is refused; what came before stays
  ///@{
  /// Finds out the encoding and whether it is XML or JSON. Does not clear the document.
  virtual void LoadFromStream(TStream* Stream);
  /// In a page that the caller knows. GetLoadState is left alone.
  void LoadFromStream(TStream* Stream, std::uint16_t CodePage) override;
  /// Opens the file and does what LoadFromStream(Stream) does; then its name is the document's URI. EFOpenError where
  /// it cannot be opened.
  void LoadFromFile(const TZmAnyText& FileName, std::uint16_t Mode = fmOpenRead);
  /// Replaces the content, XML or JSON, by what the text holds. An empty text clears the document. EZmDomSyntax also
  /// for blanks alone and for a byte order mark in front. What is refused leaves nothing of the old content.
  void LoadFromXML(StringView XML);
  /// The same of bytes, in the encoding that the declaration names, without one UTF-8. EConvertError for a name that is
  /// not known, Exception "The encoding is not supported!" for blanks alone.
  void LoadFromXML(std::string_view XML);
  /// LoadFromXML.
  void LoadXML(StringView XML) { LoadFromXML(XML); }
  /// LoadFromXML.
  void LoadXML(std::string_view XML) { LoadFromXML(XML); }
  /// LoadFromStream: the document is not cleared.
  void LoadXML(TStream* Stream) { LoadFromStream(Stream); }
  /// The same of a file. The document's URI stays.
  void LoadXML(const TZmAnyText& FileName, std::uint16_t Mode);
  ///@}

  /// \name Saving
  /// Line ends are CR LF, a step of indentation is two blanks. A character that the page lacks becomes "?", a lone
  /// surrogate U+FFFD in UTF-8. Formatted, the stream is asked where it stands and, for instructions, how long it is.
  /// Raises what the stream raises; the tree stays as it is. Linear, in constant stack.
  ///@{
  using TZmDOMNode::SaveToStream;
  /// A byte order mark is written for the pages 1200 and 65001 alone.
  virtual void SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, bool WriteBOM);
  /// In the page of the document.
  virtual void SaveToStream(TStream* Stream, bool Formatted, bool WriteBOM);
  /// Makes the file, or replaces it, and saves in the page of the document. EFCreateError where it cannot be made.
  void SaveToFile(const TZmAnyText& FileName, bool Formatted, bool WriteBOM);
  /// The document as text on one line. The declaration stays as it is, whatever encoding it names.
  String GetXML();
  /// The same, indented.
  String GetFormattedXML();
  using TZmDOMNode::SaveToJSONStream;
  /// The root as a member without braces around it, see TZmDOMElement::SaveToJSONStream; always in UTF-8.
  void SaveToJSONStream(TStream* Stream, bool Formatted, bool WriteBOM);
  ///@}

  /// The encoding's name, "UTF-8" where none is set.
  String GetEncoding() const;
  /// Sets the page for saving too, and writes the name into the XML declaration, which is made where there is none.
  /// EZmDomNotSupported for a name that is unknown.
  void SetEncoding(const TZmAnyText& Name);
  /// The page for saving: that of the last load, or what was set since; 65001 (UTF-8) at first.
  std::uint16_t GetCodePage() const { return FCodePage; }
  /// Leaves the XML declaration alone.
  void SetCodePage(std::uint16_t CodePage);
  /// Takes the encoding's name from the XML declaration.
  void ReCalcEncoding();
  /// The name of the file that LoadFromFile has read last, or what was set since. Valid until the next of both.
  const String& GetDocumentURI() const { return FDocumentURI; }
  /// For the application's own use: nothing is loaded or saved by it.
  void SetDocumentURI(const TZmAnyText& URI) { FDocumentURI = URI.Text(); }

  /// The first child of that target, in any case; nil where there is none. Linear in the children, but for "xml"
  /// constant on average.
  TZmDOMProcessingInstruction* FindProcessingInstruction(const TZmAnyText& Target) const;
  /// Its data. EZmDomNotFound where there is none.
  String GetProcessingInstruction(const TZmAnyText& Target) const;
  /// Sets the data of the first one of that target. Where there is none, one is added: in front of the root, "xml" in
  /// front of all.
  void SetProcessingInstruction(const TZmAnyText& Target, const TZmAnyText& Data);

  /// EZmDomException where there is a root already.
  virtual TZmDOMElement* CreateRootNode(const TZmAnyText& QName);
  virtual TZmDOMElement* CreateRootNode(const TZmAnyText& QName, const TZmAnyText& NamespaceURI);
  /// Whether the document uses the XML Schema instance namespace: as set, and once a root with it has been loaded.
  bool GetUseSchemaInstance() const { return FUseSchemaInstance; }
  /// With true the root, if there is one, gets the attribute xmlns:xsd, and xmlns:xsi unless that namespace is in
  /// force. False removes nothing.
  void SetUseSchemaInstance(bool Value);

  /// \name Paths, from the root element. EZmDomNotFound for an empty path of a single element, and without a root under
  /// soRaise and soCreate; else there is nothing without a root
  ///@{
  TZmDOMElement* SelectSingleElement(const TZmAnyText& Path, TZmDOMSelectOptions Options = {});
  TZmOwner<TZmDOMElementList> CreateElementList(const TZmAnyText& Path, TZmDOMSelectOptions Options = {});
  ///@}

  /// That of the root.
  String GetText() const override;
  /// Removes all children. Encoding, code page and URI stay. Held nodes become loose. What has been loaded and not been
  /// touched since costs its memory blocks, not a walk.
  void Clear() override;
  /// Appends at the end. The first element becomes the root; further ones do not take its place.
  void AppendChild(TZmDOMNode* Node) override;
  using TZmDOMNode::AppendChild;
  /// As of any node; without its root the document has none, even if there are more elements.
  void RemoveChild(TZmDOMNode* Node) override;
  /// EZmDomNotSupported.
  TZmOwner<TZmDOMNode> CreateClone() const override;
  void _SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) override;
  void _SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) override;
  void BeforeDestruction() override;
  ~TZmDOMDocument() override;

 protected:
  friend class detail::TDOMTree;
  /// Runs when a load has ended well. Does nothing here.
  virtual void DoXMLLoaded() {}
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;

 private:
  void LoadText(TStream* Stream, std::uint16_t CodePage);
  void NoteLoaded(std::uint16_t CodePage);

  std::unique_ptr<detail::TDOMScope> FScope;  // no declarations
  detail::TDOMHome* FHome;
  TZmXPathCollationClass FCollation = DefaultXPathCollation;
  TZmDOMSelectMatchOption FSelectMatchOption = DefaultSelectMatchOption;
  TZmDOMSelectCheckOption FSelectCheckOption = DefaultSelectCheckOption;
  TZmDOMLoadState FLoadState = lsUninitialized;
  TZmDOMElement* FRootNode = nullptr;
  mutable const TZmDOMNode* FScanned = nullptr;  // the child up to which there is no XML declaration
  bool FUseSchemaInstance = false;
  bool FPlain = true;  // nothing stands outside FHome, and nothing of it elsewhere
  String FEncoding;
  std::uint16_t FCodePage = 65001;
  String FDocumentURI;
};

}  // namespace zm
