// The VSK0 stream loader.  A VSK0 file is a 4-byte signature "VSK0" and then values in the
// typed-value encoding of the platform's reader: the header (three strings: module, version,
// comment) and the element list.
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
  // Reads the header's three strings; here they are passed over.
  virtual void LoadInfo();

 protected:
  // The reader of the run, over the file's stream; none outside a run.
  TReader& Reader() { return *reader_; }

  // A file opened for reading, with a reader over it, for the length of a run.
  class OpenFile {
   public:
    OpenFile(TStreamLoader& loader, const String& file_name);
    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    // The four raw bytes of the file's signature.
    std::string ReadSignature();

   private:
    TStreamLoader& loader_;
    std::unique_ptr<TStream> stream_;
    std::unique_ptr<TReader> reader_;
  };

 private:
  TReader* reader_ = nullptr;
};

}  // namespace veska
