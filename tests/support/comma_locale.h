// Switches the process to locales whose numbers use a decimal comma, for tests that check that
// the library's text forms do not depend on the process locale; the previous locales come back
// when the guard goes.
#pragma once

#include <clocale>
#include <locale>
#include <string>

namespace veska::test {

class CommaLocale {
 public:
  CommaLocale()
      : previous_(std::locale::global(std::locale(std::locale::classic(), new CommaPunct))),
        previous_c_(std::setlocale(LC_ALL, nullptr)) {
    // The first of these that the machine has; the C++ locale above applies in any case.
    for (const char* name : {"cs_CZ.UTF-8", "de_DE.UTF-8", "cs_CZ", "de_DE"}) {
      if (std::setlocale(LC_ALL, name) != nullptr) break;
    }
  }
  ~CommaLocale() {
    std::setlocale(LC_ALL, previous_c_.c_str());
    std::locale::global(previous_);
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

 private:
  struct CommaPunct : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };

  std::locale previous_;
  std::string previous_c_;
};

}  // namespace veska::test
