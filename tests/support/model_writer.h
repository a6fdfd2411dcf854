// Model files for the tests of the loaders, written as a writer of model files writes them.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include "kernel/platform/streams.h"
#include "kernel/platform/typed_value_stream.h"

namespace veska::test {

inline std::string BytesOf(const TMemoryStream& stream) {
  const std::span<const std::byte> bytes = stream.Memory();
  return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

inline void Put(TWriter& w, int32_t v) { w.WriteInteger(v); }
inline void Put(TWriter& w, double v) { w.WriteFloat(v); }
inline void Put(TWriter& w, char16_t v) { w.WriteChar(v); }
inline void Put(TWriter& w, StringView v) { w.WriteString(v); }

// Writes the values in order, each as its type is written: an integer, a float, a character or a
// string.
template <class... Items>
std::function<void(TWriter&)> Values(Items... items) {
  return [=](TWriter& w) { (Put(w, items), ...); };
}

// A model file (the signature, the header and the element list) written record by record.
class ModelWriter {
 public:
  explicit ModelWriter(std::string_view signature = "VSK0",
                       std::initializer_list<StringView> header = {u"Sklad", u"1.0", u""})
      : writer_(std::make_unique<TWriter>(stream_)) {
    writer_->WriteSignature(signature);
    for (StringView text : header) writer_->WriteString(text);
    writer_->WriteListBegin();
  }
  TWriter& Writer() { return *writer_; }
  // A class declaration: the name and its properties with their declared kinds.
  void Class(StringView name, std::initializer_list<std::pair<StringView, int>> properties) {
    writer_->WriteInteger(-1);
    writer_->WriteString(name);
    writer_->WriteInteger(0);
    writer_->WriteListBegin();
    for (const auto& [property, kind] : properties) {
      writer_->WriteString(property);
      writer_->WriteInteger(kind);
    }
    writer_->WriteListEnd();
  }
  // An element record; `values` writes the property numbers and values.  The children flag is
  // `flag`, or 1 when there are members and 0 when not; the member list follows when there are
  // members.
  void Element(int class_number, int element_number, const std::function<void(TWriter&)>& values = {},
               std::initializer_list<int> members = {}, int flag = -1) {
    writer_->WriteInteger(class_number);
    writer_->WriteInteger(element_number);
    writer_->WriteListBegin();
    if (values) values(*writer_);
    writer_->WriteListEnd();
    writer_->WriteInteger(flag >= 0 ? flag : members.size() > 0 ? 1 : 0);
    if (members.size() == 0) return;
    writer_->WriteListBegin();
    for (int member : members) writer_->WriteInteger(member);
    writer_->WriteListEnd();
  }
  std::string Bytes() {
    writer_->WriteListEnd();
    writer_.reset();
    return BytesOf(stream_);
  }

 private:
  TMemoryStream stream_;
  std::unique_ptr<TWriter> writer_;
};

}  // namespace veska::test
