# Options, the instruction levels, and the flags that the library's promises need.

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# The shared module is built once a level. The first level is the baseline, which any machine of the target loads; each further one
# goes where the dynamic loader looks for it (glibc-hwcaps). The static library has the baseline alone.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64" AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(QORSR_LEVELS "sse3;x86-64-v3;x86-64-v4" CACHE STRING "Instruction levels of the module, the baseline first")
else()
  set(QORSR_LEVELS "native-baseline" CACHE STRING "Instruction levels of the module, the baseline first")
endif()
option(QORSR_BUILD_BENCHMARKS "Build the benchmarks" OFF)
option(QORSR_BUILD_PROGRAMS "Build the programs" OFF)
option(QORSR_SANITIZE "Address, leak and undefined behaviour sanitizers" OFF)

set(QORSR_FLAGS_sse3 -msse3)
set(QORSR_FLAGS_x86-64-v3 -march=x86-64-v3)
set(QORSR_FLAGS_x86-64-v4 -march=x86-64-v4 -mprefer-vector-width=512)
set(QORSR_FLAGS_native-baseline "")
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  list(APPEND QORSR_FLAGS_x86-64-v4 -Wno-uninitialized -Wno-maybe-uninitialized) # GCC 12 warns inside its own 512-bit intrinsics
endif()

# Exact arithmetic: what is written is what is computed. Every target that computes takes these, tests and benchmarks too.
add_library(qorsr_arithmetic INTERFACE)
target_compile_options(qorsr_arithmetic INTERFACE -ffp-contract=off -fno-math-errno)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "i[3-6]86|x86_64|AMD64" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_options(qorsr_arithmetic INTERFACE -msse3 -mfpmath=sse)
endif()

add_library(qorsr_warnings INTERFACE)
target_compile_options(
  qorsr_warnings INTERFACE -Wall -Wextra -Wshadow -Wundef -Werror
                           $<$<COMPILE_LANGUAGE:CXX>:-Wmissing-declarations -Wfloat-conversion>
                           $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wdouble-promotion> # clang means long double too, which tests compute in
                           $<$<CXX_COMPILER_ID:GNU>:-Wno-psabi>)

if(QORSR_SANITIZE)
  add_compile_options(-fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined,float-cast-overflow)
endif()
