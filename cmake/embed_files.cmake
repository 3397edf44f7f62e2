# Writes OUTPUT, a C++ file that holds each of FILES (a ;-list) as bytes, so that a tool carries
# its page assets in its binary and works from any prefix without the source tree.
#   cmake -DOUTPUT=assets.cpp -DNAMESPACE=ns "-DFILES=a.html;b.js" -P embed_files.cmake
# The file defines  const std::vector<EmbeddedFile>& NAMESPACE::embeddedFiles();
set(body "// Generated from the page assets by cmake/embed_files.cmake; do not edit.\n#include \"embedded_files.h\"\n\nnamespace ${NAMESPACE} {\nnamespace {\n")
set(entries "")
set(index 0)
foreach(file IN LISTS FILES)
  file(READ "${file}" hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
  get_filename_component(name "${file}" NAME)
  string(APPEND body "const unsigned char file${index}[] = {${bytes}0};\n")
  string(LENGTH "${hex}" hexLength)
  math(EXPR length "${hexLength} / 2")
  string(APPEND entries "        {\"${name}\", std::string_view(reinterpret_cast<const char*>(file${index}), ${length})},\n")
  math(EXPR index "${index} + 1")
endforeach()
string(APPEND body "}  // namespace\n\nconst std::vector<EmbeddedFile>& embeddedFiles() {\n    static const std::vector<EmbeddedFile> files = {\n${entries}    };\n    return files;\n}\n\n}  // namespace ${NAMESPACE}\n")
file(WRITE "${OUTPUT}.tmp" "${body}")
file(RENAME "${OUTPUT}.tmp" "${OUTPUT}")
