# A source belongs to the build by lying in its folder; tests and fuzz targets are told apart by their names.

# folder_sources(OUT folder...): every .cpp of the folders that is neither a test nor a fuzz target.
function(folder_sources out)
  set(found)
  foreach(folder IN LISTS ARGN)
    file(GLOB here CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
    list(FILTER here EXCLUDE REGEX "_(test|fuzz)\\.cpp$")
    list(APPEND found ${here})
  endforeach()
  set(${out} ${found} PARENT_SCOPE)
endfunction()

# folder_tests(OUT folder...): every *_test.cpp of the folders.
function(folder_tests out)
  set(found)
  foreach(folder IN LISTS ARGN)
    file(GLOB here CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*_test.cpp)
    list(APPEND found ${here})
  endforeach()
  set(${out} ${found} PARENT_SCOPE)
endfunction()

# add_folder_tests(target LIBRARIES... ): one test program over the given sources, each test known to ctest.
function(add_test_program target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "LABEL" "SOURCES;LIBRARIES")
  add_executable(${target} ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE ${arg_LIBRARIES} GTest::gtest GTest::gtest_main)
  # Only sources that name the folders get them: the objects of all others are the same wherever the tree lies.
  foreach(source IN LISTS arg_SOURCES)
    file(STRINGS ${source} naming REGEX "BRENVOLT_(SOURCE|BUILD)_DIR" LIMIT_COUNT 1)
    if(naming)
      set_source_files_properties(${source} PROPERTIES COMPILE_DEFINITIONS
        "BRENVOLT_SOURCE_DIR=\"${PROJECT_SOURCE_DIR}\";BRENVOLT_BUILD_DIR=\"${PROJECT_BINARY_DIR}\"")
    endif()
  endforeach()
  compile_quickly(${target})
  target_precompile_headers(${target} PRIVATE <gtest/gtest.h> <string> <vector>)
  gtest_discover_tests(${target} TEST_FILTER "-*Reference.*" DISCOVERY_TIMEOUT 60
                       PROPERTIES LABELS ${arg_LABEL} TIMEOUT 300)
  gtest_discover_tests(${target} TEST_FILTER "*Reference.*" TEST_LIST ${target}_references DISCOVERY_TIMEOUT 60
                       PROPERTIES LABELS reference TIMEOUT 300)
endfunction()

# add_fuzz_targets(library folder...): every *_fuzz.cpp becomes a program that feeds its function the inputs in
# <folder>/fuzz_seeds/<name>/ and in the folders of the variable <name>_corpus. With Clang it is a libFuzzer target,
# which ctest lets mutate them for some seconds, leaving what it finds in the build folder; with other compilers
# tests/fuzz_replay.cpp gives it each input once.
function(add_fuzz_targets library)
  foreach(folder IN LISTS ARGN)
    file(GLOB here CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*_fuzz.cpp)
    foreach(source IN LISTS here)
      get_filename_component(name ${source} NAME_WE)
      add_executable(${name} ${source})
      target_link_libraries(${name} PRIVATE ${library})
      string(REGEX REPLACE "_fuzz$" "" subject ${name})
      list(TRANSFORM ${subject}_corpus PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE corpus)
      list(PREPEND corpus ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/fuzz_seeds/${subject})
      if(CMAKE_CXX_COMPILER_ID MATCHES Clang AND BRENVOLT_SANITIZE)
        target_link_options(${name} PRIVATE -fsanitize=fuzzer)
        target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
        set(found ${CMAKE_CURRENT_BINARY_DIR}/fuzz_found/${subject})
        file(MAKE_DIRECTORY ${found})
        add_test(NAME ${name} COMMAND ${name} -max_total_time=5 -seed=1 ${found} ${corpus})
      else()
        target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/fuzz_replay.cpp)
        add_test(NAME ${name} COMMAND ${name} ${corpus})
      endif()
      set_tests_properties(${name} PROPERTIES LABELS fuzz TIMEOUT 120)
    endforeach()
  endforeach()
endfunction()
