// The RTTR half of the comparison: the application class described to RTTR, and each operation
// as RTTR does it, looking the type or the property up by name on every call.
//
// This file is compiled as C++17: RTTR's headers do not compile as C++20 with clang++ and
// libstdc++ (a vector of an incomplete type in a default argument).
#include <benchmark/benchmark.h>

#include <rttr/registration>
#include <string>

namespace {

struct RttrPump {
  int Pressure = 0;
  double Flow = 0;
  bool Running = false;

  const std::string& GetLabel() const { return label_; }
  void SetLabel(const std::string& label) { label_ = label; }

 private:
  std::string label_;
};

RTTR_REGISTRATION {
  rttr::registration::class_<RttrPump>("TPump")
      .constructor<>()(rttr::policy::ctor::as_raw_ptr)
      .property("Pressure", &RttrPump::Pressure)
      .property("Flow", &RttrPump::Flow)
      .property("Label", &RttrPump::GetLabel, &RttrPump::SetLabel)
      .property("Running", &RttrPump::Running);
}

// The instance the rows read, with the values the veska half reads too.
RttrPump Pump() {
  RttrPump pump;
  pump.Pressure = 42;
  pump.SetLabel("pump-0001");
  return pump;
}

rttr::property PropertyNamed(const RttrPump& pump, const char* name) {
  return rttr::type::get(pump).get_property(name);
}

void IntRead_rttr(benchmark::State& state) {
  RttrPump pump = Pump();
  for (auto _ : state) benchmark::DoNotOptimize(PropertyNamed(pump, "Pressure").get_value(pump).get_value<int>());
}
BENCHMARK(IntRead_rttr);

void IntWrite_rttr(benchmark::State& state) {
  RttrPump pump = Pump();
  int value = 0;
  for (auto _ : state) benchmark::DoNotOptimize(PropertyNamed(pump, "Pressure").set_value(pump, ++value));
  if (pump.Pressure != value) state.SkipWithError("the int was not written");
}
BENCHMARK(IntWrite_rttr);

void IntAsText_rttr(benchmark::State& state) {
  RttrPump pump = Pump();
  for (auto _ : state) benchmark::DoNotOptimize(PropertyNamed(pump, "Pressure").get_value(pump).to_string());
}
BENCHMARK(IntAsText_rttr);

void StringAsText_rttr(benchmark::State& state) {
  RttrPump pump = Pump();
  for (auto _ : state) benchmark::DoNotOptimize(PropertyNamed(pump, "Label").get_value(pump).to_string());
}
BENCHMARK(StringAsText_rttr);

// RTTR writes a property only from a value of the property's own type: the text is converted
// first.  The conversion is the variant's own to_int: converting to the property's type instead
// finds no converter when this file is compiled by clang++, as RTTR names the built-in types by
// the compiler's spelling of them and the library was built by g++.
void IntFromText_rttr(benchmark::State& state) {
  RttrPump pump = Pump();
  const std::string text = "123";
  for (auto _ : state) {
    const rttr::property property = PropertyNamed(pump, "Pressure");
    const rttr::variant value = text;
    bool converted = false;
    const int number = value.to_int(&converted);
    benchmark::DoNotOptimize(converted && property.set_value(pump, number));
  }
  if (pump.Pressure != 123) state.SkipWithError("the text was not written");
}
BENCHMARK(IntFromText_rttr);

void Create_rttr(benchmark::State& state) {
  for (auto _ : state) {
    const rttr::type type = rttr::type::get_by_name("TPump");
    rttr::variant pump = type.create();
    benchmark::DoNotOptimize(pump);
    type.destroy(pump);
  }
}
BENCHMARK(Create_rttr);

}  // namespace
