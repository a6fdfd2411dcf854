// Loads arbitrary bytes as a model file with the stream loader, into a container that lists
// what it loads, writes the result's model with the saver, frees what was loaded as a set, and
// reads the same bytes with the header reader.  The bytes follow a "VSK0" signature most of the
// time, so that the search spends its time past the signature; when they do not, bytes that
// begin with "TPF0" go on to the older format's loader.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "fuzz/fuzz_input.h"
#include "kernel/elements/entity.h"
#include "kernel/persistence/stream_loader.h"
#include "kernel/persistence/stream_saver.h"
#include "kernel/persistence/vsk_info.h"
#include "kernel/platform/application.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/streams.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace veska;
  static const MessageSink quiet = SetMessageSink([](const String&, MessageKind) {});
  static const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("veska_fuzz_model_" + std::to_string(getpid()) + ".vsk");
  fuzz::FuzzInput input(data, size);
  const bool signed_as_model = input.Choose(8) != 0;
  {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (signed_as_model) out << "VSK0";
    out << input.RestAsText();
  }
  const String file_name = FromUtf8(file.string());
  {
    TQuickEntity container;  // lists what the loaders make; FreeElementSet frees it
    TLoad load;
    load.SetFileName(file_name);
    load.SetContainerEntity(&container);
    try {
      load.DoIt();
    } catch (const std::exception&) {
      // A file that is not a model is refused; what was read before stays in the container.
    }
    // Whatever graph the file made, the saver writes it or refuses it.
    if (TElement* result = load.GetOutput()) {
      TStreamSaver saver;
      TMemoryStream written;
      try {
        saver.SaveToStream(*result, written);
      } catch (const EWriteError&) {
      }
    }
    Application().ClearMessages();
    FreeElementSet(container);
  }
  TLoadVSKInfo info;
  info.SetFileName(file_name);
  try {
    info.DoIt();
  } catch (const std::exception&) {
  }
  return 0;
}
