# Tests of the veska program, whose output other tools read: each case runs one command line and
# checks the exit status and the whole of stdout and stderr (regular expressions).
#   veska_cli_case(<name> <status> <stdout regex> <stderr regex> [TERMINAL] [TO <file>] ARGS <argument>...)
# With TERMINAL the program runs on a pseudo-terminal, where stdout and stderr arrive together
# (as the first regex sees them, with CR LF line ends).
function(veska_cli_case name status stdout stderr)
  cmake_parse_arguments(PARSE_ARGV 4 case "TERMINAL" "TO" "ARGS")
  string(REPLACE ";" "\\;" arguments "${case_ARGS}")
  set(output_file "")
  if(case_TO)
    set(output_file "-DOUTPUT_FILE=${case_TO}")
  endif()
  add_test(NAME cli.${name}
           COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:veska-cli> "-DARGS=${arguments}" -DSTATUS=${status}
                   "-DSTDOUT=${stdout}" "-DSTDERR=${stderr}" -DTERMINAL=${case_TERMINAL} ${output_file}
                   -P ${CMAKE_CURRENT_LIST_DIR}/run_cli_case.cmake)
endfunction()

set(none "^$")
set(hint "\\. Try 'veska help'\\.\n$")

# Valid use: the documented output formats, byte for byte, and nothing on stderr.
veska_cli_case(classes 0 "(^|\n)0\tTVeskaClass\tTOwnerEntity\t[0-9]+\tE_class\n(.*\n)?[0-9]+\tTVeskaClasses\t[^\n]*\n[0-9]+\tTVeskaClassProperty\t"
               ${none} ARGS classes)
veska_cli_case(class_table 0 "^0\tID\t1\tRW\tstored\n1\tName\t18\tRW\tstored\n2\tOwnersCount\t1\tR\tnot stored\n"
               ${none} ARGS class TElement)
veska_cli_case(class_without_t 0 "\n24\tValue\t18\tRW\tstored\n$" ${none} ARGS class StringEntity)
veska_cli_case(new_path_and_list 0 "^b\na\nb\nCount=2\n$" ${none}
               ARGS new TEntity --add TOwnerElement:a --add TStringEntity:b
                    --path "FINDELEMENTBYNAME(b).Name" --list "ELEMENT.Name" --get Count)
veska_cli_case(new_property_round_trip 0 "^Name=Žluťoučký kůň\n$" ${none}
               ARGS new TNameElement "Name=Žluťoučký kůň" --get Name)
veska_cli_case(new_entry_by_name 0 "^a=1\n$" ${none} ARGS new TStringListElement NextNameIsValue=a=1 --get a)
veska_cli_case(new_class_models 0 "^ActualClassName=TTypeElement\nTypeEditor\n$" ${none}
               ARGS new TRegisterClassModels NewClassName=TElement NewClassName=TTypeElement
                    FindClassName=TTypeElement ActualClassModel.Editor=TypeEditor
                    FindClassName=TBooleanElement --get ActualClassName --path ActualClassModel.Editor)
veska_cli_case(new_tool_model 0 "^Speed\n1450\n$" ${none}
               ARGS new TToolModel NewPropertyName=Speed ModelProperties.Speed=1450 --list ModelProperties.ELEMENT.Name
                    --path LastPropertyModel.Value)
# A tool run: the writes, the run, Output and Error, then the reads.  A technology made from a
# tool model through properties alone pipes the tool's output out, and reports the model's unknown
# class as a line on stderr.
veska_cli_case(run_tool 0 "^Output=TOwnerEntity:elements\nError=0\nAmount=3\n1\n2\n3\n$" ${none}
               ARGS run TMakeElements Amount=3 ElementClass=TStringEntity --get Amount --list Output.ELEMENT.Name)
veska_cli_case(run_technology_from_model 0 "^Output=TOwnerEntity:elements\nError=0\n1\n2\n$"
               "^veska: Unknown class: TNothing\n$"
               ARGS run TSeqTechnology --add TToolModel:pipeline SelfModel.NewToolName=make
                    SelfModel.LastTool.ElementClassName=TMakeElements SelfModel.LastTool.NewPropertyName=Amount
                    SelfModel.LastTool.ModelProperties.Amount=2 SelfModel.NewToolName=other
                    SelfModel.LastTool.ElementClassName=TNothing --list Output.ELEMENT.Name)
