# Writes OUTPUT, a source that knows the commit of the tree SOURCE; a file that says the same already is left alone.
#   cmake -D SOURCE=... -D OUTPUT=... -P write_commit.cmake
find_program(git git)

# git_answer(OUT ARGUMENT...): what git says of the tree, whoever owns it; empty where it says nothing.
function(git_answer out)
  execute_process(COMMAND ${git} -c safe.directory=* -C ${SOURCE} ${ARGN}
                  OUTPUT_VARIABLE answer ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
  set(${out} "${answer}" PARENT_SCOPE)
endfunction()

set(commit)
if(git)
  git_answer(top rev-parse --show-toplevel)
  file(REAL_PATH ${SOURCE} source)
  # An archive that lies unpacked inside another tree has no commit of that tree.
  if(top STREQUAL source)
    git_answer(commit log -1 --abbrev=12 "--format=%h (%cs)")
    git_answer(changes status --porcelain --untracked-files=no)
    if(changes)
      string(APPEND commit " with changes that are not committed")
    endif()
  endif()
endif()
if(NOT commit)
  # git archive puts the commit into this file; in a clone it holds the request for it.
  file(STRINGS ${SOURCE}/cmake/archived_commit.txt commit LIMIT_COUNT 1)
  if(commit MATCHES "Format:" AND NOT git)
    set(commit "unknown: git was not installed where this was built")
  elseif(commit MATCHES "Format:")
    set(commit "unknown: built from a source archive without its history")
  else()
    string(APPEND commit " from a source archive")
  endif()
endif()
set(text "#include \"apps/base/build_commit.h\"\n
std::string brenvolt::BuildCommit() {\n  return \"${commit}\";\n}\n")
set(former)
if(EXISTS ${OUTPUT})
  file(READ ${OUTPUT} former)
endif()
if(NOT text STREQUAL former)
  file(WRITE ${OUTPUT} "${text}")
endif()
