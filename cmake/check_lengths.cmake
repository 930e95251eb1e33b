# Fails when a source file is too long to hold in the head.
#   cmake -DROOT=<tree> -P check_lengths.cmake

cmake_minimum_required(VERSION 3.25)

set(limit 600)

set(globs "")
foreach(folder src guard testbench fuzz tests benchmarks)
  list(APPEND globs ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.c ${ROOT}/${folder}/*.cpp)
endforeach()
file(GLOB_RECURSE files RELATIVE ${ROOT} ${globs})
set(wrong "")
foreach(file ${files})
  file(READ ${ROOT}/${file} text)
  string(REGEX MATCHALL "\n" ends "${text}")
  list(LENGTH ends length)
  if(length GREATER limit)
    string(APPEND wrong "  ${file}: ${length} lines\n")
  endif()
endforeach()

if(wrong)
  message(FATAL_ERROR "Files over ${limit} lines:\n${wrong}")
endif()
list(LENGTH files count)
if(count EQUAL 0)
  message(FATAL_ERROR "No sources under ${ROOT}")
endif()
message(STATUS "${count} files, none over ${limit} lines")
