# SPDX-License-Identifier: MIT
# How all code of this project is compiled: the warnings, and the sanitizers of a build.
add_library(vorla_flags INTERFACE)
target_compile_options(vorla_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 sees an overlap in std::string's own operator+ where there is none (GCC bug 105651).
  target_compile_options(vorla_flags INTERFACE -Wno-restrict)
endif()
# Lets the linker leave out each function that nothing calls.
target_compile_options(vorla_flags INTERFACE -ffunction-sections -fdata-sections)
if(VORLA_SANITIZE)
  target_compile_options(vorla_flags INTERFACE
    -fsanitize=${VORLA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vorla_flags INTERFACE -fsanitize=${VORLA_SANITIZE})
endif()
if(VORLA_FUZZ)
  # Lets the fuzzer see which branches an input takes; only its targets get the fuzzer itself.
  target_compile_options(vorla_flags INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(vorla_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
