// Model files: loading, decoding and writing a VSK0 file of 200,000 value elements.
//
// The model is a root TOwnerEntity holding 2,000 TOwnerEntity groups of 100 elements each:
// integer, float and string elements and pointer elements that refer to value elements
// anywhere in the model.  Every element has a name.  It is written once, with TStreamSaver, to
// a temporary file, and then:
//   - BM_LoadModel loads the file with TLoad into an element tree;
//   - BM_DecodePlain reads the same file with TReader alone into a vector of plain structs, the
//     least any reader of the format has to do: the baseline the loader is compared to;
//   - BM_WriteModel writes the model with TStreamSaver::SaveToStream into a TMemoryStream.
// The three report items/s as property values per second (a value is one property number and
// its value in an element record), so their rates compare directly.  Times are CPU times: the
// benchmarks run on one thread, and CPU time is steadier than wall time on a shared machine.
//
// BM_LoadModel also reports the heap the loaded tree holds, in bytes per element
// (bytes_per_element): mallinfo2's bytes in use after the load, with the tree alive and the
// loader gone, less those before.  peak_bytes_per_element is the same at the height of the
// load, while the loader still holds the file and its tables, sampled by a host whenever the
// loader hands its progress messages over (about every 200 bytes of the file); that load runs
// once, after the timed ones, as the sampling costs time.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "kernel/elements/named.h"
#include "kernel/persistence/stream_loader.h"
#include "kernel/platform/application.h"
#include "kernel/persistence/stream_saver.h"
#include "kernel/platform/streams.h"
#include "kernel/platform/typed_value_stream.h"
#include "kernel/types/value_elements.h"

namespace veska {
namespace {

constexpr int kGroups = 2'000;
constexpr int kGroupSize = 100;
constexpr int kElements = kGroups * kGroupSize;

// The model, its file and what the file holds, made once for all the benchmarks.
class ModelFile {
 public:
  static ModelFile& Get() {
    static ModelFile file;
    return file;
  }
  ModelFile(const ModelFile&) = delete;
  ModelFile& operator=(const ModelFile&) = delete;

  TOwnerEntity& Root() { return *root_; }
  const String& FileName() const { return file_name_; }
  int64_t FileSize() const { return file_size_; }
  // The property values of the file's element records.
  int64_t Values() const { return values_; }
  // Every element of the file, groups and root included.
  int64_t Records() const { return records_; }

 private:
  ModelFile();
  ~ModelFile() {
    delete root_;
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }

