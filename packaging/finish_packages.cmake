# Run by CPack over the folders of the packages before they are packed: what Debian wants otherwise than an installation by
# hand. Programs find libraries in the system's folder, Python's packages lie under python3/, and every package has its
# licence and its changes.
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(usr ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr)
  string(TOUPPER ${component} key)
  set(package ${CPACK_DEBIAN_${key}_PACKAGE_NAME})

  file(GLOB programs ${usr}/bin/* ${usr}/lib/*.so ${usr}/lib/*.so.*.* ${usr}/lib/python3*/dist-packages/brenvolt/*.so)
  foreach(program IN LISTS programs)
    if(NOT IS_SYMLINK ${program})
      file(RPATH_REMOVE FILE ${program})
    endif()
  endforeach()

  file(GLOB versioned ${usr}/lib/python3.*)
  if(versioned)
    file(RENAME ${versioned} ${usr}/lib/python3)
  endif()

  set(documents ${usr}/share/doc/${package})
  file(REMOVE ${usr}/share/doc/brenvolt/LICENSE)
  file(MAKE_DIRECTORY ${documents})
  configure_file(${CPACK_SOURCE_FOLDER}/packaging/copyright ${documents}/copyright COPYONLY)
  file(WRITE ${documents}/changelog.Debian "brenvolt (${CPACK_PACKAGE_VERSION}-1) unstable; urgency=medium

  * CHANGELOG.md of the package brenvolt says what changed.

 -- ${CPACK_PACKAGE_CONTACT}  ${now}\n")
  execute_process(COMMAND gzip -9n ${documents}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
endforeach()
