// Loads arbitrary bytes as a model file with the stream loader, into a container that holds
// what it loads, and reads the same bytes with the header reader.  The bytes follow a "VSK0"
// signature most of the time, so that the search spends its time past the signature; when
// they do not, bytes that begin with "TPF0" go on to the older format's loader.
#include <sanitizer/lsan_interface.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "fuzz/fuzz_input.h"
#include "kernel/persistence/stream_loader.h"
#include "kernel/persistence/vsk_info.h"
#include "kernel/platform/application.h"
#include "kernel/platform/message_sink.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace veska;
  static const MessageSink quiet = SetMessageSink([](const String&, MessageKind) {});
  static const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("veska_fuzz_model_" + std::to_string(getpid()) + ".vsk");
  fuzz::FuzzInput input(data, size);
  const bool signed_as_model = input.Choose(8) != 0;
  const bool older_format = !signed_as_model && input.RestAsText().starts_with(kComponentSignature);
  {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (signed_as_model) out << "VSK0";
    out << input.RestAsText();
  }
  const String file_name = FromUtf8(file.string());
  {
    TOwnerEntity container;
    TLoad load;
    load.SetFileName(file_name);
    load.SetContainerEntity(&container);
    // The older format's loader hands over only its last element, which the caller frees with
    // the members it holds; an element of the file that nothing holds stays allocated, as that
    // loader leaves it.  Such elements are not counted as leaks of this run.
    if (older_format) __lsan_disable();
    try {
      load.DoIt();
    } catch (const std::exception&) {
      // A file that is not a model is refused; what was read before stays in the container.
    }
    if (older_format) {
      __lsan_enable();
      delete load.GetOutput();
    }
    Application().ClearMessages();
  }
  TLoadVSKInfo info;
  info.SetFileName(file_name);
  try {
    info.DoIt();
  } catch (const std::exception&) {
  }
  return 0;
}
