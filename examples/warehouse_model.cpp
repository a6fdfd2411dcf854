// Writing a model to a VSK0 model file with TStreamSaver and reading it back with TLoad.
//
// The model is a small warehouse: racks hold shelves, shelves hold items, and every item holds
// its values (quantity, unit, price) as typed value elements and a reference to its supplier
// through a pointer element.  The suppliers live in an entity of their own, so the file refers
// to each of them from several items and the loader puts the references back.
//
// Build and run: examples/veska_example_warehouse_model [FILE]  (default: warehouse.vsk in the
// current directory)
#include <veska/veska.h>

#include <cstdio>
#include <memory>

namespace {

// A new named element of class T, added to the owner, which frees it when it is freed itself.
template <class T>
T* Add(veska::TEntity& owner, const veska::String& name) {
  auto* element = new T;
  element->SetName(name);
  owner.AddElement(element);
  return element;
}

veska::TOwnerEntity* Supplier(veska::TEntity& suppliers, const veska::String& name, const veska::String& city,
                              const veska::String& id_number) {
  auto* supplier = Add<veska::TOwnerEntity>(suppliers, name);
  supplier->AddElement(new veska::TStringElement(u"Město", city));
  supplier->AddElement(new veska::TStringElement(u"IČO", id_number));
  return supplier;
}

// An item on a shelf: its values, and a pointer element whose _Element is the supplier.  The
// pointer does not own what it points to; the file stores the reference as the supplier's
// element number.
void Item(veska::TEntity& shelf, const veska::String& name, int32_t quantity, const veska::String& unit, double price,
          veska::TElement* supplier) {
  auto* item = Add<veska::TOwnerEntity>(shelf, name);
  item->AddElement(new veska::TIntegerElement(u"Počet", quantity));
  item->AddElement(new veska::TStringElement(u"Jednotka", unit));
  item->AddElement(new veska::TFloatElement(u"Cena", price));
  auto* link = new veska::TPointerElement;
  link->SetName(u"Dodavatel");
  link->Set_Element(supplier);
  item->AddElement(link);
}

}  // namespace

int main(int argc, char** argv) {
  // A relative name is taken from the current directory, so a test run writes into its build
  // directory.
  const veska::String file_name = veska::FromUtf8(argc > 1 ? argv[1] : "warehouse.vsk");

  // Sklad Brno
  // ├── Dodavatelé: Železářství Novák, Barvy Dvořák (each with Město and IČO)
  // ├── Regál A
  // │   ├── Police A1: Šroub M6, Matice M6
  // │   └── Police A2: Hřebík 80 mm
  // └── Regál B
  //     └── Police B1: Barva bílá, Štětec 50 mm
  const auto warehouse = std::make_unique<veska::TOwnerEntity>();
  warehouse->SetName(u"Sklad Brno");
  auto* suppliers = Add<veska::TOwnerEntity>(*warehouse, u"Dodavatelé");
  auto* hardware = Supplier(*suppliers, u"Železářství Novák", u"Brno", u"25596641");
  auto* paints = Supplier(*suppliers, u"Barvy Dvořák", u"Olomouc", u"47114983");

  auto* rack_a = Add<veska::TOwnerEntity>(*warehouse, u"Regál A");
  auto* shelf_a1 = Add<veska::TOwnerEntity>(*rack_a, u"Police A1");
  Item(*shelf_a1, u"Šroub M6", 500, u"ks", 1.20, hardware);
  Item(*shelf_a1, u"Matice M6", 750, u"ks", 0.45, hardware);
  auto* shelf_a2 = Add<veska::TOwnerEntity>(*rack_a, u"Police A2");
  Item(*shelf_a2, u"Hřebík 80 mm", 12, u"kg", 89.90, hardware);
  auto* rack_b = Add<veska::TOwnerEntity>(*warehouse, u"Regál B");
  auto* shelf_b1 = Add<veska::TOwnerEntity>(*rack_b, u"Police B1");
  Item(*shelf_b1, u"Barva bílá", 40, u"l", 215.00, paints);
  Item(*shelf_b1, u"Štětec 50 mm", 25, u"ks", 64.50, paints);

  try {
    // The header goes before the model; `veska info FILE` shows it without loading the model.
    veska::TStreamSaver saver;
    saver.SetFileName(file_name);
    saver.SetModul(u"Sklad");
    saver.SetVersion(u"1.0");
    saver.SetComment(u"Sklad nářadí a barev, stav k 1. březnu");
    saver.SetInput(warehouse.get());
    saver.DoIt();
    std::printf("written: %s\n", veska::ToUtf8(file_name).c_str());

    // Loading it back.  The container receives every element the file creates and frees them
    // all when it goes; the loader's Output is the model's root, which the file holds last.
    veska::TOwnerEntity loaded;
    veska::TLoad load;
    load.SetFileName(file_name);
    load.SetContainerEntity(&loaded);
    load.DoIt();
    veska::TElement* root = load.GetOutput();
    if (root == nullptr) {
      std::fprintf(stderr, "the file gave no model\n");
      return 1;
    }
    std::printf("loaded: %d elements, root %s \"%s\" with %d members\n", loaded.ElementsCount(),
                veska::ToUtf8(root->ClassName()).c_str(), veska::ToUtf8(root->GetName()).c_str(),
                root->GetPropertyIntByName(u"Count"));
    // A reference read back: the supplier of an item, reached through the pointer element.
    const veska::String supplier = root->ExecuteCommandLine(
        u"FINDELEMENTBYNAME(Regál B).FINDELEMENTBYNAME(Police B1).FINDELEMENTBYNAME(Barva bílá)"
        u".FINDELEMENTBYNAME(Dodavatel)._Element.Name");
    std::printf("Barva bílá comes from: %s\n", veska::ToUtf8(supplier).c_str());
  } catch (const veska::Exception& error) {
    // A file that cannot be written or read raises the library's exception, with its text.
    std::fprintf(stderr, "%s\n", veska::ToUtf8(error.Message()).c_str());
    return 1;
  }
  return 0;
}
