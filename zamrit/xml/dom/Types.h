#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Set.h"
#include "zamrit/platform/Strings.h"
#include "zamrit/xml/sax/Handlers.h"

namespace zm {

/// The root of what the XML tree raises of its own.
ZM_EXCEPTION(EZmDomException, Exception);

ZM_EXCEPTION(EZmDomHierarchyRequest, EZmDomException);
ZM_EXCEPTION(EZmDomInUseAttribute, EZmDomException);
ZM_EXCEPTION(EZmDomIndexSize, EZmDomException);
ZM_EXCEPTION(EZmDomInvalidAcces, EZmDomException);
ZM_EXCEPTION(EZmDomInvalidCharacter, EZmDomException);
ZM_EXCEPTION(EZmDomInvalidModification, EZmDomException);
ZM_EXCEPTION(EZmDomInvalidState, EZmDomException);
ZM_EXCEPTION(EZmDomNamespace, EZmDomException);
ZM_EXCEPTION(EZmDomNoDataAllowed, EZmDomException);
ZM_EXCEPTION(EZmDomNoModificationAllowed, EZmDomException);
ZM_EXCEPTION(EZmDomNotFound, EZmDomException);
ZM_EXCEPTION(EZmDomNotSupported, EZmDomException);
ZM_EXCEPTION(EZmDomStringSize, EZmDomException);
ZM_EXCEPTION(EZmDomSyntax, EZmDomException);
ZM_EXCEPTION(EZmDomTypeMismatch, EZmDomException);
ZM_EXCEPTION(EZmDomValidation, EZmDomException);
ZM_EXCEPTION(EZmDomWrongDocument, EZmDomException);

/// What a node is.
enum TZmDOMNodeType : std::uint8_t {
  ntUnknown,
  ntElement,
  ntAttribute,
  ntText,
  ntCDATA,
  ntEntityRef,
  ntEntity,
  ntProcessingInstruction,
  ntComment,
  ntDocument,
  ntDocumentType,
  ntDocumentFragment,
  ntNotation
};

/// The display name of each node type.
inline constexpr std::array<StringView, 13> ZmDOMNodeTypes = {
    u"Unknown", u"Element",   u"Attribute",    u"Text",
    u"CDATA",   u"EntityRef", u"Entity",       u"ProcessingInstruction",
    u"Comment", u"Document",  u"DocumentType", u"DocumentFragment",
    u"Notation"};

/// How far the loading of a node has come. lsInteractive and lsComplete are for applications.
enum TZmDOMLoadState : std::uint8_t { lsUninitialized, lsLoading, lsLoaded, lsInteractive, lsComplete };

/// Where a node is put: at an end, or next to another node.
enum TZmDOMPosition : std::uint8_t { rdpFirst, rdpLast, rdpBefore, rdpAfter };
using TZmDOMRelPosition = TZmDOMPosition;  ///< rdpBefore or rdpAfter
using TZmDOMAbsPosition = TZmDOMPosition;  ///< rdpFirst or rdpLast

enum TZmDOMNodeNameType : std::uint8_t { nntLocalName, nntQualifiedName };

/// How nodes are sought and what happens where there is none.
enum TZmDOMSelectOption : std::uint8_t {
  soRaise,            ///< raise where nothing is found
  soCreate,           ///< make the elements that are missing
  soCaseSensitive,    ///< names compare exactly
  soCaseInsensitive,  ///< names compare without regard to case
  soLocalName,        ///< prefixes do not matter
  soQualifiedName     ///< prefixes matter
};
using TZmDOMSelectOptions = TSet<TZmDOMSelectOption>;
using TZmDOMSelectCaseOption = TZmDOMSelectOption;   ///< soCaseSensitive or soCaseInsensitive
using TZmDOMSelectMatchOption = TZmDOMSelectOption;  ///< soLocalName or soQualifiedName

/// What an accessor by name does where there is no such node.
enum TZmDOMSelectCheckOption : std::uint8_t { coReturnNil, coCreate, coRaise };
using TZmDOMSelectCheckOptions = TSet<TZmDOMSelectCheckOption>;

/// Told of what goes wrong while a node loads. Handled is false at first; a fatal error that is not handled becomes
/// EZmDomSyntax, one that is lets the reader's own exception go on.
using TZmDOMParseError = std::function<void(IZmSAXLocator* Locator, StringView Message, bool& Handled)>;

/// What new documents start with, and what nodes without a document go by. Written before trees are made; not guarded.
extern TZmDOMSelectMatchOption DefaultSelectMatchOption;  ///< soQualifiedName
extern bool DefaultPreserveCase;                          ///< false. Whether white space is kept, in spite of the name
extern TZmDOMSelectCheckOption DefaultSelectCheckOption;  ///< coRaise

/// The published namespace names of XML Schema.
inline constexpr StringView cZmSchemaInstanceURI = u"http://www.w3.org/2001/XMLSchema-instance";
inline constexpr StringView cZmSchemaURI = u"http://www.w3.org/2001/XMLSchema";

}  // namespace zm
