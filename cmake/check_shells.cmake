# Fails when what is shipped could hand a text to a shell, or starts a program in another place than the two that are
# known: a path from the settings or a dialog goes to the system as it is.
#   cmake -DROOT=<tree> -P check_shells.cmake

cmake_minimum_required(VERSION 3.25)

# The guard, by its path; the desktop's own reader, for the guide.
set(known src/platform/line_guard.cpp=posix_spawn src/shell/operator_guide.cpp=openUrl)

string(JOIN | starts
  QProcess "/bin/[a-z]*sh"
  "[^A-Za-z0-9_.>](system|popen|wordexp|v?fork|clone|posix_spawnp?|f?exec(l|le|lp|v|ve|vp|vpe|veat)|openUrl) *\\("
  "ShellExecute|CreateProcess")

set(globs "")
foreach(folder src guard testbench)
  list(APPEND globs ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp ${ROOT}/${folder}/*.c)
endforeach()
file(GLOB_RECURSE files RELATIVE ${ROOT} ${globs})
set(wrong "")
foreach(file ${files})
  file(READ ${ROOT}/${file} text)
  string(REGEX MATCHALL "${starts}" found "${text}")
  foreach(each ${found})
    string(REGEX REPLACE "[^A-Za-z_/]" "" each "${each}")
    if(NOT ${file}=${each} IN_LIST known)
      string(APPEND wrong "  ${file}: ${each}\n")
    endif()
  endforeach()
endforeach()

if(wrong)
  message(FATAL_ERROR "Programs started where none may be, or by a shell:\n${wrong}")
endif()
list(LENGTH files count)
if(count EQUAL 0)
  message(FATAL_ERROR "No sources under ${ROOT}")
endif()
message(STATUS "${count} files, no shell, programs started in two places")