# Progress shows on a terminal only, as one line redrawn from its start and cleared at the end.
set(bar "\rMaking 5000 TOwnerElement \\[")
veska_cli_case(run_progress_bar 0
               "^${bar}------------------------------\\]   0%.*${bar}##############################\\] 100%[^\r]*\r[^\r]*Output=TOwnerEntity:elements\r\nError=0\r\n$"
               ${none} TERMINAL ARGS run TMakeElements Amount=5000)
veska_cli_case(run_quiet 0 "^Output=TOwnerEntity:elements\r\nError=0\r\n$" ${none} TERMINAL ARGS --quiet run TMakeElements Amount=5000)
# The header of a model file, and why there is none.
veska_cli_case(info 0 "^Sklad\t2\\.1\tKůň!\t0\tOK\n$" ${none} ARGS info ${CMAKE_CURRENT_LIST_DIR}/data/header.vsk)
veska_cli_case(info_missing 1 "^\t\t\t2\tSoubor  neexistuje!\n$" ${none} ARGS info missing.vsk)
# A model file as a tree: members indented, references as paths ("#1": an element no entity
# lists), a member listed twice shown again by its first place, escapes in names.
set(data ${CMAKE_CURRENT_LIST_DIR}/data)
set(model_tree "^TOwnerEntity\tSklad\tID=-1\n  TOwnerEntity\tRegál\\\\t1\tID=-1\n    TIntegerElement\tPočet\tID=-1\tValue=12\n\
    TStringElement\tŠtítek\tID=-1\tValue=křehké\n  TPointerElement\todkaz\tID=-1\taClassName=\t_Element=/0/0\n\
  TPointerElement\tdaleko\tID=-1\taClassName=\t_Element=#1\n  TQuickEntity\tTQuickEntity\tID=-1\n\
    TStringElement\tŠtítek\t@/0/1\nTStringElement\tpoznámka\tID=-1\tValue=mimo\n$")
veska_cli_case(tree 0 "${model_tree}" ${none} ARGS tree ${data}/model.vsk)
set(old_class_texts "^veska: TIntegerElement lost property: Gone\nveska: TIntegerElement property \"Value\" type conv\.: tkFloat to tkInteger\n$")
veska_cli_case(tree_progress 0 "^\rNačítání modelu ze souboru [^\r]*model\\.vsk \\[-*[^\r]*\r[^\r]*TOwnerEntity\tSklad\tID=-1\r\n"
               ${none} TERMINAL ARGS tree ${data}/model.vsk)
veska_cli_case(tree_old_class 0 "^TIntegerElement\tstaré\tID=-1\tValue=2\n$" ${old_class_texts} ARGS tree ${data}/old_class.vsk)
veska_cli_case(tree_older_format 0 "^TNameElement\tdruhý\tID=-1\n$" ${none} ARGS tree ${data}/older.tpf)
veska_cli_case(tree_older_format_broken 1 ${none} "^veska: Chyba při čtení elementu: TOwnerEntity\n$" ARGS tree ${data}/broken.tpf)
veska_cli_case(tree_missing 1 ${none} "^veska: Soubor missing\.vsk neexistuje!\n$" ARGS tree missing.vsk)
veska_cli_case(tree_json 0 "^{\n  \"file\": \"[^\n]*old_class\.vsk\",\n  \"result\": {\n    \"class\": \"TIntegerElement\",\n\
    \"name\": \"staré\"\n  },\n  \"error\": null,\n  \"diagnostics\": \\[\n    {\n      \"level\": 8,\n\
      \"text\": \"TIntegerElement lost property: Gone\"\n    },\n    {\n      \"level\": 8,\n\
      \"text\": \"TIntegerElement property \\\\\"Value\\\\\" type conv\\.: tkFloat to tkInteger\"\n    }\n  \\],\n\
  \"root\": {\n    \"class\": \"TIntegerElement\",\n    \"name\": \"staré\",\n    \"properties\": {\n\
      \"ID\": \"-1\",\n      \"Name\": \"staré\",\n      \"Value\": \"2\"\n    },\n    \"children\": \\[\\]\n  },\n\
  \"unlisted\": \\[\\]\n}\n$" ${none} ARGS tree --json ${data}/old_class.vsk)
veska_cli_case(tree_json_paths 0 "\"_Element\": \"#1\".*\"same_as\": \"/0/1\".*\"unlisted\": \\[\n    {\n      \"class\": \"TStringElement\",\n      \"name\": \"poznámka\""
               ${none} ARGS tree ${data}/model.vsk --json)
veska_cli_case(tree_json_missing 1 "\"result\": null,\n  \"error\": \"Soubor missing\.vsk neexistuje!\",\n  \"diagnostics\": \\[\\],\n  \"root\": null,"
               ${none} ARGS tree --json missing.vsk)
