// TElement, the root of every object of the model, and TSuperList, the member list of entities.
#pragma once

#include <cstdint>

#include "kernel/platform/date_time.h"
#include "kernel/platform/pointer_list.h"
#include "kernel/platform/publisher.h"

namespace veska {

// The unit the element classes belong to, as their class records show it.
inline constexpr std::u16string_view kElementsUnit = u"Elements";

class TEntity;
class TElement;
class TReader;
class TWriter;
class TVeskaMessage;
class TStringList;

// The visit mark of whole-graph walks: always in -31999..0, new on every ResetBaseID.  Whole-
// graph walks (sizes, counts, ID resets) and ResetBaseID belong to the main thread, as the
// element trees they walk do.
inline int32_t BaseID = 0;
void ResetBaseID();

// The life-cycle watch: when on and a watch time is set, elements that keep a life-cycle
// period are alive only when the watch time falls within it.  Main thread only.
inline bool Life_Cycle_Watch = false;
inline TDateTime Life_Cycle_WatchTime = 0;

class TElement : public TPersistent {
  VESKA_CLASS(TElement, TPersistent, kElementsUnit)
 public:
  // The number under which the element is streamed, and the visit mark of walks; -1 when new.
  int32_t ID = -1;

  TElement() = default;
  ~TElement() override = default;

  // Sizes.  The whole size walks everything reachable once, stamping each element's ID.
  virtual int32_t GetInstanceSize() const;
  virtual int32_t GetWholeSize();
  virtual int32_t GetWholeSizes();

  virtual String GetName() const;
  virtual void SetName(const String& name);

  // Owners.
  virtual TEntity* GetOwnerEntity(int index) const;
  virtual void PutOwner(int index, TEntity* entity);
  virtual int32_t GetOwnersCount() const;

  // Life-cycle period (0 = no date).
  virtual TDateTime GetLife_Cycle_End() const;
  virtual TDateTime GetLife_Cycle_Start() const;
  virtual void SetLife_Cycle_End(TDateTime value);
  virtual void SetLife_Cycle_Start(TDateTime value);

  virtual bool StoreName() const;
  virtual void Load(TReader& reader, TEntity* table);
  virtual void Save(TWriter& writer);
  virtual bool NoElements() const;
  // The envelope that stands for this element in a copy of its holder; none for a plain element.
  virtual TElement* CreateEnvelope();

  // Messages.
  virtual void HandleMessage(TVeskaMessage* message, bool& handled);
  virtual void OwnersHandleMessage(TVeskaMessage* message, bool& handled);
  virtual void SendMsg(int32_t message, TElement* receiver, TElement* data, bool kill_data);
  virtual void PostMsg(int32_t message, TElement* receiver, TElement* data, bool kill_data);
  virtual void SendMsgToOwners(int32_t message, TElement* data, bool kill_data);
  virtual void PostMsgToOwners(int32_t message, TElement* data, bool kill_data);
  virtual void OnTimer();

  virtual void AddOwner(TEntity* entity);
  virtual void RemoveOwner(TEntity* entity);
  virtual bool IsMyOwner(const TEntity* entity) const;
  virtual bool NoOwners() const;
  virtual TEntity* FindOwnerClass(const ClassInfo& cls) const;
  virtual TEntity* FindOwnerName(const String& name) const;
  virtual TElement* FindClassInOwners(const ClassInfo& cls);
  virtual TElement* FindClassWithOwnerInOwners(const ClassInfo& cls, const TEntity* entity);
  virtual TElement* FindFirstClassWithOwnerInOwners(const ClassInfo& cls, const TEntity* entity);
  virtual bool IsPossibleToFree();
  // Whether the element is this one or one reached from it through the owners (an envelope
  // leading to the entity it wraps).  Placing such an element below this one would make it hold
  // itself, which nothing could ever free.
  bool IsInOwners(const TElement* element);
  virtual void ResetID();
  virtual void ResetIDs();

  // Path commands (path_commands.cpp): a chain of object-valued properties and member searches
  // that starts at this element.  The text of the final property; a new string list that the
  // caller owns; the object reached.  That object is a TObject, not an element, because an
  // object-valued property may hold any object with published properties; it may be none.
  // Every syntax or navigation error raises Exception.
  virtual String ExecuteCommandLine(const String& Command);
  virtual TStringList* ExecuteCommandLineToList(const String& Command);
  virtual TObject* ExecuteCommandLineToElement(const String& Command);

  // Published properties by name, as text and typed.
  virtual bool HasPropertyByName(StringView name) const;
  virtual String GetPropertyStringByName(StringView name) const;
  virtual bool SetPropertyStringByName(StringView name, const String& value);
  virtual double GetPropertyFloatByName(StringView name) const;
  virtual bool SetPropertyFloatByName(StringView name, double value);
  virtual int64_t GetPropertyLongIntByName(StringView name) const;
  virtual bool SetPropertyLongIntByName(StringView name, int64_t value);
  virtual int32_t GetPropertyIntByName(StringView name) const;
  virtual bool SetPropertyIntByName(StringView name, int32_t value);
  virtual bool GetPropertyBooleanByName(StringView name) const;
  virtual bool SetPropertyBooleanByName(StringView name, bool value);

  virtual bool Life_Cycle_Is_Alive() const;
  virtual bool Life_Cycle_Is_Implemented() const;
  virtual bool Life_Cycle_Start_Store() const;
  virtual bool Life_Cycle_End_Store() const;

  // Whether the element records the entities that hold it (one entry per add), so that
  // IsMyOwner tells whether an entity still lists it.  Plain elements do not.
  virtual bool KeepsOwners() const { return false; }

  // A text message (number and text) posted from this element to the receiver.
  void PostTextMsg(int32_t message, const String& text, TElement* receiver);
  void PostTextMsgToOwners(int32_t message, const String& text);

  String Get_ClassName() const { return ClassName(); }
  int32_t GetLastPropertyIndex() const;

  uint16_t GetLife_Cycle_Start_Year() const;
  uint16_t GetLife_Cycle_Start_Month() const;
  uint16_t GetLife_Cycle_End_Year() const;
  uint16_t GetLife_Cycle_End_Month() const;
  void SetLife_Cycle_Start_Year(uint16_t year);
  void SetLife_Cycle_Start_Month(uint16_t month);
  void SetLife_Cycle_End_Year(uint16_t year);
  void SetLife_Cycle_End_Month(uint16_t month);

  // Streaming of references: the referenced element's ID, or -1 for none; read back as the
  // element at that position of the loader's table of all elements.
  static void SaveElement(const TElement* element, TWriter& writer);
  static TElement* LoadElement(TReader& reader, TEntity* table);

  static void Publish(Publisher<TElement>& p);
};

// The list an entity keeps its members in.  Items are elements or none.
class TSuperList : public TList {
 public:
  TElement* Item(int index) const { return static_cast<TElement*>(Get(index)); }
  // Frees the item when the element agrees (IsPossibleToFree); the slot is not cleared.
  static void FreeItem(TElement*& item);
  // FreeItem for every item from the last down to the first; the list keeps its slots.
  void FreeAll();
  // Frees the item unconditionally, fast-freeing the members of an entity first.
  static void FastFreeItem(TElement*& item);
  // FastFreeItem for every item from the last down to the first, then clears the list.
  void FastFreeAll();
};

// The debugging aid over the global TestedElement.  Main thread only.
inline TEntity* TestedElement = nullptr;
void CheckTestedElement();

}  // namespace veska
