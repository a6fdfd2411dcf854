// The model-file loaders: tools that read a model (a graph of elements) back from a binary
// model file.  "VSK0" files are the library's own format, self-describing: every class and
// property a file uses is declared in it, by name and type kind, before its first use, so files
// written by older versions of a class still load: a property the class no longer has is read
// and dropped, one whose kind changed is converted where the rules allow, and each such finding
// is posted as a level-8 text message while loading goes on.
//
// TVeskaLoader is the loading algorithm, independent of how values are read; TStreamLoader reads
// a VSK0 stream.  A loader is given FileName (and optionally ContainerEntity), run once through
// DoIt and freed.  The result (Output) is the last element the file creates, or the one before a
// closing TYouShallNotPass; ContainerEntity, when set, receives every loaded element.
#pragma once

#include <cstddef>
#include <deque>
#include <utility>
#include <vector>

#include "kernel/classes/registry.h"
#include "kernel/tools/tool.h"

namespace veska {

inline constexpr std::u16string_view kLoaderUnit = u"Loader";

class TVeskaLoader : public TTool {
  VESKA_CLASS(TVeskaLoader, TTool, kLoaderUnit)
 public:
  String FileName;

  ~TVeskaLoader() override;

  void SetFileName(const String& name) { FileName = name; }
  TEntity* GetContainerEntity() const { return container_entity_.Get(); }
  void SetContainerEntity(TEntity* entity) { container_entity_ = entity; }
  // Every element created from the file in the order of creation, during a run; its positions
  // are the element numbers by which the file refers to elements.
  TQuickEntity* GetContainer() const { return loaded_; }
  // 0 is FileName, any other number ContainerEntity.
  String NumberToPropertyName(int32_t number) override;
  // StartGauge, Prepare, LoadInfo, LoadClasses, LoadAll, the result, Finish, EndGauge.
  void DoIt() override;

  static void Publish(Publisher<TVeskaLoader>& p);

 protected:
  virtual void StartGauge();
  virtual void EndGauge();
  virtual void UpdateGauge() {}
  virtual int32_t GetGaugeMax() { return 0; }
  virtual void Prepare();
  virtual void Finish();
  virtual void PrepareClasses();
  virtual void LoadInfo() {}
  virtual void LoadClasses() {}
  virtual void LoadClass() {}
  // A class declaration: the registered class of that name, or a plain owner entity (and the
  // name with " ?") for a class that is not registered.
  virtual void AddClass(const String& name);
  // A property declaration of the actual class, related to the class's property of that name.
  virtual void AddClassProperty(const String& name, int32_t declared_kind);
  virtual void LoadAll() {}
  // Creates the element of an element record of class declaration `class_number`.
  virtual void NewElement(int32_t class_number);
  virtual void LoadProperties() {}
  // Writes the value into property declaration `number` of the actual element when the
  // registered property is of exactly that kind and both readable and writable; drops it
  // otherwise.
  virtual void SetProperty(int32_t number, TTypeKind kind, const TPropertyBuffer& value);
  virtual void LoadElements() {}
  // Adds loaded element `element_number` to the actual element.
  virtual void AddNextElement(int32_t element_number);

  void SetLastElementIndex(int32_t index) { last_element_index_ = index; }
  // Frees the class table set before, and adopts `classes` as one of the loader's own elements.
  void SetClasses(TVeskaClasses* classes);

  // Declaration `number` of the actual class; none when there is no such declaration.  Inline,
  // as it runs for every value: the declarations of the actual class are mostly known.
  TVeskaClassProperty* Declaration(int32_t number) const {
    if (const auto& [cls, list] = actual_declarations_;
        cls != nullptr && cls == actual_class_ && number >= 0 && static_cast<std::size_t>(number) < list->size()) {
      return (*list)[static_cast<std::size_t>(number)];
    }
    return SearchDeclaration(number);
  }
  // Posts a level-8 text message.
  void Report(const String& text) { PostTextMsg(tm_Text, text, nullptr); }

  // The state of a run, as the records read so far leave it.
  TElement* actual_element_ = nullptr;
  TVeskaClass* actual_class_ = nullptr;
  TVeskaInstance* instance_ = nullptr;  // one of the loader's own elements
  TVeskaClasses* classes_ = nullptr;    // one of the loader's own elements
  int32_t last_element_index_ = -1;

 private:
  // Compares the declared kind with the property's kind now, reports, and marks a conversion.
  bool IsCompatible(TVeskaClassProperty& declaration, TTypeKind current, int32_t declared);
  // Declaration `number` of the actual class, found among its elements.
  TVeskaClassProperty* SearchDeclaration(int32_t number) const;

  TQuickEntity* loaded_ = nullptr;  // the loader's during a run
  // The classes AddClass made, in file order, with the declarations AddClassProperty gave them,
  // so that a value finds its declaration without a search; others (of a class table set
  // through SetClasses, or after an inline list) are searched.
  std::deque<std::pair<const TVeskaClass*, std::vector<TVeskaClassProperty*>>> declared_;
  // The declarations of the actual class, when they are known; the values of one element use
  // one class.
  std::pair<const TVeskaClass*, const std::vector<TVeskaClassProperty*>*> actual_declarations_;
  // What a member list needs to know of the element it fills, found once per element rather
  // than once per member; NewElement forgets it.
  struct MemberListTarget {
    const TElement* element = nullptr;
    TEntity* entity = nullptr;  // none when the element is not an entity
    bool envelope = false;
  };
  MemberListTarget member_list_target_;
  WeakRef<TEntity> container_entity_;
};

}  // namespace veska
