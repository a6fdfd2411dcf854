#include "kernel/persistence/stream_saver.h"

#include <gtest/gtest.h>

#include <charconv>
#include <deque>
#include <map>
#include <random>
#include <set>

#include "kernel/elements/entity.h"
#include "kernel/persistence/stream_loader.h"
#include "kernel/platform/prop_info.h"
#include "kernel/platform/streams.h"
#include "kernel/tools/technology.h"
#include "kernel/tools/world.h"
#include "kernel/types/value_elements.h"
#include "tests/support/model_writer.h"
#include "tests/support/recording_host.h"
#include "tests/support/temp_folder.h"

namespace veska {
namespace {

using Texts = std::vector<String>;

// Frees the elements of a model that no entity among them lists; they free the rest.
void FreeModel(const std::vector<TElement*>& every) {
  std::set<const TElement*> listed;
  for (TElement* element : every) {
    if (auto* entity = ObjectAs<TEntity>(element)) {
      for (int i = 0; i < entity->ElementsCount(); ++i) listed.insert(entity->Get(i));
    }
  }
  for (TElement* element : every) {
    if (!listed.contains(element)) delete element;
  }
}

// A model written with the saver and loaded back; the texts each of them posted.
struct RoundTrip {
  explicit RoundTrip(TElement& root) {
    const test::TempFolder folder;
    TStreamSaver saver;
    saver.SetFileName(folder.Path("model.vsk"));
    saver.SetInput(&root);
    saver.DoIt();
    saved = host.TextMessages();
    TLoad load;
    load.SetFileName(saver.FileName);
    load.SetContainerEntity(&all);
    load.DoIt();
    loaded = load.GetOutput();
    texts = host.TextMessages();
    texts.erase(texts.begin(), texts.begin() + static_cast<std::ptrdiff_t>(saved.size()));
  }
  ~RoundTrip() {
    std::vector<TElement*> every;
    for (int i = 0; i < all.ElementsCount(); ++i) every.push_back(all.Get(i));
    all.Clear();
    FreeModel(every);
  }
  test::RecordingHost host;
  TQuickEntity all;  // every element loaded, listed to be freed
  TElement* loaded = nullptr;
  Texts saved, texts;
};

bool IsWritten(const PropInfo& property) {
  return !property.Stored().IsConstantFalse() && property.CanRead() && property.CanWrite() &&
         property.Kind() != TTypeKind::tkMethod && property.Kind() != TTypeKind::tkVariant;
}

const ClassInfo* ReferencedClass(const PropInfo& property) {
  return property.PropType().ClassType != nullptr ? property.PropType().ClassType() : nullptr;
}

// Whether writing the reference property also lists the element as a member, as a selection's
// ElseTool does.  A loader sets properties before it lists members, so such a member comes back
// listed twice: that is how files have always loaded, and the random models leave these out.
bool AddsMember(const ClassInfo& cls, const PropInfo& property) {
  const ClassInfo* referenced = ReferencedClass(property);
  if (!cls.InheritsFrom(TEntity::StaticClassInfo()) || referenced == nullptr ||
      !referenced->InheritsFrom(TElement::StaticClassInfo())) {
    return false;
  }
  std::unique_ptr<TElement> target(static_cast<TElement*>(referenced->Create()));
  std::unique_ptr<TEntity> holder(static_cast<TEntity*>(cls.Create()));
  if (target == nullptr || holder == nullptr) return false;
  const int before = holder->ElementsCount();
  property.SetObj(*holder, target.get());
  if (holder->ElementsCount() == before) return false;
  holder->RemoveElement(target.get());
  return true;
}

// A model of random values: every registered class at least once, in nested plain entities, with
// references between its elements and to elements no entity lists.
class RandomModel {
 public:
  explicit RandomModel(unsigned seed) : random_(seed) {
    root_->SetName(u"kořen");
    std::vector<TEntity*> holders{root_};
    TVeskaClasses& registry = VeskaClasses();
    for (int i = 0; i < registry.ElementsCount(); ++i) {
      const ClassInfo* cls = ObjectAs<TVeskaClass>(registry.Get(i))->ElementClass();
      // A world makes its parts when they are first read, and lists them as members.
      if (cls == &TWorld::StaticClassInfo()) continue;
      auto* element = ObjectAs<TElement>(cls->Create());
      if (element == nullptr) continue;
      if (Pick(5) == 0) {
        unheld_.push_back(element);  // reachable only through references
        continue;
      }
      holders[Pick(holders.size())]->AddElement(element);
      if (element->ClassType().Name() == u"TOwnerEntity" || element->ClassType().Name() == u"TQuickEntity") {
        holders.push_back(static_cast<TEntity*>(element));
      }
      elements_.push_back(element);
    }
    for (TElement* element : all_elements()) Fill(*element);
  }
  ~RandomModel() {
    std::vector<TElement*> every = all_elements();
    every.push_back(root_);
    FreeModel(every);
  }
  RandomModel(const RandomModel&) = delete;
  RandomModel& operator=(const RandomModel&) = delete;
  TElement& Root() { return *root_; }

