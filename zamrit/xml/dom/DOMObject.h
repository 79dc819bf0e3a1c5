#pragma once

#include <cstdint>
#include <vector>

#include "zamrit/common/ZmObject.h"
#include "zamrit/xml/dom/Collations.h"
#include "zamrit/xml/dom/Types.h"

namespace zm {

class TZmDOMObject;
class TZmDOMNode;
class TZmDOMDocument;
class TZmDOMNodeListBase;

/// Objects of a tree, none of which the list owns: the candidates of a step of a path.
using TZmDOMObjectList = std::vector<TZmDOMObject*>;

namespace detail {
class TDOMTree;
}

/// The root of the interfaces of a tree.
class IZmDOMObject : public virtual IZmInterface {
 public:
  /// The object of the tree, nil once it has gone. It stays the tree's.
  virtual TZmDOMObject* GetDOMObject() = 0;
};

/// The companion of an object of the tree: its face for those who hold it by counted handles. It is made when a handle
/// is first taken and goes with the last one; a loose object, or a document, goes with it. A companion holds that of
/// the parent, so that a tree does not vanish under a held node.
class TZmDOMObjectImpl : public TObject, public virtual IZmDOMObject {
  ZM_OBJECT(TZmDOMObjectImpl, TObject)
 public:
  explicit TZmDOMObjectImpl(TZmDOMObject* Object);

  /// What the companion offers, else what the object itself does. Nil once the object has gone.
  void* QueryInterface(const TInterfaceId& Id) override;
  int _AddRef() override { return ++FCount; }
  int _Release() override;
  int RefCount() const { return FCount; }
  /// Whether somebody holds a handle on this very object, and not only on one below.
  bool IsHeld() const { return FCount > FChildren; }

  TZmDOMObject* GetDOMObject() override { return FDOMObject; }
  /// Holds the companion of another parent, or of none.
  void SetParent(TZmDOMObject* Parent);

  /// The object goes. Goes too, or stays without an object as long as handles are out.
  void ObjectGone();

  /// The node behind an interface, nil for nil and for one that has gone. EInvalidCast where it is none.
  static TZmDOMNode* Node(IZmInterface* Interface);

 protected:
  friend class TZmDOMObject;
  friend class TZmDOMNodeListBase;
  friend class detail::TDOMTree;
  ~TZmDOMObjectImpl() override = default;

  /// The object as its class. EZmDomInvalidState once it has gone.
  template <class T>
  T& Of() const {
    if (!FDOMObject) RaiseGone();
    return static_cast<T&>(*FDOMObject);
  }
  template <class I, class T>
  static TZmIntf<I> HandleOf(T* Object) {
    return Supports<I>(Object);
  }
  template <class I, class T>
  static TZmIntf<I> HandleOf(const TZmOwner<T>& Object) {
    return Supports<I>(Object.get());
  }
  template <class T = TZmDOMNode, class I>
  static T* NodeOf(const TZmIntf<I>& Handle) {
    return dynamic_cast<T*>(Node(Handle.Get()));
  }

  TZmDOMObject* FDOMObject;
  TZmDOMObjectImpl* FParent = nullptr;  // held

 private:
  [[noreturn]] static void RaiseGone();

