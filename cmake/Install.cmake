# What an installation has beside programs and libraries, which their folders install: manual pages, completion, documents,
# data of the examples, headers with a package for CMake. Components are the Debian packages that packaging/ makes.

# Manual pages and completion come from the options of the programs themselves.
find_package(Python3 COMPONENTS Interpreter)
if(Python3_Interpreter_FOUND)
  set(pages ${PROJECT_BINARY_DIR}/pages)
  set(programs cli)
  if(TARGET desktop)
    list(APPEND programs desktop)
  endif()
  set(program_files ${programs})
  list(TRANSFORM program_files REPLACE "(.+)" "$<TARGET_FILE:\\1>")
  set(reference_of_python)
  if(TARGET python_package)
    list(APPEND programs python_package)
    set(reference_of_python ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/packaging/python_reference.py
                            ${PROJECT_BINARY_DIR}/python > ${pages}/python.md)
  endif()
  add_custom_command(OUTPUT ${pages}/made
                     COMMAND ${CMAKE_COMMAND} -E rm -rf ${pages}
                     COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/packaging/pages.py ${pages} ${PROJECT_VERSION}
                             ${program_files}
                     COMMAND ${reference_of_python}
                     COMMAND ${CMAKE_COMMAND} -E touch ${pages}/made
                     DEPENDS ${PROJECT_SOURCE_DIR}/packaging/pages.py ${PROJECT_SOURCE_DIR}/packaging/python_reference.py
                             ${programs})
  add_custom_target(pages ALL DEPENDS ${pages}/made)

  # install_pages(PROGRAM COMPONENT): a page names the data of its examples where they are, which the prefix decides.
  function(install_pages program component)
    install(CODE "
      file(GLOB pages ${pages}/man1/${program}.1 ${pages}/man1/${program}-*.1)
      if(\"${program}\" STREQUAL brenvolt)
        list(FILTER pages EXCLUDE REGEX brenvolt-desktop)
      endif()
      set(EXAMPLES \${CMAKE_INSTALL_PREFIX}/${BRENVOLT_DOCUMENTS}/examples)
      set(made)
      foreach(page IN LISTS pages)
        get_filename_component(name \${page} NAME)
        configure_file(\${page} ${pages}/installed/\${name} @ONLY)
        execute_process(COMMAND gzip -9nf ${pages}/installed/\${name} COMMAND_ERROR_IS_FATAL ANY)
        list(APPEND made ${pages}/installed/\${name}.gz)
      endforeach()
      file(INSTALL DESTINATION \${CMAKE_INSTALL_PREFIX}/share/man/man1 TYPE FILE FILES \${made})
    " COMPONENT ${component})
    install(FILES ${pages}/bash/${program} DESTINATION share/bash-completion/completions COMPONENT ${component})
    install(FILES ${pages}/zsh/_${program} DESTINATION share/zsh/vendor-completions COMPONENT ${component})
    install(FILES ${pages}/fish/${program}.fish DESTINATION share/fish/vendor_completions.d COMPONENT ${component})
  endfunction()
  install_pages(brenvolt command)
  if(TARGET desktop)
    install_pages(brenvolt-desktop window)
  endif()
else()
  message(WARNING "Manual pages and completion are left out of this build: Debian's python3 brings what makes them.")
endif()

install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${BRENVOLT_DOCUMENTS} COMPONENT command)
install(DIRECTORY examples DESTINATION ${BRENVOLT_DOCUMENTS} COMPONENT command)
install(FILES CONTRIBUTING.md DESTINATION ${BRENVOLT_DOCUMENTS} COMPONENT documents)
install(DIRECTORY docs DESTINATION ${BRENVOLT_DOCUMENTS} COMPONENT documents)

# Headers of the host for programs that link it. Some show JSON or use special functions of Boost.
target_compile_features(host INTERFACE cxx_std_20)
target_include_directories(host INTERFACE $<INSTALL_INTERFACE:include/brenvolt>)
target_link_libraries(host INTERFACE $<INSTALL_INTERFACE:Boost::headers> $<INSTALL_INTERFACE:nlohmann_json::nlohmann_json>)
install(DIRECTORY host DESTINATION include/brenvolt COMPONENT development FILES_MATCHING PATTERN "*.h"
        PATTERN "*_test.h" EXCLUDE PATTERN drawing EXCLUDE PATTERN ranks EXCLUDE PATTERN reference EXCLUDE PATTERN fuzz_seeds EXCLUDE)
include(CMakePackageConfigHelpers)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/generated/brenvolt-config-version.cmake COMPATIBILITY SameMinorVersion)
set(package lib/cmake/brenvolt)
install(EXPORT brenvolt NAMESPACE brenvolt:: FILE brenvolt-targets.cmake DESTINATION ${package} COMPONENT development)
install(FILES cmake/brenvolt-config.cmake ${PROJECT_BINARY_DIR}/generated/brenvolt-config-version.cmake
        DESTINATION ${package} COMPONENT development)

# Everything that is installed, and no test.
add_custom_target(installed)
foreach(target IN ITEMS cli brv_sra drawing ranks desktop python_package pages)
  if(TARGET ${target})
    add_dependencies(installed ${target})
  endif()
endforeach()
add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} -D MANIFEST=${PROJECT_BINARY_DIR}/install_manifest.txt
                                    -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake)
