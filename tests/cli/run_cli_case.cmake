# Runs the veska program once and checks its exit status, stdout and stderr:
#   cmake -DPROGRAM=<veska> -DARGS=<arguments> -DSTATUS=<n> -DSTDOUT=<regex> -DSTDERR=<regex>
#         [-DOUTPUT_FILE=<file stdout goes to>] [-DTERMINAL=TRUE] -P run_cli_case.cmake
# The arguments arrive as a list whose separators the test command had to escape.
string(REPLACE "\\;" ";" ARGS "${ARGS}")
if(TERMINAL)
  # script(1) gives the program a pseudo-terminal for stdout and stderr, and exits with its status.
  list(JOIN ARGS " " command_line)
  execute_process(COMMAND script -qec "${PROGRAM} ${command_line}" /dev/null
                  RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
elseif(DEFINED OUTPUT_FILE)
  execute_process(COMMAND ${PROGRAM} ${ARGS} RESULT_VARIABLE status OUTPUT_FILE ${OUTPUT_FILE} ERROR_VARIABLE err)
  set(out "")
else()
  execute_process(COMMAND ${PROGRAM} ${ARGS} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
endif()
set(failures "")
if(NOT status STREQUAL STATUS)
  string(APPEND failures "exit status ${status}, expected ${STATUS}\n")
endif()
if(NOT out MATCHES "${STDOUT}")
  string(APPEND failures "stdout does not match ${STDOUT}\n")
endif()
if(NOT err MATCHES "${STDERR}")
  string(APPEND failures "stderr does not match ${STDERR}\n")
endif()
if(failures)
  message(FATAL_ERROR "veska ${ARGS}\n${failures}--- stdout:\n${out}--- stderr:\n${err}")
endif()
