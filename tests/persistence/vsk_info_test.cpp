#include "kernel/persistence/vsk_info.h"

#include <gtest/gtest.h>

#include <memory>

#include "kernel/platform/exceptions.h"
#include "tests/support/model_writer.h"
#include "tests/support/temp_folder.h"

namespace veska {
namespace {

// "error|text|modul|version|comment" of the tool, and of its info element when it made one.
String Outcome(const TLoadVSKInfo& tool) {
  String outcome =
      IntToStr(tool.Error) + u"|" + tool.ErrorText + u"|" + tool.Modul + u"|" + tool.Version + u"|" + tool.Comment;
  if (const auto* info = ObjectAs<TVSKInfo>(tool.GetOutput())) {
    outcome += u" / " + IntToStr(info->Error) + u"|" + info->ErrorText + u"|" + info->Modul + u"|" + info->FileName;
  }
  return outcome;
}

TEST(LoadVSKInfo, ReportsTheHeaderOrWhyThereIsNoneWithItsFixedTexts) {
  test::TempFolder folder;
  const String model =
      folder.Write("model.vsk", test::ModelWriter("VSK0", {u"Sklad", u"2.1", u"Žluťoučký kůň"}).Bytes());
  const String old = folder.Write("old.vsk", test::ModelWriter("TPF0").Bytes());
  const String other = folder.Write("other.vsk", "PK\3\4 and more");
  const std::pair<String, String> cases[] = {
      {model, u"0|OK|Sklad|2.1|Žluťoučký kůň"},
      {u"", u"1|Chybné jméno souboru  !|||"},
      {folder.Path("missing.vsk"), u"2|Soubor  neexistuje!|||"},
      {old, u"3| ... stará verze VSK!|||"},
      {other, u"4|MAGIC error ... Neznámý typ souboru!|||"},
  };
  TLoadVSKInfo tool;
  for (const auto& [file_name, expected] : cases) {
    tool.SetPropertyNumber(0, file_name);
    tool.DoIt();  // the same tool again: each run starts from nothing
    EXPECT_EQ(Outcome(tool), expected);
  }

  tool.SetPropertyNumber(1, u"True");  // ReturnInfoElement
  tool.SetPropertyStringByName(u"FileName", model);
  tool.DoIt();
  std::unique_ptr<TElement> info(tool.GetOutput());  // the caller's
  EXPECT_EQ(Outcome(tool), u"0|OK|Sklad|2.1|Žluťoučký kůň / 0|OK|Sklad|" + model);

  tool.SetFileName(folder.Write("cut.vsk", test::ModelWriter().Bytes().substr(0, 9)));
  EXPECT_THROW(tool.DoIt(), EReadError);  // a header cut short
  std::unique_ptr<TElement> second(tool.GetOutput());
  EXPECT_EQ(Outcome(tool), u"0|OK||| / 0|OK||" + tool.FileName);  // the state before the failure
}

}  // namespace
}  // namespace veska
