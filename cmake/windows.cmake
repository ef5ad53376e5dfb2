# Cross-builds for 64-bit Windows. PD_WINDOWS_LIBRARIES is the folder that scripts/windows-libraries.sh prints.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(pd_triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${pd_triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${pd_triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${pd_triplet}-windres)

set(CMAKE_BUILD_TYPE Release CACHE STRING "Type of build")
set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG" CACHE STRING "Flags of that type")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG" CACHE STRING "Flags of that type")

set(PD_WINDOWS_LIBRARIES "" CACHE PATH "Libraries for Windows and their headers")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PD_WINDOWS_LIBRARIES)
set(CMAKE_FIND_ROOT_PATH "${PD_WINDOWS_LIBRARIES}" /usr/${pd_triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} "${PD_WINDOWS_LIBRARIES}/lib/pkgconfig")
# Of the system's headers only those that were linked into that folder are for both systems.
set(CMAKE_C_STANDARD_INCLUDE_DIRECTORIES "${PD_WINDOWS_LIBRARIES}/include")
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES "${PD_WINDOWS_LIBRARIES}/include")
