# The commit that the build is made from, in one object of a library that the programs link: where it changes, one small
# file is compiled and the programs are linked again, and no library is.
set(commit_source ${PROJECT_BINARY_DIR}/generated/build_commit.cpp)
add_custom_target(commit_stamp BYPRODUCTS ${commit_source}
                  COMMAND ${CMAKE_COMMAND} -D SOURCE=${PROJECT_SOURCE_DIR} -D OUTPUT=${commit_source}
                          -P ${PROJECT_SOURCE_DIR}/cmake/write_commit.cmake)
add_library(build_commit STATIC ${commit_source})
target_include_directories(build_commit PRIVATE ${PROJECT_SOURCE_DIR})
add_dependencies(build_commit commit_stamp)