# A conversion writes the same model: the copy prints the same tree.
veska_cli_case(convert 0 ${none} ${none} ARGS convert ${data}/model.vsk ${CMAKE_CURRENT_BINARY_DIR}/converted.vsk)
veska_cli_case(tree_converted 0 "${model_tree}" ${none} ARGS tree ${CMAKE_CURRENT_BINARY_DIR}/converted.vsk)
set_tests_properties(cli.convert PROPERTIES FIXTURES_SETUP converted_model)
set_tests_properties(cli.tree_converted PROPERTIES FIXTURES_REQUIRED converted_model)
veska_cli_case(convert_nothing 1 ${none} "^veska: Soubor missing\.vsk neexistuje!\n$" ARGS convert missing.vsk out.vsk)
veska_cli_case(help 0 "^usage: veska \\[-q\\] COMMAND" ${none} ARGS help)
veska_cli_case(help_option 0 "^usage: veska \\[-q\\] COMMAND" ${none} ARGS -h)
veska_cli_case(version 0 "^veska ${PROJECT_VERSION}\n$" ${none} ARGS version)
veska_cli_case(version_option 0 "^veska ${PROJECT_VERSION}\n$" ${none} ARGS -V)

# Failures: status 1, the library's own texts after the program's prefix.
veska_cli_case(class_unknown 1 ${none} "^veska: Veska nenašel třídu TNothing\n$" ARGS class TNothing)
veska_cli_case(new_unknown_class 1 ${none} "^veska: Neregistrovaný element: Nothing\n$" ARGS new Nothing)
veska_cli_case(new_add_unknown_class 1 ${none} "^veska: Neregistrovaný element: TFoo\n$" ARGS new TEntity --add TFoo:a)
veska_cli_case(new_path_error 1 ${none} "^veska: Chyba syntaxe\\. \\.\\. na pozici 20 očekávám \"\\)\"\n$"
               ARGS new TEntity --path "FINDELEMENTBYNAME(x")
veska_cli_case(new_get_missing 1 "^$" "^veska: TNameElement has no property Foo\n$" ARGS new TNameElement --get Foo)
veska_cli_case(new_set_missing 1 "^$" "^veska: TNameElement has no property Foo\n$" ARGS new TNameElement Foo=1)
veska_cli_case(new_set_through_nothing 1 "^$" "^veska: LastPropertyModel leads to no object\n$"
               ARGS new TElementModel LastPropertyModel.Value=1)
veska_cli_case(run_not_a_tool 1 ${none} "^veska: Class: TEntity is not a Tool
$" ARGS run TEntity)
veska_cli_case(run_unknown_class 1 ${none} "^veska: Neregistrovaný element: TNothing
$" ARGS run TNothing)
veska_cli_case(output_full 1 ${none} "^veska: cannot write the output" TO /dev/full ARGS classes)

# Mistakes in the command line: status 2, one line, and no command has run.
veska_cli_case(usage_no_command 2 ${none} "^veska: missing command${hint}")
veska_cli_case(usage_unknown_command 2 ${none} "^veska: unknown command 'frob'${hint}" ARGS frob)
veska_cli_case(usage_unknown_option 2 ${none} "^veska: unknown option '-x'${hint}" ARGS -x)
veska_cli_case(usage_missing_operand 2 ${none} "^veska: class: missing NAME${hint}" ARGS class)
veska_cli_case(usage_extra_operand 2 ${none} "^veska: classes: unexpected argument 'x'${hint}" ARGS classes x)
veska_cli_case(usage_tree_missing_file 2 ${none} "^veska: tree: missing FILE${hint}" ARGS tree --json)
veska_cli_case(usage_tree_two_files 2 ${none} "^veska: tree: unexpected argument 'b'${hint}" ARGS tree a b)
veska_cli_case(usage_convert_missing 2 ${none} "^veska: convert: missing IN OUT${hint}" ARGS convert a)
veska_cli_case(usage_new_missing_class 2 ${none} "^veska: new: missing CLASS${hint}" ARGS new)
veska_cli_case(usage_new_option_operand 2 ${none} "^veska: new: --get needs an argument${hint}"
               ARGS new TEntity --list ELEMENT.Name --get)
veska_cli_case(usage_new_unknown_argument 2 ${none} "^veska: new: unknown argument 'bar'${hint}"
               ARGS new TEntity --path ELEMENT.Count bar)
veska_cli_case(usage_new_add_operand 2 ${none} "^veska: new: --add takes CLASS:NAME, not 'X'${hint}"
               ARGS new TEntity --add X)
