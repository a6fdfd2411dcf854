// The veska half of the comparison with RTTR: the application class as a veska element, each
// operation through veska's by-name interface, and the plain C++ baselines.  The class derives
// from TElement, so that its lookups pass the inherited properties too.
#include <benchmark/benchmark.h>

#include "kernel/classes/registry.h"
#include "kernel/elements/element.h"

namespace {

using veska::String;

class TPump : public veska::TElement {
  VESKA_CLASS(TPump, veska::TElement, u"Pumps")
 public:
  int32_t Pressure = 0;
  double Flow = 0;
  bool Running = false;

  const String& GetLabel() const { return label_; }
  void SetLabel(const String& label) { label_ = label; }

  static void Publish(veska::Publisher<TPump>& p) {
    p.Field(u"Pressure", &TPump::Pressure);
    p.Field(u"Flow", &TPump::Flow);
    p.Property(u"Label", &TPump::GetLabel, &TPump::SetLabel);
    p.Field(u"Running", &TPump::Running);
  }

 private:
  String label_;
};

// The instance the rows read; the class is registered on first use.
class Pump {
 public:
  Pump() {
    static const bool registered = (veska::RegisterVeskaClass<TPump>(), true);
    (void)registered;
    pump_.Pressure = 42;
    pump_.SetLabel(u"pump-0001");
  }
  TPump& Get() { return pump_; }
  veska::TElement& AsElement() { return pump_; }

 private:
  TPump pump_;
};

void IntRead_veska(benchmark::State& state) {
  Pump pump;
  veska::TElement& element = pump.AsElement();
  for (auto _ : state) benchmark::DoNotOptimize(element.GetPropertyIntByName(u"Pressure"));
}
BENCHMARK(IntRead_veska);

void IntRead_direct(benchmark::State& state) {
  Pump pump;
  TPump* direct = &pump.Get();
  for (auto _ : state) {
    benchmark::DoNotOptimize(direct);
    benchmark::DoNotOptimize(direct->Pressure);
  }
}
BENCHMARK(IntRead_direct);

void IntWrite_veska(benchmark::State& state) {
  Pump pump;
  veska::TElement& element = pump.AsElement();
  int32_t value = 0;
  for (auto _ : state) benchmark::DoNotOptimize(element.SetPropertyIntByName(u"Pressure", ++value));
  if (pump.Get().Pressure != value) state.SkipWithError("the int was not written");
}
BENCHMARK(IntWrite_veska);

void IntAsText_veska(benchmark::State& state) {
  Pump pump;
  veska::TElement& element = pump.AsElement();
  for (auto _ : state) benchmark::DoNotOptimize(element.GetPropertyStringByName(u"Pressure"));
}
BENCHMARK(IntAsText_veska);

void StringAsText_veska(benchmark::State& state) {
  Pump pump;
  veska::TElement& element = pump.AsElement();
  for (auto _ : state) benchmark::DoNotOptimize(element.GetPropertyStringByName(u"Label"));
}
BENCHMARK(StringAsText_veska);

void IntFromText_veska(benchmark::State& state) {
  Pump pump;
  veska::TElement& element = pump.AsElement();
  const String text = u"123";
  for (auto _ : state) benchmark::DoNotOptimize(element.SetPropertyStringByName(u"Pressure", text));
  if (pump.Get().Pressure != 123) state.SkipWithError("the text was not written");
}
BENCHMARK(IntFromText_veska);

void Create_veska(benchmark::State& state) {
  Pump pump;  // registers the class; the start-up registrations stay outside the timing
  for (auto _ : state) {
    veska::TElement* element = veska::CreateElementByName(u"TPump");
    benchmark::DoNotOptimize(element);
    delete element;
  }
}
BENCHMARK(Create_veska);

void Create_new(benchmark::State& state) {
  for (auto _ : state) {
    auto* created = new TPump;
    benchmark::DoNotOptimize(created);
    delete created;
  }
}
BENCHMARK(Create_new);

}  // namespace
