// The VSK0 writer: the counterpart of TStreamLoader, which writes an element graph so that the
// loader reads it back as it was.
//
// What is written is everything reachable from the root (the tool's Input) through entity
// members and stored element references.  Each class is declared before its first element, with
// the properties its elements store: published, stored (a stored flag that is not constantly
// false), readable and writable, of a kind an element record carries (ordinals, characters,
// floats, strings, element references).  A record holds the values the element stores: its
// stored predicate holds and an ordinal differs from the property's default.
//
// The loader creates elements in record order, resolves a reference only to an element created
// before, and returns the last element it creates; so the writer puts members before the entity
// that lists them and referenced elements before the element that refers to them, the root last.
// An element that no written entity lists is written inline (-2) where it is first referenced,
// except that the root's own references are written before it, as the root must stay last.
// Where references and members form a cycle, the element referred to back is written inline, its
// members before it; what the format cannot carry is left out, each with a level-8 text message:
//   - a reference to the root from another element ("CLASS property \"NAME\" refers to the root");
//   - a reference back to an element whose inline record is still being prepared, and a member
//     that cannot be created before the entity that lists it ("... left out").
// Inline records nest at most TStreamLoader::kMaxNesting deep, as the loader reads them, and
// records written ahead of a cycle at most 4096 deep; a model that needs more raises EWriteError,
// and nothing is written.
#pragma once

#include "kernel/persistence/veska_loader.h"

namespace veska {

class TStream;
class PropInfo;

inline constexpr std::u16string_view kSaverUnit = u"Saver";

// Whether model files store the property, for the elements whose stored predicate holds: it is
// published, stored, readable and writable, and of a kind an element record carries.
bool IsModelFileProperty(const PropInfo& property);

class TStreamSaver : public TTool {
  VESKA_CLASS(TStreamSaver, TTool, kSaverUnit)
 public:
  String FileName;
  // The header.
  String Modul;
  String Version;
  String Comment;

  void SetFileName(const String& name) { FileName = name; }
  void SetModul(const String& text) { Modul = text; }
  void SetVersion(const String& text) { Version = text; }
  void SetComment(const String& text) { Comment = text; }

  // Writes Input into FileName, replacing the file only once the whole model is written.
  // EBadStreamName "Chybné jméno souboru : NAME !" without a name; Exception without Input.
  // Progress goes through the tool's progress messages.
  void DoIt() override;
  // 0 is FileName, any other number Modul.
  String NumberToPropertyName(int32_t number) override;

  // The whole file for the model of `root`: signature, header and element list.
  void SaveToStream(TElement& root, TStream& stream);

  static void Publish(Publisher<TStreamSaver>& p);
};

}  // namespace veska
