# Language, warnings, instrumentation and output folders: the same for every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
# What is built has the run path of what is installed: one that is to be replaced is filled up with colons, of which each is
# an empty element, which is the working folder.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../lib;$ORIGIN")

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # GCC 12 reports these for plain `"text" + std::string` (GCC bug 105651).
  add_compile_options(-Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds)
endif()
# A product or sum is rounded where the source rounds it, so that results do not depend on the instruction set.
add_compile_options(-ffp-contract=off)

if(BRENVOLT_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # GCC 12 takes members of temporaries for uninitialised where the sanitizers watch them; its manual warns of that.
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    # libFuzzer is led by the branches that an input takes, in the libraries as well as in the target.
    add_compile_options(-fsanitize=fuzzer-no-link)
  endif()
endif()
if(BRENVOLT_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

# compile_quickly(target): for front ends and tests, whose time goes into libraries and whose sources instantiate much;
# a third of their compile time is spared.
function(compile_quickly target)
  target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
endfunction()

# Where an installation has its documents and the data of its examples, under its prefix.
set(BRENVOLT_DOCUMENTS share/doc/brenvolt)
