# "sqlite", the embedded database, linked into whoever uses it. For Windows its one source file comes out of an npm
# package, whose version and checksum are pinned.
if(WIN32)
  enable_language(C)
  set(package ${PROJECT_SOURCE_DIR}/build/languages/better-sqlite3/deps/sqlite3)
  set(source ${PROJECT_BINARY_DIR}/sqlite)
  # Copied, as the build makes the folders of what a command is to make, and a package's folder stands for the package.
  add_custom_command(
    OUTPUT ${source}/sqlite3.c ${source}/sqlite3.h
    COMMAND ${PROJECT_SOURCE_DIR}/tools/npm_package.sh better-sqlite3
    COMMAND ${CMAKE_COMMAND} -E copy ${package}/sqlite3.c ${package}/sqlite3.h ${source}
    VERBATIM)
  add_library(sqlite STATIC ${source}/sqlite3.c)
  set_target_properties(sqlite PROPERTIES UNITY_BUILD OFF)
  target_include_directories(sqlite SYSTEM PUBLIC ${source})
  # Used in one thread only, and with nothing loaded into it.
  target_compile_definitions(sqlite PRIVATE SQLITE_THREADSAFE=0 SQLITE_OMIT_LOAD_EXTENSION SQLITE_DQS=0)
  target_compile_options(sqlite PRIVATE -w)
else()
  add_library(sqlite INTERFACE)
  target_link_libraries(sqlite INTERFACE libsqlite3.a m)
endif()
