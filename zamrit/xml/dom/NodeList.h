#pragma once

#include <vector>

#include "zamrit/platform/Variant.h"
#include "zamrit/xml/dom/Node.h"

namespace zm {

class TZmDOMNodeListBase;

/// Goes over a list by index: where the current node is removed, the one behind it is passed over.
class TZmDOMNodeListBaseEnumerator {
 public:
  explicit TZmDOMNodeListBaseEnumerator(TZmDOMNodeListBase& List) : FList(List) {}
  TZmDOMNode* GetCurrent() const;
  /// Goes to the next node, the first at first. False where there is none.
  bool MoveNext();

 protected:
  TZmDOMNodeListBase& FList;
  int FIndex = -1;
};

/// A list of nodes, which it does not own: the children of a node of one kind, or what a selection has found. What is
/// added to or taken from a list of children here changes this list alone, not the tree; AddChild and RemoveChild of
/// the node change both. Access by index costs constant time on average.
class TZmDOMNodeListBase : public TZmDOMObject {
  ZM_OBJECT(TZmDOMNodeListBase, TZmDOMObject)
 public:
  int Count() const;
  /// EListError for an index outside.
  TZmDOMNode* GetItem(int Index) const;
  TZmDOMNode* operator[](int Index) const { return GetItem(Index); }
  bool ContainsNode(const TZmDOMNode* Node) const;

  /// Puts a node at an end.
  void Add(TZmDOMNode* Node, TZmDOMAbsPosition Position);
  /// Puts a node at an end, or next to Ref; without Ref, rdpBefore is rdpFirst and rdpAfter is rdpLast.
  void Add(TZmDOMNode* Node, TZmDOMNode* Ref, TZmDOMPosition Position);
  /// Puts a node before or after Ref, which must be given; where it is not in the list, at the front or at the end.
  void Add(TZmDOMNode* Node, TZmDOMRelPosition Position, TZmDOMNode* Ref);
  /// Takes a node out and returns it, nil where it is not in the list.
  TZmDOMNode* Delete(TZmDOMNode* Node);
  TZmDOMNode* Delete(const TZmAnyText& Name, TZmDOMSelectOptions Options);
  TZmDOMNode* Delete(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName);
  void Clear();

  /// EZmDomNotFound where the list is empty.
  TZmDOMNode* First() const;
  TZmDOMNode* Last() const;
  /// The node behind another, nil for the last; of one that is not in the list, the first. Linear.
  TZmDOMNode* Next(const TZmDOMNode* Node) const;
  TZmDOMNode* Previous(const TZmDOMNode* Node) const;
  /// The last node of that name, nil where there is none. An empty NamespaceURI is any.
  TZmDOMNode* Find(const TZmAnyText& NamespaceURI, const TZmAnyText& LocalName) const;
  /// The last node of that local or qualified name, as the options or the document say. With soRaise EZmDomNotFound
  /// where there is none.
  TZmDOMNode* Find(const TZmAnyText& Name, TZmDOMSelectOptions Options) const;
  TZmDOMNodeListBaseEnumerator GetEnumerator() { return TZmDOMNodeListBaseEnumerator(*this); }

  class TIterator {
   public:
    TIterator(const TZmDOMNodeListBase* List, int Index) : FList(List), FIndex(Index) {}
    TZmDOMNode* operator*() const { return FList->GetItem(FIndex); }
    TIterator& operator++() {
      ++FIndex;
      return *this;
    }
    bool operator!=(const TIterator&) const { return FIndex < FList->Count(); }

   private:
    const TZmDOMNodeListBase* FList;
    int FIndex;
  };
  TIterator begin() const { return {this, 0}; }
  TIterator end() const { return {this, 0}; }

  TZmDOMObjectImpl* GetDOMImpl() const override { return FDOMNodeListImpl; }
  void SetDOMImpl(TZmDOMObjectImpl* Impl) override { FDOMNodeListImpl = Impl; }
  void SetDOMDocument(TZmDOMDocument*) override {}
  bool CanAutoDestroy() const override;
  ~TZmDOMNodeListBase() override;

