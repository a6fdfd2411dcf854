// The VSK0 stream loader, and the loader of the older "TPF0" files.
//
// A VSK0 file is the 4-byte signature "VSK0" and then values in the typed-value encoding of the
// platform's reader: the header (three strings: module, version, comment) and the element list,
// a list of records.  A record that starts with -1 declares a class (its name, an integer that
// is not used, and a list of property names with their type kinds); any other number n starts an
// element of class declaration n: the element number it reports, its property values by
// declaration number, and the element numbers of its members when its flag's low byte is set.
// A reference of -2 holds a whole element list inline; such lists nest at most kMaxNesting deep.
//
// A record that fails is passed over (its failure is not reported, and the stream stands where
// the failure left it); the element list around it goes on.
#pragma once

#include <memory>

#include "kernel/persistence/veska_loader.h"
#include "kernel/platform/typed_value_stream.h"

namespace veska {

// The signatures of the two kinds of model file.
inline constexpr std::string_view kVskSignature = "VSK0";
inline constexpr std::string_view kComponentSignature = "TPF0";

class TStreamLoader : public TVeskaLoader {
  VESKA_CLASS(TStreamLoader, TVeskaLoader, kLoaderUnit)
 public:
  // Inline element lists nested deeper than this are reported and passed over.
  static constexpr int kMaxNesting = 256;

  // Opens FileName: EBadStreamName "Chybné jméno souboru : NAME !" without a name, EBadStream
  // "Soubor NAME neexistuje!" without the file and "NAME ... neznámý typ souboru" for a file of
  // neither kind.  A "TPF0" file goes to TLoader.
  void DoIt() override;
  // Reads the header's three strings; here they are passed over.
  void LoadInfo() override;

 protected:
  void UpdateGauge() override;
  int32_t GetGaugeMax() override;
  void LoadClass() override;
  void LoadAll() override;
  void LoadProperties() override;
  void LoadElements() override;
  // Runs a TLoader on the file and takes its result.
  virtual void UseOldLoader();

  // The reader of the run, over the file's stream.
  TReader& Reader() { return *reader_; }

  // A file opened for reading, with a reader over it, for the length of a run.
  class OpenFile {
   public:
    OpenFile(TStreamLoader& loader, std::unique_ptr<TStream> stream);
    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

   private:
    TStreamLoader& loader_;
    std::unique_ptr<TStream> stream_;
    std::unique_ptr<TReader> reader_;
  };

 private:
  // The element a reference names: none, an element listed inline, or one loaded before.
  TElement* ReadReference(int32_t number);

  TReader* reader_ = nullptr;
  int64_t stream_size_ = 0;
  int64_t last_position_ = 0;
  int nesting_ = 0;
};

// A stream loader of its own name, for files and scripts.
class TLoad : public TStreamLoader {
  VESKA_CLASS(TLoad, TStreamLoader, kLoaderUnit)
};

// The loader of the older "TPF0" files: a list of elements, each its class name followed by
// what the element's own Load reads.  Its Name is the file's name ("VESKA.VSK" at first).  An
// unregistered class ends the reading without a result, with the error "Neregistrovaný element:
// NAME"; an element that fails to read ends it with "Chyba při čtení elementu: NAME".  Either
// way the elements read before are freed.
class TLoader : public TTool {
  VESKA_CLASS(TLoader, TTool, kLoaderUnit)
 public:
  TLoader();
  // EBadStreamName "Chybné jméno streamu : NAME !" without a name.
  void DoIt() override;
  // An entity that receives every element of a file that loads; without one, the elements that
  // the result does not hold belong to no one.  A stream loader passes its ContainerEntity on.
  void SetContainerEntity(TEntity* entity) { container_entity_ = entity; }

 private:
  WeakRef<TEntity> container_entity_;
};

}  // namespace veska
