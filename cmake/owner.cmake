# Who publishes the programs, and where to write to: the two lines of package/owner.txt, which may be empty.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/package/owner.txt)
file(STRINGS ${PROJECT_SOURCE_DIR}/package/owner.txt owner ENCODING UTF-8)
list(APPEND owner "" "")
list(GET owner 0 owner_name)
list(GET owner 1 owner_contact)
if(NOT owner_name)
  set(owner_name ${PROJECT_NAME})
endif()