 protected:
  friend class detail::TDOMTree;

  TZmDOMNodeListBase() { SetFlag(detail::dfMade); }  // one on the stack stays its scope's
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;

 private:
  /// Which children of the parent the list shows.
  enum class TKind : std::uint8_t { Own, All, Elements, Attributes, Characters, Namespaces };

  TZmDOMNode* Owner() const { return static_cast<TZmDOMNode*>(FParent); }
  int Size() const { return static_cast<int>(FList.size() - FHead); }
  TZmDOMNode* At(int Index) const { return FList[FHead + static_cast<std::size_t>(Index)]; }
  bool Know(int Index) const;  // whether there is such a node, which is in FList then
  int KnownIndexOf(const TZmDOMNode* Node) const;
  int IndexOf(const TZmDOMNode* Node) const;
  bool IsChild(const TZmDOMNode* Node) const;
  detail::TDOMFlags Mark() const { return FShown == TKind::All ? detail::dfListedAll : detail::dfListed; }
  void MarkChild(TZmDOMNode* Node, bool Value);
  void Depart();                // from here on the list is what it holds
  void Forget();                // it shows what the parent has again
  void MakeRoom(bool InFront);  // for one more, so that Insert does not fail
  void Insert(int Index, TZmDOMNode* Node);
  void Erase(int Index);
  void ChainChanged(TZmDOMNode* Added);
  void NodeLeaves(TZmDOMNode* Node);

  mutable std::vector<TZmDOMNode*> FList;
  mutable std::size_t FHead = 0;  // how many places in front are free
  mutable int FCount = -1;        // of what the parent has, below 0 until it was counted
  mutable int FCursor = 0;        // the index that was sought last
  TKind FKind = TKind::Own;
  TKind FShown = TKind::Own;  // what it was before it departed
  bool FHasOthers = false;    // whether it has been given nodes that it would not show by itself
  bool FWatched = false;      // asking for a node that has been freed is an error that debug builds tell
  TZmDOMObjectImpl* FDOMNodeListImpl = nullptr;
};

class TZmDOMNodeList : public TZmDOMNodeListBase {
  ZM_OBJECT(TZmDOMNodeList, TZmDOMNodeListBase)
};

class TZmDOMElementListEnumerator : public TZmDOMNodeListBaseEnumerator {
 public:
  using TZmDOMNodeListBaseEnumerator::TZmDOMNodeListBaseEnumerator;
  TZmDOMElement* GetCurrent() const;
};

class TZmDOMElementList : public TZmDOMNodeListBase {
  ZM_OBJECT(TZmDOMElementList, TZmDOMNodeListBase)
 public:
  TZmDOMElement* GetItem(int Index) const;
  TZmDOMElement* operator[](int Index) const { return GetItem(Index); }
  /// By index, or by a name or path below the element that the list belongs to; "." is that element. Without a check
  /// option the document's holds. EListError for another kind of value, and where there is none under coRaise.
  TZmDOMElement* GetItemEx(const Variant& Index, TZmDOMSelectCheckOption CheckOption);
  TZmDOMElement* GetItemEx(const Variant& Index);
  TZmDOMElementListEnumerator GetEnumerator() { return TZmDOMElementListEnumerator(*this); }

 protected:
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;
};

class TZmDOMAttrList : public TZmDOMNodeListBase {
  ZM_OBJECT(TZmDOMAttrList, TZmDOMNodeListBase)
 public:
  TZmDOMAttribute* GetItem(int Index) const;
  TZmDOMAttribute* operator[](int Index) const { return GetItem(Index); }
  /// The declaration of a namespace, the last one of several; nil where there is none.
  TZmDOMAttribute* FindNamespace(const TZmAnyText& URI) const;

 protected:
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;
};

}  // namespace zm
