# What every target is built with. Warnings are errors; nothing leaves a library that is not marked for it.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

# All artefacts stand directly in the build folder and find each other there, wherever it is moved.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER "${CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

# Platform files: NAME_posix.cpp or NAME_windows.cpp, chosen here.
if(WIN32)
  set(PD_PLATFORM windows)
  add_compile_definitions(_WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX)
  include(WindowsRuntime)
else()
  set(PD_PLATFORM posix)
endif()

add_library(pd_options INTERFACE)
target_compile_options(pd_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Werror)
target_include_directories(pd_options INTERFACE "${CMAKE_SOURCE_DIR}")
target_link_libraries(pd_options INTERFACE Threads::Threads)

# In a unity build GCC takes what is unnamed in an included source for something of a header.
set(PD_UNITY_OPTIONS -Wno-subobject-linkage)
if(CMAKE_UNITY_BUILD)
  add_compile_options(${PD_UNITY_OPTIONS})
endif()

# A sanitizer build is compiled twice over by every test run: line numbers in its reports suffice.
# Left out is "vptr", whose check needs a descriptor and so fails where a test has used them up.
if(PD_SANITIZE STREQUAL "address")
  set(PD_SANITIZER_FLAGS -O1 -g1 -fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(PD_SANITIZE STREQUAL "thread")
  set(PD_SANITIZER_FLAGS -O1 -g1 -fsanitize=thread -fno-omit-frame-pointer)
elseif(PD_SANITIZE)
  message(FATAL_ERROR "PD_SANITIZE is \"${PD_SANITIZE}\"; expected address, thread or nothing")
endif()

# What a fuzzer is to find must be seen: it watches the branches taken, and the sanitizers what goes wrong.
if(PD_FUZZ)
  list(APPEND PD_SANITIZER_FLAGS -O1 -g1 -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize=vptr
    -fno-sanitize-recover=all -fno-omit-frame-pointer)
endif()
add_compile_options(${PD_SANITIZER_FLAGS})
add_link_options(${PD_SANITIZER_FLAGS})
