# SPDX-License-Identifier: MIT
# The warnings under which all code of this project is compiled, and the sanitizers of a build.
add_library(vorla_flags INTERFACE)
target_compile_options(vorla_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 sees an overlap in std::string's own operator+ where there is none (GCC bug 105651).
  target_compile_options(vorla_flags INTERFACE -Wno-restrict)
endif()
if(VORLA_SANITIZE)
  target_compile_options(vorla_flags INTERFACE
    -fsanitize=${VORLA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vorla_flags INTERFACE -fsanitize=${VORLA_SANITIZE})
endif()
