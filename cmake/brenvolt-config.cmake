# find_package(brenvolt) offers brenvolt::host, the library with every service of the host.
include(CMakeFindDependencyMacro)
find_dependency(Boost)
find_dependency(nlohmann_json)
include(${CMAKE_CURRENT_LIST_DIR}/brenvolt-targets.cmake)
