#include "kernel/persistence/stream_loader.h"

#include <cmath>
#include <exception>

#include "kernel/elements/entity.h"
#include "kernel/platform/application.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/file_bytes.h"
#include "kernel/platform/float_text.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"
#include "kernel/platform/scoped_value.h"
#include "kernel/platform/streams.h"
#include "kernel/text/string_numbers.h"

namespace veska {
namespace {

// The progress display moves only at stream positions divisible by this, as it always has.
constexpr int64_t kGaugeStep = 200;

}  // namespace

TStreamLoader::OpenFile::OpenFile(TStreamLoader& loader, std::unique_ptr<TStream> stream)
    : loader_(loader), stream_(std::move(stream)), reader_(std::make_unique<TReader>(*stream_)) {
  loader_.reader_ = reader_.get();
  loader_.stream_size_ = stream_->Size();
  loader_.last_position_ = 0;
}

TStreamLoader::OpenFile::~OpenFile() { loader_.reader_ = nullptr; }

void TStreamLoader::DoIt() {
  if (FileName.empty()) throw EBadStreamName(u"Chybné jméno souboru : " + FileName + u" !");
  if (!FileExists(FileName)) throw EBadStream(u"Soubor " + FileName + u" neexistuje!");
  auto stream = std::make_unique<TMemoryStream>();
  stream->LoadFromFile(FileName);
  std::string signature;
  {
    OpenFile file(*this, std::move(stream));
    signature = Reader().ReadSignature();
    if (signature == kVskSignature) {
      nesting_ = 0;
      TVeskaLoader::DoIt();
      return;
    }
  }
  if (signature != kComponentSignature) throw EBadStream(FileName + u" ... neznámý typ souboru");
  UseOldLoader();
}

void TStreamLoader::UseOldLoader() {
  TLoader loader;
  loader.SetName(FileName);
  loader.SetContainerEntity(GetContainerEntity());
  loader.DoIt();
  SetOutput(loader.GetOutput());
}

void TStreamLoader::UpdateGauge() {
  const int64_t position = Reader().Position();
  if (position <= last_position_ || position % kGaugeStep != 0) return;
  last_position_ = position;
  SetProgress(static_cast<int32_t>(position));
  SetProgressText(IntToStr(position) + u" bytů z celkových " + IntToStr(stream_size_));
  Application().ProcessMessages();
}

int32_t TStreamLoader::GetGaugeMax() {
  if (stream_size_ > INT32_MAX) throw ERangeError(u"Range check error");
  return static_cast<int32_t>(stream_size_);
}

void TStreamLoader::LoadInfo() {
  for (int header_string = 0; header_string < 3; ++header_string) (void)Reader().ReadString();
}

void TStreamLoader::LoadClass() {
  AddClass(Reader().ReadString());
  (void)Reader().ReadInteger();
  Reader().ReadListBegin();
  while (!Reader().EndOfList()) {
    const String name = Reader().ReadString();
    const int32_t kind = Reader().ReadInteger();
    AddClassProperty(name, kind == 2 ? 9 : kind);  // every character is wide
  }
  Reader().ReadListEnd();
}

void TStreamLoader::LoadAll() {
  Reader().ReadListBegin();
  while (!Reader().EndOfList()) {
    const int32_t record = Reader().ReadInteger();
    if (record == -1) {
      LoadClass();
    } else {
      try {
        NewElement(record);
        const int32_t element_number = Reader().ReadInteger();
        LoadProperties();
        LoadElements();
        SetLastElementIndex(element_number);
      } catch (const std::exception&) {
        // A record that fails is passed over, and the list goes on.
      }
    }
    UpdateGauge();
  }
  Reader().ReadListEnd();
}

void TStreamLoader::LoadProperties() {
  TReader& reader = Reader();
  reader.ReadListBegin();
  while (!reader.EndOfList()) {
    const int32_t number = reader.ReadInteger();
    const TVeskaClassProperty* declaration = Declaration(number);
    if (declaration == nullptr) throw EReadError(u"Loader Error: no property declaration " + IntToStr(number));
    const auto declared = static_cast<int32_t>(declaration->LostTypeKind);
    const TTypeKind current = declaration->GetTypeKind();
    const bool converted = declaration->TypeMishmash;
    switch (declared) {
      case 1:
      case 3:
      case 6: {
        const int32_t value = reader.ReadInteger();
        if (converted) {
          SetProperty(number, current, IntToStr(value));
        } else {
          SetProperty(number, declaration->LostTypeKind, value);
        }
        break;
      }
      case 2:
      case 9: {
        const char16_t value = reader.ReadChar();
        if (converted) {
          SetProperty(number, current, String(1, value));
        } else {
          SetProperty(number, declaration->LostTypeKind, int32_t{value});
        }
        break;
      }
      case 4: {
        const double value = reader.ReadFloat();
        if (!converted) {
          SetProperty(number, TTypeKind::tkFloat, value);
        } else if (current == TTypeKind::tkInteger || current == TTypeKind::tkInt64) {
          const double rounded = std::nearbyint(value);  // to nearest, ties to even
          if (!(rounded >= INT32_MIN && rounded <= INT32_MAX)) throw ERangeError(u"Range check error");
          const auto integer = static_cast<int32_t>(rounded);
          if (current == TTypeKind::tkInteger) {
            SetProperty(number, current, integer);
          } else {
            SetProperty(number, current, int64_t{integer});
          }
        } else {
          SetProperty(number, current, FloatToStr(value));
        }
        break;
      }
      case 5:
      case 10:
      case 18: {
        String text = reader.ReadString();
        const TTypeKind kind = current == TTypeKind::tkUString ? TTypeKind::tkUString : declaration->LostTypeKind;
        if (!converted) {
          // Moved into the buffer: names and texts are most of a file's values, and a copy each
          // would cost an allocation.
          SetProperty(number, kind, TPropertyBuffer(std::move(text)));
        } else if (current == TTypeKind::tkInteger || current == TTypeKind::tkEnumeration ||
                   current == TTypeKind::tkSet) {
          SetProperty(number, current, TryStrToLongInt(text).value_or(0));
        } else if (current == TTypeKind::tkChar) {
          // An empty text becomes "-", deliberately a visible placeholder.
          SetProperty(number, current, int32_t{text.empty() ? u'-' : text[0]});
        } else if (current == TTypeKind::tkFloat) {
          SetProperty(number, current, StrToExtended(text));
        }
        break;
      }
      case 7:
        SetProperty(number, TTypeKind::tkClass, ObjectHandles::HandleOf(ReadReference(number)));
        break;
      default:  // kinds without a value in the file
        break;
    }
  }
  reader.ReadListEnd();
}

TElement* TStreamLoader::ReadReference(int32_t number) {
  const int32_t reference = Reader().ReadInteger();
  if (reference == -1) return nullptr;
  if (reference == -2) {
    if (nesting_ >= kMaxNesting) {
      Report(u"Loader Error: element lists nested deeper than " + IntToStr(kMaxNesting) + u" levels");
      throw EReadError(u"Element lists nested too deep");
    }
    TElement* element = actual_element_;
    TVeskaClass* declaration = actual_class_;
    {
      const ScopedValue deeper(nesting_, nesting_ + 1);
      LoadAll();
    }
    // An inline list that made no element yet leaves the reference empty.
    TElement* inline_element = GetContainer()->Get(last_element_index_);
    if (inline_element != nullptr) inline_element->ID = -1;  // as a new element has it
    actual_element_ = element;
    actual_class_ = declaration;
    instance_->SetInstance(element);
    return inline_element;
  }
  if (reference >= 0 && reference <= GetContainer()->GetLastIndex()) return GetContainer()->Get(reference);
  const TVeskaClassProperty* declaration = Declaration(number);
  Report(u"Loader Error: " + actual_class_->GetName() + u" ClassProperty " +
         (declaration != nullptr ? declaration->GetName() : String()));
  return nullptr;
}

void TStreamLoader::LoadElements() {
  if ((Reader().ReadInteger() & 0xFF) == 0) return;
  Reader().ReadListBegin();
  while (!Reader().EndOfList()) AddNextElement(Reader().ReadInteger());
  Reader().ReadListEnd();
}

TLoader::TLoader() { SetName(u"VESKA.VSK"); }

void TLoader::DoIt() {
  const String file_name = FName;  // not GetName, which stands the class name in for none
  if (file_name.empty()) throw EBadStreamName(u"Chybné jméno streamu : " + file_name + u" !");
  Application().SetCursor(TCursor::HourGlass);
  TQuickEntity loaded;  // the table references are read from; emptied before it goes
  String class_name;
  const auto fail = [&](const String& text) {
    // What was read before goes as a set: an entity among it frees its members, once.
    FreeElementSet(loaded);
    ShowMessage(text, MessageKind::Error);
    Application().SetCursor(TCursor::Default);
  };
  try {
    TFileStream stream(file_name, TFileMode::fmOpenRead);
    TReader reader(stream);
    (void)reader.ReadSignature();
    reader.ReadListBegin();
    while (!reader.EndOfList()) {
      class_name = reader.ReadString();
      if (GetVeskaClass(class_name) == nullptr) return fail(u"Neregistrovaný element: " + class_name);
      TElement* element = CreateElementByName(class_name);
      loaded.AddElement(element);
      element->Load(reader, &loaded);
    }
    reader.ReadListEnd();
  } catch (const std::exception&) {
    return fail(u"Chyba při čtení elementu: " + class_name);
  }
  if (!loaded.NoElements()) SetOutput(loaded.Get(loaded.GetLastIndex()));
  if (TEntity* container = container_entity_.Get()) container->PAddAllFrom(&loaded);
  loaded.Clear();
  Application().SetCursor(TCursor::Default);
}

}  // namespace veska