 private:
  std::vector<TElement*> all_elements() const {
    std::vector<TElement*> every(elements_);
    every.insert(every.end(), unheld_.begin(), unheld_.end());
    return every;
  }
  std::size_t Pick(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_); }

  String Text() {
    static constexpr std::u16string_view kLetters = u"aěščřžýáíéůú Z\"'<&;=,\t";
    String text;
    for (std::size_t n = Pick(12); n > 0; --n) text += kLetters[Pick(kLetters.size())];
    return text;
  }

  void Fill(TElement& element) {
    for (const PropInfo* property : element.ClassType().Properties()) {
      if (!IsWritten(*property) || property->Name() == u"ID") continue;
      const TypeInfo& type = property->PropType();
      try {
        switch (property->Kind()) {
          case TTypeKind::tkInteger:
          case TTypeKind::tkEnumeration:
            property->SetOrd(element, std::uniform_int_distribution<int64_t>(std::max<int64_t>(type.MinValue, -5000),
                                                                              std::min<int64_t>(type.MaxValue, 5000))(random_));
            break;
          case TTypeKind::tkSet:
            property->SetOrd(element, static_cast<int64_t>(Pick(1u << (type.CompType->MaxValue + 1))));
            break;
          case TTypeKind::tkWChar:
            property->SetOrd(element, Text().append(u"ř")[0]);
            break;
          case TTypeKind::tkFloat:
            property->SetFloat(element, std::uniform_real_distribution<double>(-1e6, 1e6)(random_));
            break;
          case TTypeKind::tkUString:
            property->SetStr(element, Text());
            break;
          case TTypeKind::tkClass:
            if (AddsMember(element.ClassType(), *property)) break;
            if (TElement* target = AnyOf(ReferencedClass(*property))) property->SetObj(element, target);
            break;
          default:
            break;
        }
      } catch (const std::exception&) {
        // A value the setter refuses leaves the property as it was.
      }
    }
    // A message that frees its data would take an element that the model frees itself.
    if (element.HasPropertyByName(u"KillData")) element.SetPropertyBooleanByName(u"KillData", false);
  }

  // Any element of the model of that class but the root, or none.
  TElement* AnyOf(const ClassInfo* cls) {
    const std::vector<TElement*> every = all_elements();
    for (int attempt = 0; attempt < 8; ++attempt) {
      TElement* candidate = every[Pick(every.size())];
      if (cls == nullptr || candidate->InheritsFrom(*cls)) return candidate;
    }
    return nullptr;
  }

