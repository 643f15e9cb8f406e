# zolex_windows_resources(TARGET NAME DESCRIPTION): gives the executable its version and its manifest.
# They stand in a library of their own, because the resource compiler knows no compiler flags.
function(zolex_windows_resources target name description)
  if(NOT WIN32)
    return()
  endif()
  set(RESOURCE_NAME ${name})
  set(RESOURCE_DESCRIPTION ${description})
  set(RESOURCE_MANIFEST ${name}.manifest)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/program.manifest.in ${name}.manifest @ONLY)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/resources.rc.in ${name}.rc @ONLY)
  add_library(${target}-resources OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
  set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${name}.rc PROPERTIES
    OBJECT_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${name}.manifest)
  target_include_directories(${target}-resources PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
  target_link_libraries(${target} PRIVATE ${target}-resources)
endfunction()
