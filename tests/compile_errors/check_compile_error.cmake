# Compiles SOURCE and succeeds only when the compiler rejects it with the text the source names
# in its "// expect: " line.  Run by CTest: cmake -DCOMPILER=... -DFLAGS=... -DSOURCE=... -P this.
file(STRINGS ${SOURCE} expect_line REGEX "^// expect: ")
string(REGEX REPLACE "^// expect: " "" expected "${expect_line}")
separate_arguments(flags UNIX_COMMAND "${FLAGS}")
execute_process(COMMAND ${COMPILER} ${flags} -fsyntax-only -x c++ ${SOURCE}
                RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(status EQUAL 0)
  message(FATAL_ERROR "${SOURCE} compiled, but it must not")
endif()
string(FIND "${output}" "${expected}" found)
if(found EQUAL -1)
  message(FATAL_ERROR "${SOURCE} failed without \"${expected}\":\n${output}")
endif()
