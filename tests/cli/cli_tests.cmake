# Tests of the veska program's output, which other tools read: each runs one command and
# matches its whole output.
function(veska_cli_test name expected)
  add_test(NAME cli.${name} COMMAND veska-cli ${ARGN})
  set_tests_properties(cli.${name} PROPERTIES PASS_REGULAR_EXPRESSION "${expected}")
endfunction()

function(veska_cli_failure_test name expected)
  add_test(NAME cli.${name} COMMAND veska-cli ${ARGN})
  set_tests_properties(cli.${name} PROPERTIES WILL_FAIL TRUE)
  add_test(NAME cli.${name}.text COMMAND veska-cli ${ARGN})
  set_tests_properties(cli.${name}.text PROPERTIES PASS_REGULAR_EXPRESSION "${expected}")
endfunction()

veska_cli_test(classes_registry_record "(^|\n)0\tTVeskaClass\tTOwnerEntity\t[0-9]+\tE_class\n" classes)
veska_cli_test(class_table "^0\tID\t1\tRW\tstored\n1\tName\t18\tRW\tstored\n2\tOwnersCount\t1\tR\tnot stored\n"
               class TElement)
veska_cli_failure_test(class_unknown "error: Veska nenašel třídu TNothing" class TNothing)
veska_cli_test(new_path_and_list "^b\na\nb\nCount=2\n$"
               new TEntity --add TOwnerElement:a --add TStringEntity:b
               --path "FINDELEMENTBYNAME(b).Name" --list "ELEMENT.Name" --get Count)
veska_cli_test(new_property_round_trip "^Name=Žluťoučký kůň\n$" new TNameElement "Name=Žluťoučký kůň" --get Name)
veska_cli_failure_test(new_unknown_class "Neregistrovaný element: Nothing" new Nothing)
veska_cli_failure_test(new_path_error "error: Chyba syntaxe" new TEntity --path "FINDELEMENTBYNAME(x")
