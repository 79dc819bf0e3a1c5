#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zamrit/common/TypeKinds.h"
#include "zamrit/platform/AnyText.h"
#include "zamrit/platform/Arena.h"
#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Variant.h"

// The tree under the nodes of the JSON model: plain records in an arena, 32 bytes for an element and 48 for a member
// with its value. The objects that users see are made over them when they are asked for, and live as long as the node.
namespace zm {
class TZmJSONBase;
}  // namespace zm

namespace zm::detail {

/// Which class a value is an object of.
enum TJSONClass : std::uint32_t { jcNone, jcSimple, jcObject, jcArray, jcDocument };

/// What a record says about itself. The lowest byte is the TZmJSONDataType of a simple value, the next three bits its
/// TJSONClass.
enum TJSONFlags : std::uint32_t {
  jfTypeMask = 0xFF,
  jfClassShift = 8,
  jfClassMask = 7u << jfClassShift,
  jfMember = 1u << 11,          ///< a TJSONMemberNode
  jfExtra = 1u << 12,           ///< what would stand in Text or First stands in Extra
  jfMarked = 1u << 13,          ///< a record below has an Extra
  jfVariant = 1u << 14,         ///< the value is Extra->Value
  jfSurrogates = 1u << 15,      ///< Text has lone surrogates, three bytes each
  jfNameSurrogates = 1u << 16,  ///< Name has
  jfOwnName = 1u << 17,         ///< Name stands on the heap
  jfLinked = 1u << 18,          ///< among the children of Owner
  jfKeepsChildren = 1u << 19,   ///< does not free its children
  jfList = 1u << 20,            ///< its children are what its object's list says, of whatever owners
  jfFree = 1u << 21,            ///< not in use
  jfFresh = 1u << 22,           ///< made by the selection that is running
  jfWide = 1u << 23,            ///< has the room of a TJSONMemberNode, also where the member itself is gone
};

struct TJSONNode;

/// What only some records have.
struct TJSONExtra {
  union {
    const char* Text;
    TJSONNode* First;
  };
  TZmJSONBase* Node;    ///< the object of the value, or nil
  TZmJSONBase* Member;  ///< the object of the member, or nil
  Variant Value;
};

/// A value. Under an object, it is the second half of a TJSONMemberNode, whose value may be missing.
struct TJSONNode {
  TJSONNode* Next;
  TJSONNode* Owner;  ///< the record of the container, also of a member's value
  union {
    const char* Text;  ///< of a simple value: valid UTF-8, decoded
    TJSONNode* First;
    TJSONExtra* Extra;
  };
  std::uint32_t Size;  ///< of the text in bytes, or the number of children
  std::uint32_t Flags;

  bool Has(TJSONFlags Flag) const { return (Flags & Flag) != 0; }
  TJSONClass Class() const { return static_cast<TJSONClass>((Flags & jfClassMask) >> jfClassShift); }
  bool IsContainer() const { return Class() >= jcObject; }
  TZmJSONDataType Type() const { return static_cast<TZmJSONDataType>(Flags & jfTypeMask); }
  void SetType(TZmJSONDataType Type) {
    Flags = (Flags & ~std::uint32_t{jfTypeMask}) | (static_cast<std::uint32_t>(Type) & jfTypeMask);
  }
  TJSONNode*& FirstChild() { return Has(jfExtra) ? Extra->First : First; }
  std::string_view RawText() const { return {Has(jfExtra) ? Extra->Text : Text, Size}; }
  TZmJSONBase* Object() const { return Has(jfExtra) ? Extra->Node : nullptr; }
};

struct TJSONMemberNode : TJSONNode {
  const char* Name;
  std::uint32_t NameSize;

  std::string_view RawName() const { return {Name, NameSize}; }
};
static_assert(sizeof(TJSONNode) == 32 && sizeof(TJSONMemberNode) == 48);

inline TJSONMemberNode& AsMember(TJSONNode& Node) { return static_cast<TJSONMemberNode&>(Node); }
constexpr std::uint32_t ClassFlags(TJSONClass Class, TZmJSONDataType Type) {
  return Class << jfClassShift | static_cast<std::uint32_t>(Type);
}
/// The class of the value of a type, and its flags.
constexpr TJSONClass ClassOf(TZmJSONDataType Type) {
  return Type == jdtObject ? jcObject : Type == jdtArray ? jcArray : jcSimple;
}

/// UTF-8 with lone surrogates as three bytes each, which Surrogates tells of.
void NarrowText(StringView Text, std::string& Out, bool& Surrogates);
/// The way back.
String WidenText(std::string_view Text, bool Surrogates);
inline String NameOf(const TJSONMemberNode& Node) { return WidenText(Node.RawName(), Node.Has(jfNameSurrogates)); }

/// A name that members are compared with.
class TJSONName {
 public:
  TJSONName(const TZmAnyText& Name, bool IgnoreCase);

  bool Is(const TJSONMemberNode& Node) const {
    if (!FIgnoreCase) return Node.NameSize == FName.size() && Node.RawName() == FName;
    return IsFolded(Node);
  }

 private:
  bool IsFolded(const TJSONMemberNode& Node) const;

  std::string FName;
  String FWide;
  bool FIgnoreCase;
  bool FIsASCII;
};

/// The memory of a tree, and of what has come from it. It lives as long as an object over one of its records does, or a
/// list that shows some of them.
class TJSONTree {
 public:
  TJSONTree() = default;
  TJSONTree(const TJSONTree&) = delete;
  TJSONTree& operator=(const TJSONTree&) = delete;

  void AddRef() { ++FReferences; }
  void Release() {
    if (--FReferences == 0) End();
  }

  TArena& Arena() { return FArena; }

  /// A record without owner, name, text or children. Flags says whether it is that of a member.
  TJSONNode* NewNode(std::uint32_t Flags) {
    const bool member = (Flags & jfMember) != 0;
    if (member) Flags |= jfWide;
    TJSONNode*& free = FFree[member];
    TJSONNode* node = free;
    if (node) [[unlikely]]
      free = node->Next;
    else
      node = static_cast<TJSONNode*>(FArena.Take(member ? sizeof(TJSONMemberNode) : sizeof(TJSONNode)));
    node->Next = node->Owner = nullptr;
    node->First = nullptr;
    node->Size = 0;
    node->Flags = Flags;
    if (member) {
      AsMember(*node).Name = nullptr;
      AsMember(*node).NameSize = 0;
    }
    return node;
  }
  /// Takes back a record without extra. While lists show records of the tree it is not used anew.
  void Recycle(TJSONNode* Node);
  /// The extra of a record, made if it has none.
  TJSONExtra& ExtraOf(TJSONNode* Node);
  void DropExtra(TJSONNode* Node);
  /// Gives a record a name of its own.
  void SetName(TJSONMemberNode* Node, const TZmAnyText& Name);
  static void DropName(TJSONNode* Node);

  void AddView() {
    AddRef();
    ++FViews;
  }
  void RemoveView();
  bool HasViews() const { return FViews > 0; }

  TJSONNode* Pending = nullptr;  ///< nodes to be freed, the next one first
  bool Freeing = false;
  bool Leaving = false;  ///< all of the tree goes: records without objects are left to the arena

 private:
  ~TJSONTree() = default;
  void End();

  // Most documents are smaller than a huge page.
  TArena FArena{std::size_t{1} << 20};
  TJSONNode* FFree[2] = {};
  TJSONNode* FResting[2] = {};
  TJSONExtra* FFreeExtras = nullptr;
  int FViews = 0;
  int FReferences = 0;
};

}  // namespace zm::detail