  std::mt19937 random_;
  TOwnerEntity* root_ = new TOwnerEntity;
  std::vector<TElement*> elements_;
  std::vector<TElement*> unheld_;
};

// The value as exact text: by-name reading may be a class's own (models read their members).
String ValueText(const PropInfo& property, const TElement& element) {
  switch (property.Family()) {
    case ValueFamily::Ordinal:
      return IntToStr(property.GetOrd(element));
    case ValueFamily::Float: {
      char digits[32];
      return FromUtf8({digits, std::to_chars(digits, digits + sizeof digits, property.GetFloat(element)).ptr});
    }
    default:
      return property.GetStr(element);
  }
}

// Walks the two models side by side, from the roots through members and references, and
// returns the first difference; the pairs it meets must stay one to one.
String FirstDifference(TElement& original, TElement& loaded) {
  std::map<const TElement*, const TElement*> pairs{{&original, &loaded}};
  std::deque<std::pair<TElement*, TElement*>> queue{{&original, &loaded}};
  const auto pair = [&](TElement* a, TElement* b) -> bool {
    if ((a == nullptr) != (b == nullptr)) return false;
    if (a == nullptr) return true;
    const auto [found, added] = pairs.try_emplace(a, b);
    if (added) queue.emplace_back(a, b);
    return found->second == b;
  };
  while (!queue.empty()) {
    auto [a, b] = queue.front();
    queue.pop_front();
    const String where = a->ClassName() + u" " + a->GetName() + u": ";
    if (a->ClassType().Name() != b->ClassType().Name()) return where + u"loaded as " + b->ClassName();
    for (const PropInfo* property : a->ClassType().Properties()) {
      if (!IsWritten(*property) || !property->IsStored(*a)) continue;
      if (property->Kind() == TTypeKind::tkClass) {
        if (!pair(ObjectAs<TElement>(property->GetObj(*a)), ObjectAs<TElement>(property->GetObj(*b)))) {
          return where + property->Name() + u" refers elsewhere";
        }
        continue;
      }
      // The ID is the visit mark of walks, which reading other properties may move.
      if (property->Name() != u"ID" && ValueText(*property, *a) != ValueText(*property, *b)) {
        return where + property->Name() + u" " + ValueText(*property, *a) + u" became " + ValueText(*property, *b);
      }
    }
    auto* holder = ObjectAs<TEntity>(a);
    auto* copy = ObjectAs<TEntity>(b);
    if (holder == nullptr) continue;
    if (holder->ElementsCount() != copy->ElementsCount()) return where + u"member count";
    for (int i = 0; i < holder->ElementsCount(); ++i) {
      if (!pair(holder->Get(i), copy->Get(i))) return where + u"member " + IntToStr(i);
    }
  }
  return {};
}

TEST(StreamSaver, RandomModelsOfEveryRegisteredClassComeBackAsTheyWere) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    RandomModel model(seed);
    RoundTrip trip(model.Root());
    ASSERT_NE(trip.loaded, nullptr);
    EXPECT_EQ(trip.texts, Texts{}) << "seed " << seed;
    EXPECT_EQ(FirstDifference(model.Root(), *trip.loaded), u"") << "seed " << seed;
  }
}

TEST(StreamSaver, WritesCyclesInlineAndLeavesOutOnlyWhatTheFormatCannotCarry) {
  TOwnerEntity root;
  auto* holder = new TOwnerEntity;
  auto* back = new TPointerElement;  // refers to its own holder, which must exist before it
  auto* after = new TPointerElement;
  auto* to_root = new TPointerElement;
  auto* unlisted = new TIntegerElement;  // no entity lists it; two elements refer to it
  auto* technology = new TSelectTechnology;
  auto* else_tool = new TSeqTechnology;
  for (TElement* member : std::initializer_list<TElement*>{holder, to_root, technology}) root.AddElement(member);
  holder->AddElement(back), holder->AddElement(after);
  back->Set_Element(holder), after->Set_Element(unlisted), to_root->Set_Element(&root);
  technology->SetInput(unlisted);  // not stored: the element is written through `after` alone
  unlisted->ID = 7;
  technology->SetElseTool(else_tool);
  RoundTrip trip(root);
  EXPECT_EQ(trip.saved, Texts{u"TPointerElement property \"_Element\" refers to the root"});
  EXPECT_EQ(trip.texts, Texts{});
  auto& loaded = *ObjectAs<TOwnerEntity>(trip.loaded);
  auto* loaded_holder = ObjectAs<TOwnerEntity>(loaded.Get(0));
  ASSERT_EQ(loaded_holder->ElementsCount(), 2);
  EXPECT_EQ(ObjectAs<TPointerElement>(loaded_holder->Get(0))->Get_Element(), loaded_holder);
  TElement* loaded_unlisted = ObjectAs<TPointerElement>(loaded_holder->Get(1))->Get_Element();
  ASSERT_NE(loaded_unlisted, nullptr);
  EXPECT_EQ(loaded_unlisted->ID, -1) << "an element read inline comes back unnumbered";
  EXPECT_EQ(ObjectAs<TPointerElement>(loaded.Get(1))->Get_Element(), nullptr);
  // The setter lists the else-tool, and so does the member list: loaded, it is listed twice.
  auto* loaded_technology = ObjectAs<TSelectTechnology>(loaded.Get(2));
  ASSERT_EQ(loaded_technology->ElementsCount(), 2);
  EXPECT_EQ(loaded_technology->Get(0), loaded_technology->Get(1));
  EXPECT_EQ(loaded_technology->Get(0), loaded_technology->GetElseTool());
  delete unlisted;
}

}  // namespace
}  // namespace veska