  int FCount = 0;
  int FChildren = 0;  // how many of the count are companions of children
};

namespace detail {

/// What an object of a tree says about itself. The lowest four bits are the TZmDOMNodeType.
enum TDOMFlags : std::uint32_t {
  dfTypeMask = 0xF,
  dfDestroying = 1u << 4,       ///< BeforeDestruction has run
  dfExtra = 1u << 5,            ///< what would stand in the content stands in the extra
  dfArena = 1u << 6,            ///< stands in the memory of a load
  dfDerived = 1u << 7,          ///< of an application's own class, whose overrides are to be called
  dfOwnName = 1u << 8,          ///< the name belongs to the node
  dfHeapText = 1u << 9,         ///< the text stands on the heap and belongs to the node
  dfSurrogates = 1u << 10,      ///< the text has lone surrogates, three bytes each
  dfNamespaceSet = 1u << 11,    ///< the namespace URI held by the node means something
  dfNamespaceOwn = 1u << 12,    ///< that URI is the value of the declaration which the node is linked to
  dfPreserveSpace = 1u << 13,   ///< of an element
  dfDeclaration = 1u << 14,     ///< an attribute that declares a namespace
  dfDeclares = 1u << 15,        ///< an element that has such attributes
  dfOwnLists = 1u << 16,        ///< some list of children is not what the chain says
  dfMarked = 1u << 17,          ///< for the walk that is running
  dfLinked = 1u << 18,          ///< in the chain of its parent
  dfMade = 1u << 19,            ///< an owner that Create has made holds it, or a scope
  dfLateAttributes = 1u << 20,  ///< an element with an attribute somewhere behind a child of another kind
  dfOwnScope = 1u << 21,        ///< an element whose scope is its own
  dfListed = 1u << 22,          ///< in the list of its kind, where that has departed from the chain
  dfListedAll = 1u << 23,       ///< in the list of all children, where that has departed
  dfHasDerived = 1u << 24,      ///< a node of an application's own class has been put among the children
  dfMoving = 1u << 25,          ///< getting another parent, itself and not one above
  dfDeclaring = 1u << 26,       ///< getting a declaration in a walk that goes on to what is below
  dfEntering = 1u << 27,        ///< told of another document by the walk that does what there is to do
};

struct TDOMExtra;
struct TDOMScope;

}  // namespace detail

/// What nodes and lists of the XML tree have in common: a parent, a document and, while handles are out, a companion.
/// A tree is used by one thread at a time.
class TZmDOMObject : public TObject {
  ZM_OBJECT(TZmDOMObject, TObject)
 public:
  /// The document that the object belongs to, nil for a loose one; a document answers itself.
  virtual TZmDOMDocument* GetDOMDocument() const;
  /// The object above, nil for a root and for a loose object.
  TZmDOMObject* GetParent() const { return FParent; }
  bool IsDestroying() const { return HasFlag(detail::dfDestroying); }
  /// The companion, nil while no handle is out.
  virtual TZmDOMObjectImpl* GetDOMImpl() const = 0;

  /// An interface of the companion, which is made if there is none, or of the object; nil where neither offers it.
  void* QueryInterface(const TInterfaceId& Id);
  int _AddRef();
  /// Passes on to the companion. Raises Exception where there is none.
  virtual int _Release();
  /// Whether the object may go when its last handle goes: not while it has a parent that stays.
  virtual bool CanAutoDestroy() const;
  /// Whether names compare with regard to case: whether the collation is another than TZmXPathCollationASCIICI.
  virtual bool GetCaseSensitive() const;
  /// The document's collation, or the default one.
  virtual TZmXPathCollationClass GetCollation() const;
  /// soLocalName or soQualifiedName: the document's, or the default one.
  virtual TZmDOMSelectMatchOption GetSelectMatchOption() const;
  /// \name Told to the object by what it belongs to; for an application to override, not to call
  ///@{
  /// The companion that it has from here on, nil for none.
  virtual void SetDOMImpl(TZmDOMObjectImpl* Impl) = 0;
  /// The document that it has come to, nil for none.
  virtual void SetDOMDocument(TZmDOMDocument* Document) = 0;
  /// The object above it from here on, nil for none. Does not put it among the children of that.
  virtual void SetParentNode(TZmDOMObject* Parent);
  ///@}

  /// Ends the object. While a handle on this very object is out it raises Exception "An instance of %s is destroyed
  /// while it's refcount is not 0!" and the object lives on.
  void Free() override;
  /// The object stays where a parent or handles hold it.
  void EndOwnership() override;
  void AfterConstruction() override;
  void BeforeDestruction() override;

 protected:
  friend class TZmDOMObjectImpl;
  friend class detail::TDOMTree;

  TZmDOMObject() = default;
  /// Makes the companion of the object's class.
  virtual TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) = 0;
  /// Whether handles are out, on the object or on one below.
  bool IsHeld() const {
    const TZmDOMObjectImpl* const impl = GetDOMImpl();
    return impl && impl->RefCount() > 0;
  }

  bool HasFlag(detail::TDOMFlags Flag) const { return (FFlags & Flag) != 0; }
  void SetFlag(detail::TDOMFlags Flag, bool Value = true) { FFlags = Value ? FFlags | Flag : FFlags & ~Flag; }

  TZmDOMObject* FParent = nullptr;
  std::uint32_t FFlags = 0;

 private:
  void MakeImpl();
};

}  // namespace zm
