# Writes OUTPUT, a C++ source that holds the files below FOLDER byte by byte.
# cmake -DFOLDER=... -DOUTPUT=... -P EmbedPage.cmake
file(GLOB_RECURSE files RELATIVE "${FOLDER}" "${FOLDER}/*")
list(SORT files)
set(arrays "")
set(entries "")
set(number 0)
foreach(file IN LISTS files)
  file(READ "${FOLDER}/${file}" bytes HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
  string(REGEX REPLACE "('[^']*','[^']*','[^']*','[^']*','[^']*','[^']*','[^']*','[^']*',)" "\\1\n    " bytes "${bytes}")
  string(APPEND arrays "constexpr char file${number}[] = {\n    ${bytes}'\\0'};\n\n")
  string(APPEND entries "    {\"/${file}\", {file${number}, sizeof file${number} - 1}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE "${OUTPUT}" "#include \"host/console/PageFiles.h\"

namespace Host {
namespace {

${arrays}constexpr PageFile files[] = {
${entries}};

} // namespace

std::span<const PageFile> pageFiles()
{
    return files;
}

} // namespace Host
")
