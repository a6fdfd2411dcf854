#include "cli/model_file_commands.h"

#include "cli/tab_line.h"
#include "cli/usage_error.h"
#include "kernel/persistence/vsk_info.h"

namespace veska::cli {

void ShowModelInfo(std::string_view file_name, std::FILE* out) {
  TLoadVSKInfo info;
  info.SetFileName(FromUtf8(file_name));
  info.DoIt();
  WriteTabLine(out, {info.Modul, info.Version, info.Comment, IntToStr(info.Error), info.ErrorText});
  if (info.Error != 0) throw ReportedFailure();
}

}  // namespace veska::cli
