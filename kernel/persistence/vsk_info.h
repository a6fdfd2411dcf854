// The header of a model file without its model: TLoadVSKInfo reads a file's signature and header
// and reports them with an error code, never raising for a missing name or file; TVSKInfo
// carries the same as an element, the tool's result when ReturnInfoElement is set (the caller
// owns it).  A header cut short raises the reader's EReadError.
//
//   Error  ErrorText
//   0      "OK"
//   1      "Chybné jméno souboru  !"                (no file name)
//   2      "Soubor  neexistuje!"                    (no such file)
//   3      " ... stará verze VSK!"                  (a "TPF0" file, of the older format)
//   4      "MAGIC error ... Neznámý typ souboru!"   (any other signature)
//
// The texts of errors 1 and 2 are fixed, without the name, deliberately.
#pragma once

#include <utility>

#include "kernel/persistence/stream_loader.h"

namespace veska {

class TVSKInfo : public TOwnerElement {
  VESKA_CLASS(TVSKInfo, TOwnerElement, kLoaderUnit)
 public:
  String FileName;
  String Modul;
  String Version;
  String Comment;
  int32_t Error = 0;
  String ErrorText;

  void SetFileName(const String& value) { FileName = value; }
  void SetModul(const String& value) { Modul = value; }
  void SetVersion(const String& value) { Version = value; }
  void SetComment(const String& value) { Comment = value; }
  void SetError(int32_t value) { Error = value; }
  void SetErrorText(const String& value) { ErrorText = value; }

  static void Publish(Publisher<TVSKInfo>& p);
};

class TLoadVSKInfo : public TStreamLoader {
  VESKA_CLASS(TLoadVSKInfo, TStreamLoader, kLoaderUnit)
 public:
  String Version;
  String Comment;
  String Modul;
  String ErrorText;
  bool ReturnInfoElement = false;

  void SetVersion(const String& value) { Version = value; }
  void SetComment(const String& value) { Comment = value; }
  void SetModul(const String& value) { Modul = value; }
  void SetErrorText(const String& value) { ErrorText = value; }
  void SetReturnInfoElement(bool value) { ReturnInfoElement = value; }

  void DoIt() override;
  // Keeps the header's strings in Modul, Version and Comment.
  void LoadInfo() override;
  // 0 is FileName, any other number ReturnInfoElement.
  String NumberToPropertyName(int32_t number) override;

  static void Publish(Publisher<TLoadVSKInfo>& p);

 private:
  // The error code and text of reading the signature and the header.
  std::pair<int32_t, StringView> ReadHeader();
  // The info element of this run; none without ReturnInfoElement.
  TVSKInfo* Info() const;
  // Sets the tool's error code and text, and the info element's.
  void Report(int32_t error, const String& text);
};

}  // namespace veska
