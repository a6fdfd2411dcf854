# One warning policy for every target of the project; VESKA_WERROR makes warnings errors.
function(veska_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                           $<$<BOOL:${VESKA_WERROR}>:-Werror>)
endfunction()