  TOwnerEntity* root_ = new TOwnerEntity;
  std::filesystem::path path_;
  String file_name_;
  int64_t file_size_ = 0;
  int64_t values_ = 0;
  int64_t records_ = 0;
};

// A record of an element as plain data: the values the model's classes store.
struct PlainRecord {
  int32_t class_number = -1;
  String name;
  int32_t integer = 0;
  double number = 0;
  String text;
  int32_t reference = -1;  // an element number, -1 for none
  int32_t first_member = 0;  // into PlainModel::members
  int32_t member_count = 0;
};

struct PlainModel {
  std::vector<PlainRecord> records;
  std::vector<int32_t> members;
  int64_t values = 0;
};

// Where a declared property's value goes in a plain record.
enum class Slot : uint8_t { Name, Integer, Number, Text, Reference, Character, Skip };

Slot SlotOf(const String& name, int32_t kind) {
  if (name == u"Name") return Slot::Name;
  switch (kind) {
    case 1:
    case 3:
    case 6:
      return Slot::Integer;
    case 2:
    case 9:
      return Slot::Character;
    case 4:
      return Slot::Number;
    case 5:
    case 10:
    case 18:
      return Slot::Text;
    case 7:
      return Slot::Reference;
    default:
      return Slot::Skip;
  }
}

// Decodes a VSK0 file into plain records, reading it as the loader reads it: the whole file
// into memory, then value by value through a TReader.  Inline element lists (reference -2) are
// not part of the benchmark's model and are refused.
PlainModel DecodePlain(const String& file_name) {
  TMemoryStream stream;
  stream.LoadFromFile(file_name);
  TReader reader(stream);
  if (reader.ReadSignature() != kVskSignature) throw std::runtime_error("not a VSK0 file");
  for (int header_string = 0; header_string < 3; ++header_string) (void)reader.ReadString();
  PlainModel model;
  std::vector<std::vector<Slot>> classes;
  reader.ReadListBegin();
  while (!reader.EndOfList()) {
    const int32_t record = reader.ReadInteger();
    if (record == -1) {
      (void)reader.ReadString();
      (void)reader.ReadInteger();
      std::vector<Slot>& slots = classes.emplace_back();
      reader.ReadListBegin();
      while (!reader.EndOfList()) {
        const String name = reader.ReadString();
        slots.push_back(SlotOf(name, reader.ReadInteger()));
      }
      reader.ReadListEnd();
      continue;
    }
    if (record < 0 || static_cast<std::size_t>(record) >= classes.size()) throw std::runtime_error("no such class");
    const std::vector<Slot>& slots = classes[static_cast<std::size_t>(record)];
    PlainRecord& plain = model.records.emplace_back();
    plain.class_number = record;
    (void)reader.ReadInteger();  // the element number, which is its position
    reader.ReadListBegin();
    while (!reader.EndOfList()) {
      const int32_t number = reader.ReadInteger();
      if (number < 0 || static_cast<std::size_t>(number) >= slots.size()) throw std::runtime_error("no such property");
      ++model.values;
      switch (slots[static_cast<std::size_t>(number)]) {
        case Slot::Name:
          plain.name = reader.ReadString();
          break;
        case Slot::Integer:
          plain.integer = reader.ReadInteger();
          break;
        case Slot::Character:
          plain.integer = reader.ReadChar();
          break;
        case Slot::Number:
          plain.number = reader.ReadFloat();
          break;
        case Slot::Text:
          plain.text = reader.ReadString();
          break;
        case Slot::Reference:
          plain.reference = reader.ReadInteger();
          if (plain.reference == -2) throw std::runtime_error("inline element lists are not decoded");
          break;
        case Slot::Skip:
          reader.SkipValue();
          break;
      }
    }
    reader.ReadListEnd();
    if ((reader.ReadInteger() & 0xFF) != 0) {
      plain.first_member = static_cast<int32_t>(model.members.size());
      reader.ReadListBegin();
      while (!reader.EndOfList()) model.members.push_back(reader.ReadInteger());
      reader.ReadListEnd();
      plain.member_count = static_cast<int32_t>(model.members.size()) - plain.first_member;
    }
  }
  reader.ReadListEnd();
  return model;
}

ModelFile::ModelFile() {
  root_->SetName(u"Model");
  // Targets of the pointer elements: value elements that are not pointers themselves, so that
  // every reference leads to an element some group lists and no record is written inline.
  std::vector<TElement*> targets;
  targets.reserve(kElements);
  std::vector<TPointerElement*> pointers;
  for (int g = 0; g < kGroups; ++g) {
    auto* group = new TOwnerEntity;
    group->SetName(u"Group " + IntToStr(g));
    root_->AddElement(group);
    for (int i = 0; i < kGroupSize; ++i) {
      const int n = g * kGroupSize + i;
      TTypeElement* element = nullptr;
      switch (i % 4) {
        case 0:
          element = new TIntegerElement(u"Integer " + IntToStr(n), n * 7 - 100'000);
          break;
        case 1:
          element = new TFloatElement(u"Float " + IntToStr(n), n * 0.125 + 1.0 / 3.0);
          break;
        case 2:
          element = new TStringElement(u"String " + IntToStr(n), u"text of element " + IntToStr(n));
          break;
        default:
          pointers.push_back(new TPointerElement);
          pointers.back()->SetName(u"Pointer " + IntToStr(n));
          element = pointers.back();
          break;
      }
      if (i % 4 != 3) targets.push_back(element);
      group->AddElement(element);
    }
  }
  std::mt19937 random(2026);
  std::uniform_int_distribution<std::size_t> pick(0, targets.size() - 1);
  for (TPointerElement* pointer : pointers) pointer->Set_Element(targets[pick(random)]);

  path_ = std::filesystem::temp_directory_path() / ("veska_bench_model_files_" + std::to_string(getpid()) + ".vsk");
  file_name_ = FromUtf8(path_.string());
  TStreamSaver saver;
  saver.SetFileName(file_name_);
  saver.SetModul(u"bench");
  saver.SetInput(root_);
  saver.DoIt();
  file_size_ = static_cast<int64_t>(std::filesystem::file_size(path_));

  const PlainModel plain = DecodePlain(file_name_);
  values_ = plain.values;
  records_ = static_cast<int64_t>(plain.records.size());
  if (records_ != kElements + kGroups + 1) throw std::runtime_error("the file does not hold the whole model");
}

int64_t HeapInUse() { return static_cast<int64_t>(mallinfo2().uordblks); }

// The current host while it lives: samples the heap in use each time a posted message reaches
// it, and takes none of the messages.
class HeapSamplingHost : public TApplication {
 public:
  HeapSamplingHost() {
    SetApplication(this);
    SetWindowProc([this](TWindowMessage&) {
      peak_ = std::max(peak_, HeapInUse());
      return false;
    });
  }
  int64_t Peak() const { return peak_; }

 private:
  int64_t peak_ = 0;
};

// The heap's height while the file loads, above `before`, and the loaded tree freed.
int64_t PeakOfLoad(const String& file_name, int64_t before) {
  HeapSamplingHost host;
  TLoad load;
  load.SetFileName(file_name);
  load.DoIt();
  const int64_t peak = std::max(host.Peak(), HeapInUse()) - before;
  delete load.GetOutput();
  return peak;
}

void BM_LoadModel(benchmark::State& state) {
  ModelFile& file = ModelFile::Get();
  int64_t retained = 0;
  for (auto _ : state) {
    const int64_t before = HeapInUse();
    TElement* loaded = nullptr;
    {
      TLoad load;
      load.SetFileName(file.FileName());
      load.DoIt();
      loaded = load.GetOutput();
    }
    state.PauseTiming();
    retained = HeapInUse() - before;
    if (ObjectAs<TOwnerEntity>(loaded) == nullptr || static_cast<TOwnerEntity*>(loaded)->ElementsCount() != kGroups) {
      state.SkipWithError("the file did not load as the model");
    }
    delete loaded;
    state.ResumeTiming();
  }
  const int64_t peak = PeakOfLoad(file.FileName(), HeapInUse());
  state.SetItemsProcessed(state.iterations() * file.Values());
  state.SetBytesProcessed(state.iterations() * file.FileSize());
  state.counters["values"] = static_cast<double>(file.Values());
  state.counters["elements"] = static_cast<double>(file.Records());
  state.counters["bytes_per_element"] = static_cast<double>(retained) / static_cast<double>(file.Records());
  state.counters["peak_bytes_per_element"] = static_cast<double>(peak) / static_cast<double>(file.Records());
}

void BM_DecodePlain(benchmark::State& state) {
  ModelFile& file = ModelFile::Get();
  for (auto _ : state) {
    PlainModel model = DecodePlain(file.FileName());
    benchmark::DoNotOptimize(model.records.data());
    if (model.values != file.Values()) state.SkipWithError("the plain decode read another number of values");
    state.PauseTiming();
    model = PlainModel();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * file.Values());
  state.SetBytesProcessed(state.iterations() * file.FileSize());
}

void BM_WriteModel(benchmark::State& state) {
  ModelFile& file = ModelFile::Get();
  int64_t written = 0;
  for (auto _ : state) {
    TMemoryStream stream;
    TStreamSaver saver;
    saver.SetModul(u"bench");
    saver.SaveToStream(file.Root(), stream);
    written = stream.Size();
    benchmark::DoNotOptimize(stream.Memory().data());
  }
  if (written != file.FileSize()) state.SkipWithError("the model written to memory differs in size from its file");
  state.SetItemsProcessed(state.iterations() * file.Values());
  state.SetBytesProcessed(state.iterations() * file.FileSize());
}

BENCHMARK(BM_LoadModel)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DecodePlain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteModel)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veska
