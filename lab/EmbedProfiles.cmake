# Writes OUTPUT, a C++ source that holds the .snmprec files of FOLDER byte by byte.
# cmake -DFOLDER=... -DOUTPUT=... -P EmbedProfiles.cmake
file(GLOB files "${FOLDER}/*.snmprec")
list(SORT files)
set(arrays "")
set(entries "")
set(number 0)
foreach(file IN LISTS files)
  get_filename_component(name "${file}" NAME_WLE)
  file(READ "${file}" bytes HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
  string(REGEX REPLACE "('[^']*','[^']*','[^']*','[^']*','[^']*','[^']*','[^']*','[^']*',)" "\\1\n    " bytes "${bytes}")
  string(APPEND arrays "constexpr char profile${number}[] = {\n    ${bytes}};\n\n")
  string(APPEND entries "    {\"${name}\", {profile${number}, sizeof profile${number}}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE "${OUTPUT}" "#include \"lab/BuiltInProfiles.h\"

namespace Lab {
namespace {

${arrays}constexpr BuiltInProfile profiles[] = {
${entries}};

} // namespace

std::span<const BuiltInProfile> builtInProfileTexts()
{
    return profiles;
}

} // namespace Lab
")
