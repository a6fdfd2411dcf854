# veska_add_layer(<folder> [<library of the layer below>]) makes kernel/<folder> an object
# library.  Its headers are reachable through a folder of the build tree that holds this layer
# alone (a link to the source folder), and it links only the layer below; an include of a
# higher layer therefore fails with "No such file or directory".
function(veska_add_layer layer)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/kernel/${layer}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/kernel/${layer}/*.h)
  add_library(veska_${layer} OBJECT ${sources} ${headers})
  set(include_root ${PROJECT_BINARY_DIR}/layers/${layer})
  file(MAKE_DIRECTORY ${include_root}/kernel)
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/kernel/${layer} ${include_root}/kernel/${layer} SYMBOLIC)
  target_include_directories(veska_${layer} PUBLIC $<BUILD_INTERFACE:${include_root}>)
  target_compile_features(veska_${layer} PUBLIC cxx_std_20)
  if(BUILD_SHARED_LIBS)
    set_target_properties(veska_${layer} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  endif()
  if(ARGC GREATER 1)
    target_link_libraries(veska_${layer} PUBLIC ${ARGV1})
  endif()
  veska_set_warnings(veska_${layer})
endfunction()
