# Writes the files of a page into a C++ source: cmake -D OUTPUT=FILE -D FILES=a;b -D PROGRAM=mirvane::emulator
# -D HEADER=emulator/program/web/assets.h -P embed.cmake. The header declares the namespace's findAsset.
set(types md text/plain json application/json html text/html css text/css js text/javascript svg image/svg+xml ttf font/ttf)
set(arrays "")
set(rows "")
set(number 0)
foreach(file IN LISTS FILES)
  file(READ ${file} digits HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${digits}")
  get_filename_component(name ${file} NAME)
  string(REGEX REPLACE "^.*\\." "" suffix ${name})
  list(FIND types ${suffix} at)
  math(EXPR at "${at} + 1")
  list(GET types ${at} type)
  set(path "/${name}")
  if(name STREQUAL "index.html")
    set(path "/")
  endif()
  string(APPEND arrays "const unsigned char kFile${number}[] = {${bytes}};\n")
  string(APPEND rows "    {\"${path}\", \"${type}\", {reinterpret_cast<const char*>(kFile${number}), sizeof kFile${number}}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUTPUT} "// Made by embed.cmake from the files of a page.
#include \"${HEADER}\"

namespace ${PROGRAM} {
namespace {

${arrays}
const http::Asset kAssets[] = {
${rows}};

}  // namespace

const http::Asset* findAsset(std::string_view path) {
  for (const http::Asset& asset : kAssets) {
    if (asset.path == path) return &asset;
  }
  return nullptr;
}

}  // namespace ${PROGRAM}
")
