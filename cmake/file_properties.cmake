# add_file_properties(TARGET GREEK ENGLISH): what Windows shows of the target's file: its version, what it is, and whose; a
# program's icon.
function(add_file_properties target greek english)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL EXECUTABLE)
    set(file_type VFT_APP)
    set(icon "1 ICON \"${PROJECT_SOURCE_DIR}/package/mirvane.ico\"")
    set(file_name ${target}.exe)
  else()
    set(file_type VFT_DLL)
    set(file_name ${target}.dll)
  endif()
  set(resource ${PROJECT_BINARY_DIR}/generated/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/file_properties.rc.in ${resource} @ONLY)
  target_sources(${target} PRIVATE ${resource})
  set_property(SOURCE ${resource} TARGET_DIRECTORY ${target} APPEND PROPERTY OBJECT_DEPENDS
    ${PROJECT_BINARY_DIR}/generated/version.h ${PROJECT_SOURCE_DIR}/package/mirvane.ico)
endfunction()
