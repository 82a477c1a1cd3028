# Which Python the package is for and the command starts, and where the package goes: Debian's own, whose packages NumPy
# and pandas are, where another one stands first in the path.
set(BRENVOLT_PYTHON_INTERPRETER python3)
set(BRENVOLT_PYTHON_PACKAGES python3/dist-packages)
if(BRENVOLT_PYTHON)
  if(NOT DEFINED Python3_EXECUTABLE AND EXISTS /usr/bin/python3)
    set(Python3_EXECUTABLE /usr/bin/python3)
  endif()
  find_package(Python3 3.11 REQUIRED COMPONENTS Interpreter Development.Module NumPy)
  set(PYBIND11_NOPYTHON ON)
  find_package(pybind11 2.10 REQUIRED CONFIG)
  set(BRENVOLT_PYTHON_INTERPRETER ${Python3_EXECUTABLE})
  # Under lib/, where an interpreter of the same prefix looks.
  set(BRENVOLT_PYTHON_PACKAGES python${Python3_VERSION_MAJOR}.${Python3_VERSION_MINOR}/dist-packages)
endif()
