#include "kernel/persistence/vsk_info.h"

#include "kernel/platform/file_bytes.h"
#include "kernel/platform/streams.h"

namespace veska {

void TVSKInfo::Publish(Publisher<TVSKInfo>& p) {
  p.Property(u"FileName", &TVSKInfo::FileName, &TVSKInfo::SetFileName);
  p.Property(u"Modul", &TVSKInfo::Modul, &TVSKInfo::SetModul);
  p.Property(u"Version", &TVSKInfo::Version, &TVSKInfo::SetVersion);
  p.Property(u"Comment", &TVSKInfo::Comment, &TVSKInfo::SetComment);
  p.Property(u"Error", &TVSKInfo::Error, &TVSKInfo::SetError);
  p.Property(u"ErrorText", &TVSKInfo::ErrorText, &TVSKInfo::SetErrorText);
}

void TLoadVSKInfo::DoIt() {
  if (ReturnInfoElement) {
    auto* info = new TVSKInfo;
    info->FileName = FileName;
    info->ErrorText = u"OK";
    SetOutput(info);
  }
  Modul.clear();
  Version.clear();
  Comment.clear();
  Report(0, u"OK");
  const auto [error, text] = ReadHeader();
  Report(error, String(text));
}

std::pair<int32_t, StringView> TLoadVSKInfo::ReadHeader() {
  if (FileName.empty()) return {1, u"Chybné jméno souboru  !"};
  if (!FileExists(FileName)) return {2, u"Soubor  neexistuje!"};
  OpenFile file(*this, std::make_unique<TFileStream>(FileName, TFileMode::fmOpenRead));
  const std::string signature = Reader().ReadSignature();
  if (signature == kComponentSignature) return {3, u" ... stará verze VSK!"};
  if (signature != kVskSignature) return {4, u"MAGIC error ... Neznámý typ souboru!"};
  LoadInfo();
  if (TVSKInfo* info = Info()) {
    info->Modul = Modul;
    info->Version = Version;
    info->Comment = Comment;
  }
  return {0, u"OK"};
}

TVSKInfo* TLoadVSKInfo::Info() const { return ReturnInfoElement ? ObjectAs<TVSKInfo>(GetOutput()) : nullptr; }

// The tool's error code and text, and the info element's, when there is one.
void TLoadVSKInfo::Report(int32_t error, const String& text) {
  Error = error;
  ErrorText = text;
  if (TVSKInfo* info = Info()) {
    info->Error = error;
    info->ErrorText = text;
  }
}

void TLoadVSKInfo::LoadInfo() {
  Modul = Reader().ReadString();
  Version = Reader().ReadString();
  Comment = Reader().ReadString();
}

String TLoadVSKInfo::NumberToPropertyName(int32_t number) { return number == 0 ? u"FileName" : u"ReturnInfoElement"; }

void TLoadVSKInfo::Publish(Publisher<TLoadVSKInfo>& p) {
  p.Property(u"Version", &TLoadVSKInfo::Version, &TLoadVSKInfo::SetVersion);
  p.Property(u"Comment", &TLoadVSKInfo::Comment, &TLoadVSKInfo::SetComment);
  p.Property(u"Modul", &TLoadVSKInfo::Modul, &TLoadVSKInfo::SetModul);
  p.Property(u"ErrorText", &TLoadVSKInfo::ErrorText, &TLoadVSKInfo::SetErrorText);
  p.Property(u"ReturnInfoElement", &TLoadVSKInfo::ReturnInfoElement, &TLoadVSKInfo::SetReturnInfoElement);
}

}  // namespace veska
